/**
 * Temporary buffers. They come from the C heap, since the character sets work without a started library and so without
 * its memory tag, and free themselves.
 */
#ifndef KELTO_STRCONV_HEAP_BLOCK_H
#define KELTO_STRCONV_HEAP_BLOCK_H

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>

namespace kelto
{

struct HeapFree
{
    void operator()(void *block) const noexcept { std::free(block); }
};

template <typename Unit> using HeapBlock = std::unique_ptr<Unit[], HeapFree>;

/** Room for `count` units, not initialised; empty when there is none, or when the size overflows. */
template <typename Unit> HeapBlock<Unit> allocateHeap(size_t count) noexcept
{
    if (count > std::numeric_limits<size_t>::max() / sizeof(Unit))
        return nullptr;
    return HeapBlock<Unit>(static_cast<Unit *>(std::malloc(count * sizeof(Unit))));
}

} // namespace kelto

#endif
