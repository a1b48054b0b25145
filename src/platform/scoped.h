/**
 * Platform handles that release themselves, so that no path through the code repeats a clean-up: blocks of the memory
 * tag, a held mutex, an open file. None of them throws; a failed acquisition leaves an empty handle.
 */
#ifndef KELTO_PLATFORM_SCOPED_H
#define KELTO_PLATFORM_SCOPED_H

#include "platform/zel.h"

#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>

namespace kelto
{

struct TagFree
{
    void operator()(void *block) const noexcept { ZEL_free(block); }
};

/** A block of the memory tag that holds `T`s, freed at the end of the scope unless release() hands it on. */
template <typename T> using TagBlock = std::unique_ptr<T[], TagFree>;

/**
 * Room for `count` objects from the memory tag, not initialised; empty when there is none, or when the size overflows.
 */
template <typename T> TagBlock<T> allocate(void *tag, size_t count) noexcept
{
    constexpr size_t size = sizeof(T); // NOLINT(bugprone-sizeof-expression): pointers too are kept in blocks
    if (count > std::numeric_limits<size_t>::max() / size)
        return nullptr;
    return TagBlock<T>(static_cast<T *>(ZEL_malloc(tag, count * size)));
}

/** As allocate(), every byte zero. */
template <typename T> TagBlock<T> allocateZeroed(void *tag, size_t count) noexcept
{
    TagBlock<T> block = allocate<T>(tag, count);
    if (block != nullptr)
        std::memset(static_cast<void *>(block.get()), 0, count * sizeof(T));
    return block;
}

/** Holds a mutex to the end of the scope. */
class MutexGuard
{
public:
    explicit MutexGuard(void *mutex) noexcept : m_mutex(mutex) { ZEL_LMutexAcquire(m_mutex); }
    ~MutexGuard() { ZEL_LMutexRelease(m_mutex); }
    MutexGuard(const MutexGuard &) = delete;
    MutexGuard &operator=(const MutexGuard &) = delete;

private:
    void *m_mutex;
};

/** A spin lock in static storage, which needs no started library, held for a scope. */
class SpinLockGuard
{
public:
    explicit SpinLockGuard(void *&lock) noexcept : m_lock(lock) { ZEL_EnterSpinLock(&m_lock); }
    ~SpinLockGuard() { ZEL_LeaveSpinLock(&m_lock); }
    SpinLockGuard(const SpinLockGuard &) = delete;
    SpinLockGuard &operator=(const SpinLockGuard &) = delete;

private:
    void *&m_lock;
};

/** An open file, closed at the end of the scope; also closes a handle that a failed opening stored. */
class File
{
public:
    File() = default;
    ~File()
    {
        if (m_handle != nullptr)
            ZEL_FileClose(&m_handle);
    }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    int open(const char *path) noexcept { return ZEL_FileOpen(path, 1, 0, 0, &m_handle); }

    int read(uint64_t *offset, void *buffer, unsigned long *length) noexcept
    {
        return ZEL_FileRead(m_handle, offset, buffer, length);
    }

private:
    void *m_handle = nullptr;
};

} // namespace kelto

#endif
