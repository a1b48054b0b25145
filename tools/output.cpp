#include "output.h"

#include "charset.h"
#include "failure.h"
#include "terminal.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
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

    /** As far as the system knows it; 0 for a pipe. */
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

[[noreturn]] void outputFailed()
{
    throw OutputFailure("standard output: " + systemText(errno));
}

constexpr size_t leastRoom = 65536;

} // namespace

void print(std::string_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size())
        outputFailed();
}

void flushOutput()
{
    if (std::fflush(stdout) != 0)
        outputFailed();
}

std::string readWhole(const std::string &path)
{
    Input input(path);
    const auto checkSize = [&](size_t size) {
        if (size > longestText)
            throw Failure(inputName(path) + ": inputs of 2 GiB and more are not converted");
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

std::string inputName(const std::string &path)
{
    return path == "-" ? "standard input" : terminal().showBytes(path);
}

} // namespace tool
