#include "faults/heap_faults.h"

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include "kelto.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <expat.h>
#include <link.h>
#include <new>
#include <unicode/ucnv.h>

namespace
{

struct Heap
{
    bool isWatched = false;
    unsigned untilFailure = 0;
    unsigned failures = 0;
    std::array<void *, 1000> blocks = {}; // that exist, and null where one was freed
};

thread_local Heap heap;

/** Where the code of a library lies. */
struct Module
{
    uintptr_t begin, end;

    bool contains(const void *code) const
    {
        const auto address = reinterpret_cast<uintptr_t>(code);
        return begin <= address && address < end;
    }
};

template <typename Function> Module moduleOf(Function *function)
{
    Module module = {reinterpret_cast<uintptr_t>(function), 0};
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *found) {
            auto &wanted = *static_cast<Module *>(found);
            for (int i = 0; i < info->dlpi_phnum; ++i)
            {
                const auto &segment = info->dlpi_phdr[i];
                const uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
                if (segment.p_type != PT_LOAD ||
                    !Module{begin, begin + segment.p_memsz}.contains(reinterpret_cast<const void *>(wanted.begin)))
                    continue;
                wanted = {begin, begin + segment.p_memsz};
                return 1;
            }
            return 0;
        },
        &module);
    return module;
}

bool isLibrary(const void *caller)
{
    static const std::array modules = {moduleOf(KTGetFormTableSize), moduleOf(XML_ParserCreate_MM),
                                       moduleOf(ucnv_toUChars)};
    for (const Module &module : modules)
        if (module.contains(caller))
            return true;
    return false;
}

/** Counts one request of a watched library; whether it is to fail. */
bool fails(const void *caller)
{
    if (!heap.isWatched || !isLibrary(caller) || --heap.untilFailure != 0)
        return false;
    ++heap.failures;
    return true;
}

void *taken(void *block, const void *caller)
{
    if (heap.isWatched && block != nullptr && isLibrary(caller))
        *std::find(heap.blocks.begin(), heap.blocks.end() - 1, nullptr) = block;
    return block;
}

void forget(void *block)
{
    if (heap.isWatched && block != nullptr)
        std::replace(heap.blocks.begin(), heap.blocks.end(), block, static_cast<void *>(nullptr));
}

} // namespace

extern "C" {

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void __libc_free(void *block);

void *malloc(size_t size) noexcept
{
    const void *const caller = __builtin_return_address(0);
    return fails(caller) ? nullptr : taken(__libc_malloc(size), caller);
}

void *calloc(size_t count, size_t size) noexcept
{
    const void *const caller = __builtin_return_address(0);
    return fails(caller) ? nullptr : taken(__libc_calloc(count, size), caller);
}

void *realloc(void *block, size_t size) noexcept
{
    const void *const caller = __builtin_return_address(0);
    if (fails(caller))
        return nullptr;
    forget(block); // no request of these libraries fails by itself
    return taken(__libc_realloc(block, size), caller);
}

void free(void *block) noexcept
{
    forget(block);
    __libc_free(block);
}

} // extern "C"

// The library creates its few objects with these; nothing else in this program does.
void *operator new(size_t size, const std::nothrow_t &) noexcept
{
    const void *const caller = __builtin_return_address(0);
    return fails(caller) ? nullptr : taken(__libc_malloc(size), caller);
}

void HeapFaults::arm(unsigned n)
{
    isLibrary(nullptr); // finds the modules, for which the heap must not be watched yet
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

bool HeapFaults::arePossible()
{
    return true;
}

#else

bool HeapFaults::arePossible()
{
    return false;
}

void HeapFaults::arm(unsigned)
{
}

unsigned HeapFaults::disarm()
{
    return 0;
}

long HeapFaults::outstanding()
{
    return 0;
}

#endif
