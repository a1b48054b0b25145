/**
 * Tells what is taken from the heap, by standing in for the C library's allocator.
 *
 *     bench_memory WORK CONTENDER    blocks taken by one call, and the most bytes in use at once during it
 *     bench_memory --catalogs        for catalogs of some sizes: messages, the bytes of their text, of the pointers to
 *                                    them, blocks and bytes kept by the loaded catalog, and the peak while loading
 */
#include "workload.h"

#include "kelto.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

extern "C" void *__libc_malloc(size_t size);
extern "C" void __libc_free(void *block);

namespace
{

struct Heap
{
    size_t blocks = 0; // taken since the last reset
    size_t bytes = 0;  // in use
    size_t peak = 0;   // the most in use since the last reset

    void reset()
    {
        blocks = 0;
        peak = bytes;
    }
};

Heap heap;

/** What stands before each block, so that its size is known when it is freed. */
struct alignas(16) Header
{
    void *start; // as the C library gave it
    size_t size;
};

Header *headerOf(void *block)
{
    return static_cast<Header *>(block) - 1;
}

void *take(size_t size, size_t alignment)
{
    if (size > PTRDIFF_MAX - sizeof(Header) - alignment)
    {
        errno = ENOMEM;
        return nullptr;
    }
    char *start = static_cast<char *>(__libc_malloc(size + sizeof(Header) + alignment));
    if (start == nullptr)
        return nullptr;
    const auto address = reinterpret_cast<uintptr_t>(start) + sizeof(Header);
    void *block = start + sizeof(Header) + (alignment - address % alignment) % alignment;
    *headerOf(block) = {start, size};
    ++heap.blocks;
    heap.bytes += size;
    heap.peak = std::max(heap.peak, heap.bytes);
    return block;
}

void give(void *block)
{
    if (block == nullptr)
        return;
    heap.bytes -= headerOf(block)->size;
    __libc_free(headerOf(block)->start);
}

} // namespace

extern "C" {

void *malloc(size_t size)
{
    return take(size, alignof(Header));
}

void free(void *block)
{
    give(block);
}

void *calloc(size_t count, size_t size)
{
    size_t total = 0;
    if (__builtin_mul_overflow(count, size, &total))
        total = SIZE_MAX;
    void *block = take(total, alignof(Header));
    return block != nullptr ? memset(block, 0, total) : nullptr;
}

void *realloc(void *old, size_t size)
{
    void *block = take(size, alignof(Header));
    if (block != nullptr && old != nullptr)
    {
        memcpy(block, old, std::min(size, headerOf(old)->size));
        give(old);
    }
    return block;
}

void *aligned_alloc(size_t alignment, size_t size)
{
    return take(size, std::max(alignment, alignof(Header)));
}

void *memalign(size_t alignment, size_t size)
{
    return aligned_alloc(alignment, size);
}

int posix_memalign(void **block, size_t alignment, size_t size)
{
    *block = aligned_alloc(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

size_t malloc_usable_size(void *block)
{
    return block != nullptr ? headerOf(block)->size : 0;
}

} // extern "C"

namespace
{

void printCatalog(unsigned int messages)
{
    std::string path = bench::catalog("messages-" + std::to_string(messages) + ".xlf");
    const Heap before = heap;
    heap.reset();
    MessageTable *table = nullptr;
    bench::require(KTLoadMessages(path.data(), &table) == 0, "a message file cannot be loaded");
    const Heap after = heap;

    size_t text = 0;
    for (unsigned int id = 1; id <= messages; ++id)
    {
        char *message = nullptr;
        bench::require(KTGetMessage(table, id, &message) == 0 && message != nullptr, "a message is missing");
        text += static_cast<size_t>(KTMsgLen(message)) + 2;
    }
    printf("%u\t%zu\t%zu\t%zu\t%zu\n", messages, text, (messages + 1) * sizeof(char *), after.bytes - before.bytes,
           after.peak - before.bytes);
    KTFreeMessages(table);
}

int printCall(std::string_view work, std::string_view name)
{
    for (const bench::Contender &contender : bench::contenders())
        if (contender.work == work && contender.name == name)
        {
            const std::unique_ptr<bench::Job> job = contender.setUp();
            job->run(1);
            const Heap before = heap;
            heap.reset();
            job->run(1);
            printf("%zu\t%zu\n", heap.blocks, heap.peak - before.bytes);
            return 0;
        }
    fprintf(stderr, "nobody of that name does that work\n");
    return 2;
}

} // namespace

int main(int argc, char **argv)
{
    bench::startProcess();
    if (argc == 2 && strcmp(argv[1], "--catalogs") == 0)
    {
        for (unsigned int messages : {10U, 2000U, 20000U})
            printCatalog(messages);
        return 0;
    }
    if (argc == 3)
        return printCall(argv[1], argv[2]);
    fprintf(stderr, "usage: bench_memory --catalogs | WORK CONTENDER\n");
    return 2;
}
