#include "bilingual/gettext/po_program.h"

#include "failure.h"
#include "text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tool::bilingual
{
namespace
{

// What is sanitized reserves more memory than there is.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif
#else
constexpr bool isSanitized = false;
#endif

constexpr rlim_t leastMemory = rlim_t{512} << 20;
constexpr rlim_t memoryPerByte = 100;
constexpr rlim_t leastSeconds = 20;
constexpr size_t leastAnswer = size_t{16} << 20;
constexpr size_t answerPerByte = 100;
constexpr rlim_t bytesPerSecond = 1000000;

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return m_descriptor; }
    void close()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_descriptor = -1;
    }

private:
    int m_descriptor;
};

std::string programPath()
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return (self.parent_path() / KELTO_HELPERS / "kelto-po").lexically_normal().string();
}

[[noreturn]] void fail(const std::string &why)
{
    throw Failure("kelto-po: " + why);
}

/** The input as a file without a name, which can be read twice. */
void fill(int file, std::string_view input)
{
    for (size_t at = 0; at < input.size();)
    {
        const ssize_t written = write(file, input.data() + at, input.size() - at);
        if (written >= 0)
            at += static_cast<size_t>(written);
        else if (errno != EINTR)
            fail(systemText(errno));
    }
    lseek(file, 0, SEEK_SET);
}

void limit(int resource, rlim_t most)
{
    const struct rlimit limits = {most, most};
    setrlimit(static_cast<__rlimit_resource>(resource), &limits);
}

/** The last steps of this process before it becomes the other program. */
[[noreturn]] void become(const char *path, const char *mode, int input, int output, size_t size)
{
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    fcntl(STDIN_FILENO, F_SETFD, 0); // where kelto has no standard input, the file is that already
    if (!isSanitized)
        limit(RLIMIT_AS, std::max<rlim_t>(leastMemory, memoryPerByte * size));
    limit(RLIMIT_CPU, leastSeconds + size / bytesPerSecond);
    limit(RLIMIT_CORE, 0);
    std::array<char, 9> name{"kelto-po"};
    std::string word(mode);
    char *const arguments[] = {name.data(), word.data(), nullptr};
    execv(path, arguments);
    _exit(127);
}

std::string readAll(int descriptor, size_t most)
{
    std::string output;
    std::array<char, 65536> buffer{};
    while (true)
    {
        const ssize_t got = read(descriptor, buffer.data(), buffer.size());
        if (got == 0)
            return output;
        if (got > 0)
            output.append(buffer.data(), static_cast<size_t>(got));
        else if (errno != EINTR)
            fail(systemText(errno));
        if (output.size() > most)
            fail(say(Text::poAnswerTooLong));
    }
}

} // namespace

std::string runPo(const char *mode, std::string_view input)
{
    const std::string path = programPath();
    if (access(path.c_str(), X_OK) != 0)
        throw Failure(say(Text::noPoProgram));
    Descriptor file(memfd_create("kelto-po", MFD_CLOEXEC));
    std::array<int, 2> ends{-1, -1};
    if (file.get() < 0 || pipe2(ends.data(), O_CLOEXEC) != 0)
        fail(systemText(errno));
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    fill(file.get(), input);
    std::signal(SIGCHLD, SIG_DFL); // where the caller of kelto ignores it, nobody would know how the program has ended
    const pid_t process = fork();
    if (process < 0)
        fail(systemText(errno));
    if (process == 0)
        become(path.c_str(), mode, file.get(), writeEnd.get(), input.size());
    writeEnd.close();
    std::string output;
    std::string why;
    try
    {
        output = readAll(readEnd.get(), leastAnswer + answerPerByte * input.size());
    }
    catch (const Failure &failure)
    {
        why = failure.what();
    }
    readEnd.close();
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR)
    {
    }
    if (!why.empty())
        throw Failure(why);
    if (WIFSIGNALED(status))
        fail(say(Text::poProgramKilled, {static_cast<unsigned>(WTERMSIG(status))}));
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        fail(say(Text::poProgramFailed));
    return output;
}

} // namespace tool::bilingual
