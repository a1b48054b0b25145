#include "io/output_file.h"

#include "failure.h"
#include "io/terminal.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <utility>

namespace tool
{
namespace
{

std::string folderOf(const std::string &path)
{
    const std::string folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder;
}

/** Whether this is an open file of a process, as /dev/stdout is in the end, and no place in a folder. */
bool isDescriptor(const std::string &path)
{
    struct statfs status = {};
    return statfs(folderOf(path).c_str(), &status) == 0 && status.f_type == PROC_SUPER_MAGIC;
}

/** Follows links to where a file is or would be; as far as it can in a circle, which cannot be opened then. */
std::string followLinks(std::string path)
{
    constexpr int mostLinks = 40;
    for (int i = 0; i < mostLinks && !isDescriptor(path); ++i)
    {
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(path, error);
        if (error)
            break;
        path = target.is_absolute() ? target : folderOf(path) / target;
    }
    return path;
}

/** The file that a signal removes when it ends the program: one file at a time is written. */
std::array<char, PATH_MAX> unfinished = {};

void setUnfinished(const std::string &path)
{
    std::strncpy(unfinished.data(), path.c_str(), unfinished.size() - 1);
}

void removeUnfinished(int signal)
{
    unlink(unfinished.data());
    raise(signal); // whose default action, restored by now, ends the program
}

/** Leaves a signal alone that is ignored, or that has a handler. */
void removeUnfinishedAtSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ})
    {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
            continue;
        action.sa_handler = removeUnfinished;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        sigaction(signal, &action, nullptr);
    }
}

/** Makes a new file in a folder; its descriptor, or -1. */
int createIn(const std::string &folder, std::string &path)
{
    constexpr int mostTries = 100;
    for (int i = 0; i < mostTries; ++i)
    {
        path = folder + "/.kelto-" + std::to_string(getpid()) + '-' + std::to_string(i);
        setUnfinished(path);
        const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0)
            return descriptor;
        setUnfinished("");
        if (errno != EEXIST)
            break;
    }
    path.clear();
    return -1;
}

/** Gives a new file the owner and the mode of the one that it stands in for. */
bool makeAlike(int descriptor, const struct stat &status)
{
    struct stat own = {};
    if (fstat(descriptor, &own) != 0)
        return false;
    const bool isSameOwner = own.st_uid == status.st_uid && own.st_gid == status.st_gid;
    return (isSameOwner || fchown(descriptor, status.st_uid, status.st_gid) == 0) &&
           fchmod(descriptor, status.st_mode & ALLPERMS) == 0;
}

} // namespace

OutputFile::OutputFile(const std::string &path) : m_name(path), m_place(followLinks(path))
{
    if (!openBeside())
        take(open(m_place.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
}

OutputFile::~OutputFile()
{
    if (!m_beside.empty())
        unlink(m_beside.c_str());
    setUnfinished("");
}

/** Opens a file beside the place; false where the place is to be opened itself. */
bool OutputFile::openBeside()
{
    struct stat status = {};
    const bool isThere = stat(m_place.c_str(), &status) == 0;
    const bool isFile = isThere ? S_ISREG(status.st_mode) : errno == ENOENT;
    if (!isFile || isDescriptor(m_place))
        return false;
    if (isThere && access(m_place.c_str(), W_OK) != 0)
        fail();
    removeUnfinishedAtSignals();
    const int descriptor = createIn(folderOf(m_place), m_beside);
    if (descriptor < 0 && isThere && (errno == EACCES || errno == EPERM || errno == EROFS))
        return false;
    take(descriptor);
    if (!isThere || makeAlike(descriptor, status))
        return true;
    unlink(std::exchange(m_beside, "").c_str());
    return false;
}

void OutputFile::take(int descriptor)
{
    m_file.reset(descriptor >= 0 ? fdopen(descriptor, "w") : nullptr);
    if (m_file == nullptr)
        fail();
}

void OutputFile::write(std::string_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_file.get()) != bytes.size())
        fail();
}

void OutputFile::finish()
{
    if (std::fclose(m_file.release()) != 0)
        fail();
    if (m_beside.empty())
        return;
    if (std::rename(m_beside.c_str(), m_place.c_str()) != 0)
        fail();
    m_beside.clear();
    setUnfinished("");
}

void OutputFile::fail() const
{
    throw OutputFailure(terminal().showBytes(m_name) + ": " + systemText(errno));
}

} // namespace tool
