// The operations ZEL_... on POSIX: memory, locks and files. A program may have its own in their place.

#include "platform/zel.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

int ZEL_Startup(long /*handle*/, long /*reserved*/)
{
    return 0;
}

int ZEL_Cleanup(long /*handle*/)
{
    return 0;
}

// A tag is a mere token: a counter behind it would be shared by every thread that formats.
int ZEL_AllocMemTag(long /*handle*/, void **tag)
{
    static char token;
    *tag = &token;
    return 0;
}

int ZEL_FreeMemTag(void **tag)
{
    *tag = nullptr;
    return 0;
}

void *ZEL_malloc(void * /*tag*/, unsigned long size)
{
    return std::malloc(size);
}

int ZEL_free(void *block)
{
    std::free(block);
    return 0;
}

int ZEL_LMutexCreate(void **mutex, long /*parameter*/)
{
    *mutex = new (std::nothrow) pthread_mutex_t PTHREAD_MUTEX_INITIALIZER;
    return *mutex != nullptr ? 0 : ZEL_ERR_RESOURCES;
}

int ZEL_LMutexDestroy(void **mutex)
{
    const std::unique_ptr<pthread_mutex_t> destroyed(static_cast<pthread_mutex_t *>(std::exchange(*mutex, nullptr)));
    pthread_mutex_destroy(destroyed.get());
    return 0;
}

int ZEL_LMutexAcquire(void *mutex)
{
    return pthread_mutex_lock(static_cast<pthread_mutex_t *>(mutex));
}

int ZEL_LMutexRelease(void *mutex)
{
    return pthread_mutex_unlock(static_cast<pthread_mutex_t *>(mutex));
}

// The holder may start the whole library inside the lock, so waiting gives the processor away instead of burning it.
int ZEL_EnterSpinLock(void **lock)
{
    while (__atomic_exchange_n(lock, reinterpret_cast<void *>(1), __ATOMIC_ACQUIRE) != nullptr)
        sched_yield();
    return 0;
}

int ZEL_LeaveSpinLock(void **lock)
{
    __atomic_store_n(lock, nullptr, __ATOMIC_RELEASE);
    return 0;
}

namespace
{

constexpr size_t readAheadBytes = size_t{32} * 1024;

struct OpenFile
{
    int descriptor;
    uint64_t bufferOffset; // the file position of the next byte in the buffer
    size_t next, end;      // the bytes read ahead and not yet handed out
    char buffer[readAheadBytes];
};

/** Reads until the bytes are complete or the file ends; the number read, or -1. */
ssize_t readFully(int descriptor, char *to, size_t bytes, uint64_t offset)
{
    size_t done = 0;
    while (done < bytes)
    {
        const ssize_t got = pread(descriptor, to + done, bytes - done, static_cast<off_t>(offset + done));
        if (got == 0)
            break;
        if (got > 0)
            done += static_cast<size_t>(got);
        else if (errno != EINTR)
            return -1;
    }
    return static_cast<ssize_t>(done);
}

/** Reads without the buffer, which would only add a copy to a read of this size. */
int readDirectly(int descriptor, uint64_t *offset, char *to, unsigned long *length)
{
    const ssize_t got = readFully(descriptor, to, *length, *offset);
    if (got <= 0)
        return got < 0 ? ZEL_ERR_READ : ZEL_ERR_END_OF_FILE;
    *length = static_cast<unsigned long>(got);
    *offset += *length;
    return 0;
}

/** Hands out buffered bytes; fewer than asked only where the buffer ends. */
size_t takeBuffered(OpenFile &file, char *to, size_t bytes)
{
    const size_t buffered = file.end - file.next;
    const size_t taken = bytes < buffered ? bytes : buffered;
    std::memcpy(to, file.buffer + file.next, taken);
    file.next += taken;
    file.bufferOffset += taken;
    return taken;
}

int openRegularFile(const char *path)
{
    // Asked before the file is opened, since opening a device may already do something; and again afterwards, since the
    // name may have come to mean another file in between.
    struct stat status;
    if (stat(path, &status) != 0)
        return -1;
    if (!S_ISREG(status.st_mode))
    {
        errno = EINVAL;
        return -1;
    }
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)))
    {
        close(descriptor);
        errno = EINVAL;
        return -1;
    }
    return descriptor;
}

} // namespace

int ZEL_FileOpen(const char *path, int /*mode*/, int, int, void **handle)
{
    *handle = nullptr;
    const int descriptor = openRegularFile(path);
    if (descriptor < 0)
        return errno == ENOENT || errno == ENOTDIR ? ZEL_ERR_FILE_MISSING : ZEL_ERR_FILE_ACCESS;
    auto *file = new (std::nothrow) OpenFile;
    if (file == nullptr)
    {
        close(descriptor);
        return ZEL_ERR_NO_MEMORY;
    }
    file->descriptor = descriptor;
    file->bufferOffset = 0;
    file->next = file->end = 0;
    *handle = file;
    return 0;
}

int ZEL_FileRead(void *handle, uint64_t *offset, void *buffer, unsigned long *length)
{
    auto &file = *static_cast<OpenFile *>(handle);
    auto *to = static_cast<char *>(buffer);
    if (*length >= readAheadBytes)
        return readDirectly(file.descriptor, offset, to, length);
    if (*offset != file.bufferOffset)
    {
        file.bufferOffset = *offset;
        file.next = file.end = 0;
    }
    size_t done = 0;
    while (done < *length)
    {
        if (file.next == file.end)
        {
            const ssize_t got = readFully(file.descriptor, file.buffer, readAheadBytes, file.bufferOffset);
            file.next = 0;
            file.end = got > 0 ? static_cast<size_t>(got) : 0;
            if (got < 0)
                return ZEL_ERR_READ;
            if (got == 0)
                break;
        }
        done += takeBuffered(file, to + done, *length - done);
    }
    if (done == 0 && *length > 0)
        return ZEL_ERR_END_OF_FILE;
    *length = done;
    *offset += done;
    return 0;
}

int ZEL_FileClose(void **handle)
{
    const std::unique_ptr<OpenFile> file(static_cast<OpenFile *>(std::exchange(*handle, nullptr)));
    close(file->descriptor);
    return 0;
}
