#include "io/input.h"

#include "failure.h"
#include "io/charset.h"
#include "io/terminal.h"
#include "text.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tool
{
namespace
{

/** An open file; standard input stays open. */
class Input
{
public:
    explicit Input(const std::string &path)
        : m_name(inputName(path)), m_descriptor(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (m_descriptor < 0)
            fail();
    }
    ~Input()
    {
        if (m_descriptor != STDIN_FILENO)
            close(m_descriptor);
    }
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

    size_t read(char *target, size_t room)
    {
        ssize_t got = -1;
        do
            got = ::read(m_descriptor, target, room);
        while (got < 0 && errno == EINTR);
        if (got < 0)
            fail();
        return static_cast<size_t>(got);
    }

    /** The size of a file, as far as the system knows it; 0 for a pipe. */
    size_t expectedSize() const
    {
        struct stat status = {};
        const bool isFile = fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
        return isFile ? static_cast<size_t>(status.st_size) : 0;
    }

private:
    [[noreturn]] void fail() const { throw Failure(m_name + ": " + systemText(errno)); }

    std::string m_name;
    int m_descriptor;
};

/** Whether there is such a file. */
bool lookUp(const std::string &path, struct stat &status)
{
    return (path == "-" ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status)) == 0;
}

constexpr size_t leastRoom = 65536;

} // namespace

std::string readWhole(const std::string &path)
{
    Input input(path);
    const auto checkSize = [&](size_t size) {
        if (size > longestText)
            throw Failure(inputName(path) + ": " + say(Text::inputTooLarge));
    };
    checkSize(input.expectedSize());
    std::string bytes(input.expectedSize() + leastRoom, '\0');
    size_t size = 0;
    while (const size_t got = input.read(bytes.data() + size, bytes.size() - size))
    {
        size += got;
        checkSize(size);
        if (size == bytes.size())
            bytes.resize(2 * size);
    }
    bytes.resize(size);
    return bytes;
}

std::string readMessageFile(const std::string &path)
{
    struct stat status = {};
    const bool isThere = path != "-" && lstat(path.c_str(), &status) == 0;
    if (isThere && !S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode) && !S_ISDIR(status.st_mode))
        throw Failure(inputName(path) + ": " + say(Text::noRegularFile));
    return readWhole(path);
}

bool isSameFile(const std::string &a, const std::string &b)
{
    struct stat first = {};
    struct stat second = {};
    return a == b ||
           (lookUp(a, first) && lookUp(b, second) && first.st_dev == second.st_dev && first.st_ino == second.st_ino);
}

void requireOtherFile(const std::string &output, const std::vector<std::string> &inputs)
{
    struct stat status = {};
    if (output.empty() || output == "-" || !lookUp(output, status) || !S_ISREG(status.st_mode))
        return;
    for (const std::string &input : inputs)
        if (isSameFile(output, input))
            throw Failure(terminal().showBytes(output) + ": " + say(Text::outputIsInput));
}

std::string inputName(const std::string &path)
{
    return path == "-" ? say(Text::standardInput) : path.empty() ? "\"\"" : terminal().showBytes(path);
}

} // namespace tool
