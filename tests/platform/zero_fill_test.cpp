#include "platform/zero_fill.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr size_t largeBytes = size_t{65} << 20;
constexpr char dirt = '\xA5';

/** Memory of the system, released at the end of the scope. */
class Mapping
{
public:
    Mapping(size_t bytes, int flags, int descriptor = -1)
        : m_bytes(bytes), m_start(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, flags, descriptor, 0))
    {
        EXPECT_NE(m_start, MAP_FAILED);
    }
    ~Mapping() { munmap(m_start, m_bytes); }
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;

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
    SCOPED_TRACE(std::to_string(bytes) + " bytes from " + std::to_string(before));
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
            expectOnlyTheBlockIsCleared(Mapping(bytes, MAP_PRIVATE | MAP_ANONYMOUS), bytes, before, 29);
}

TEST(ZeroFill, GivesThePagesOfALargeBlockBack)
{
    const Mapping memory(largeBytes, MAP_PRIVATE | MAP_ANONYMOUS);
    std::memset(memory.data(), dirt, largeBytes);
    kelto::zeroFill(memory.data() + 8, largeBytes - 16);
    EXPECT_LT(memory.residentPages() * 8, largeBytes / 4096) << "only those at its ends, which may be huge ones";
}

TEST(ZeroFill, ClearsMemoryWhosePagesWouldComeBackWithOldContent)
{
    const int file = memfd_create("content", 0);
    ASSERT_EQ(ftruncate(file, largeBytes), 0);
    std::memset(Mapping(largeBytes, MAP_SHARED, file).data(), 'f', largeBytes);
    expectOnlyTheBlockIsCleared(Mapping(largeBytes, MAP_PRIVATE, file), largeBytes, 13, 29);
    expectOnlyTheBlockIsCleared(Mapping(largeBytes, MAP_SHARED | MAP_ANONYMOUS), largeBytes, 13, 29);
    close(file);
}
