#include "support/heap_faults.h"

#include <cerrno>
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
    long outstanding = 0;
    const char *library = nullptr;
};

thread_local Heap heap;

} // namespace

void HeapFaults::arm(unsigned n, const char *library)
{
    heap = {true, n, 0, 0, library};
}

unsigned HeapFaults::disarm()
{
    heap.isWatched = false;
    return heap.failures;
}

long HeapFaults::outstanding()
{
    return heap.outstanding;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace
{

bool isLibrary(const void *caller)
{
    Dl_info code;
    const bool isKnown = dladdr(caller, &code) != 0;
    const auto isIn = [&](const char *name) { return isKnown && std::strstr(code.dli_fname, name) != nullptr; };
    if (heap.library != nullptr)
        return isIn(heap.library);
    return isIn("/libkelto.") || isIn("/libexpat.") || isIn("/libicuuc.") || isIn("/libc.");
}

/** One request for a block in the place of another: null where it is to fail, with errno as the C library's own. */
template <typename Take> void *take(const void *caller, Take real, const void *old = nullptr)
{
    if (!heap.isWatched)
        return real();
    if (isLibrary(caller) && --heap.untilFailure == 0)
        return ++heap.failures, errno = ENOMEM, nullptr;
    void *const block = real();
    heap.outstanding += (block != nullptr ? 1 : 0) - (old != nullptr ? 1 : 0);
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
    return take(
        __builtin_return_address(0), [=] { return __libc_realloc(block, size); }, block);
}

void free(void *block) noexcept
{
    take(
        nullptr, [=] { return __libc_free(block), nullptr; }, block);
}

} // extern "C"

// The library creates its few objects with these; nothing else in this program does.
void *operator new(size_t size, const std::nothrow_t &) noexcept
{
    return take(__builtin_return_address(0), [=] { return __libc_malloc(size); });
}

void *operator new[](size_t size, const std::nothrow_t &) noexcept
{
    return take(__builtin_return_address(0), [=] { return __libc_malloc(size); });
}

#endif
