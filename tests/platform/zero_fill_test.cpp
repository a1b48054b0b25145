#include "platform/zero_fill.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr size_t mebibyte = 1024 * 1024;
constexpr size_t largeBytes = 65 * mebibyte;
constexpr char dirt = '\xA5';

/** Memory of the system, released at the end of the scope. */
class Mapping
{
public:
    Mapping(size_t bytes, int flags, int descriptor = -1)
        : m_bytes(bytes), m_start(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, flags, descriptor, 0))
    {
    }
    ~Mapping() { munmap(m_start, m_bytes); }
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;

    bool isValid() const { return m_start != MAP_FAILED; }
    char *data() const { return static_cast<char *>(m_start); }

    size_t residentPages() const
    {
        const size_t pageBytes = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        std::vector<unsigned char> resident((m_bytes + pageBytes - 1) / pageBytes);
        EXPECT_EQ(mincore(m_start, m_bytes, resident.data()), 0);
        return static_cast<size_t>(
            std::count_if(resident.begin(), resident.end(), [](unsigned char page) { return (page & 1) != 0; }));
    }

private:
    size_t m_bytes;
    void *m_start;
};

bool isAll(const char *bytes, size_t count, char value)
{
    return count == 0 || (bytes[0] == value && std::memcmp(bytes, bytes + 1, count - 1) == 0);
}

/** Clears the middle of dirty memory and checks that it alone is zero. */
void expectOnlyTheBlockIsCleared(const Mapping &memory, size_t bytes, size_t before, size_t behind)
{
    std::memset(memory.data(), dirt, bytes);
    errno = 99;
    kelto::zeroFill(memory.data() + before, bytes - before - behind);
    EXPECT_EQ(errno, 99);
    EXPECT_TRUE(isAll(memory.data() + before, bytes - before - behind, 0));
    EXPECT_TRUE(isAll(memory.data(), before, dirt));
    EXPECT_TRUE(isAll(memory.data() + bytes - behind, behind, dirt));
}

} // namespace

TEST(ZeroFill, ClearsTheBlockAndNothingBesideIt)
{
    for (const size_t bytes : {size_t{100}, size_t{3 * 4096}, largeBytes})
        for (const size_t before : {size_t{0}, size_t{1}, size_t{13}})
        {
            SCOPED_TRACE(std::to_string(bytes) + " bytes from " + std::to_string(before));
            const Mapping memory(bytes, MAP_PRIVATE | MAP_ANONYMOUS);
            ASSERT_TRUE(memory.isValid());
            expectOnlyTheBlockIsCleared(memory, bytes, before, 29);
        }
}

TEST(ZeroFill, GivesThePagesOfALargeBlockBack)
{
    const Mapping memory(largeBytes, MAP_PRIVATE | MAP_ANONYMOUS);
    ASSERT_TRUE(memory.isValid());
    std::memset(memory.data(), dirt, largeBytes);
    kelto::zeroFill(memory.data() + 8, largeBytes - 16);
    EXPECT_LT(memory.residentPages() * 8, largeBytes / 4096) << "only those at its ends, which may be huge ones";
}

TEST(ZeroFill, ClearsMemoryWhosePagesWouldComeBackWithOldContent)
{
    std::FILE *const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    const std::vector<char> content(mebibyte, 'f');
    for (size_t written = 0; written < largeBytes; written += content.size())
        ASSERT_EQ(std::fwrite(content.data(), 1, content.size(), file), content.size());
    ASSERT_EQ(std::fflush(file), 0);

    const struct
    {
        const char *label;
        int flags;
        int descriptor;
    } rows[] = {
        {"a private mapping of a file", MAP_PRIVATE, fileno(file)},
        {"shared memory", MAP_SHARED | MAP_ANONYMOUS, -1},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.label);
        const Mapping memory(largeBytes, row.flags, row.descriptor);
        ASSERT_TRUE(memory.isValid());
        expectOnlyTheBlockIsCleared(memory, largeBytes, 13, 29);
    }
    std::fclose(file);
}
