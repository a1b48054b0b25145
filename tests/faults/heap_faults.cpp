#include "faults/heap_faults.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <dlfcn.h>
#include <new>

namespace
{

struct Heap
{
    bool isWatched = false;
    unsigned untilFailure = 0, failures = 0;
    std::array<void *, 1000> blocks = {}; // that exist, and null where one was freed
};

thread_local Heap heap;

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

bool isLibrary(const void *caller)
{
    Dl_info code;
    if (dladdr(caller, &code) == 0)
        return false;
    const auto isIn = [&](const char *name) { return std::strstr(code.dli_fname, name) != nullptr; };
    return isIn("/libkelto.") || isIn("/libexpat.") || isIn("/libicuuc.");
}

/** One request: null where it is to fail. */
template <typename Take> void *take(const void *caller, Take real, void *old = nullptr)
{
    const bool isTheirs = heap.isWatched && isLibrary(caller);
    if (isTheirs && --heap.untilFailure == 0)
        return ++heap.failures, nullptr;
    if (heap.isWatched && old != nullptr)
        std::replace(heap.blocks.begin(), heap.blocks.end(), old, static_cast<void *>(nullptr));
    void *const block = real();
    if (isTheirs && block != nullptr)
        *std::find(heap.blocks.begin(), heap.blocks.end() - 1, nullptr) = block;
    return block;
}

} // namespace

extern "C" {

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void __libc_free(void *block);

void *malloc(size_t size) noexcept
{
    return take(__builtin_return_address(0), [=] { return __libc_malloc(size); });
}

void *calloc(size_t count, size_t size) noexcept
{
    return take(__builtin_return_address(0), [=] { return __libc_calloc(count, size); });
}

void *realloc(void *block, size_t size) noexcept
{
    return take(__builtin_return_address(0), [=] { return __libc_realloc(block, size); }, block);
}

void free(void *block) noexcept
{
    take(nullptr, [=] { return __libc_free(block), nullptr; }, block);
}

} // extern "C"

// The library creates its few objects with these; nothing else in this program does.
void *operator new(size_t size, const std::nothrow_t &) noexcept
{
    return take(__builtin_return_address(0), [=] { return __libc_malloc(size); });
}

bool HeapFaults::arePossible()
{
    return true;
}

#else

} // namespace

bool HeapFaults::arePossible()
{
    return false;
}

#endif

void HeapFaults::arm(unsigned n)
{
    heap = {true, n, 0, {}};
}

unsigned HeapFaults::disarm()
{
    heap.isWatched = false;
    return heap.failures;
}

long HeapFaults::outstanding()
{
    return std::count_if(heap.blocks.begin(), heap.blocks.end(), [](void *block) { return block != nullptr; });
}
