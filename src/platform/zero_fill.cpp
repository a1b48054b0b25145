#include "platform/zero_fill.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

constexpr size_t clearedAtOnce = size_t{64} * 1024 * 1024;

/**
 * Gives pages back, so that they read as zero; false when their content may be anything still. Dropped pages are zero
 * only in private anonymous memory (those of a mapped file would show the file again), and MADV_FREE is refused on all
 * other memory, before it has changed anything there.
 */
bool dropPages(void *pages, size_t bytes)
{
    return madvise(pages, bytes, MADV_FREE) == 0 && madvise(pages, bytes, MADV_DONTNEED) == 0;
}

/** Clears a large block: its whole pages by dropping them, what lies around them by hand. */
bool dropInterior(char *block, size_t bytes)
{
    const size_t pageBytes = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t head = (pageBytes - reinterpret_cast<uintptr_t>(block) % pageBytes) % pageBytes;
    const size_t interior = (bytes - head) / pageBytes * pageBytes;
    if (!dropPages(block + head, interior))
        return false;
    std::memset(block, 0, head);
    std::memset(block + head + interior, 0, bytes - head - interior);
    return true;
}

} // namespace

void kelto::zeroFill(void *block, size_t bytes) noexcept
{
    const int savedErrno = errno;
    if (bytes <= clearedAtOnce || !dropInterior(static_cast<char *>(block), bytes))
        std::memset(block, 0, bytes);
    errno = savedErrno;
}
