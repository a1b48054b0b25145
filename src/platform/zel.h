/**
 * The ZEL operations: the only door from the library to tag memory, locks and files. Everything above calls these names
 * and nothing beside them, and a program may define any of them itself, in which case the library calls the program's:
 * they are dynamic symbols while all other functions bind inside the library. Success is 0 everywhere; failures are
 * negative where nothing else is said.
 */
#ifndef KELTO_PLATFORM_ZEL_H
#define KELTO_PLATFORM_ZEL_H

#include <cstdint>

extern "C" {
#pragma GCC visibility push(default)

constexpr int ZEL_ERR_FILE_MISSING = -5991; /**< no such file, or a part of the path is missing or no directory */
constexpr int ZEL_ERR_FILE_ACCESS = -5993;  /**< the file cannot be opened for reading, or is not a regular one */
constexpr int ZEL_ERR_READ = -5994;         /**< the system failed to read */
constexpr int ZEL_ERR_END_OF_FILE = -5995;  /**< no bytes remain at this position */
constexpr int ZEL_ERR_RESOURCES = -5999;    /**< the system has no lock or no memory left */
constexpr int ZEL_ERR_NO_MEMORY = -7999;    /**< a file has no memory for its handle; callers hand it on as it is */

/** Starts the platform for one user; the handle and the reserved number may be anything, 0 included. */
int ZEL_Startup(long handle, long reserved);
/** Undoes ZEL_Startup(); called only for a handle other than 0. */
int ZEL_Cleanup(long handle);

/** Creates a memory tag; *tag is non-null afterwards. */
int ZEL_AllocMemTag(long handle, void **tag);
/** Releases a tag and sets *tag to null. Blocks taken from it are freed one by one before. */
int ZEL_FreeMemTag(void **tag);
/**
 * Allocates a block that suits every type, its content undefined; null on failure. Any number of threads may call at
 * once, and share nothing but the C heap.
 */
void *ZEL_malloc(void *tag, unsigned long size);
/** Frees a block of ZEL_malloc(), or null. */
int ZEL_free(void *block);

/** Creates a mutex that is not recursive; the parameter is the lock's order for tools, and not used. */
int ZEL_LMutexCreate(void **mutex, long parameter);
/** Destroys an unlocked mutex and sets *mutex to null. */
int ZEL_LMutexDestroy(void **mutex);
/** Lock and unlock. A result other than 0 is the system's error number: the caller has broken the rules. */
int ZEL_LMutexAcquire(void *mutex);
int ZEL_LMutexRelease(void *mutex);

/** Enters a spin lock, a pointer-sized object in static storage, zero at load. Waiting yields the processor. */
int ZEL_EnterSpinLock(void **lock);
int ZEL_LeaveSpinLock(void **lock);

/**
 * Opens a regular file for reading and stores a handle. A directory, a FIFO and a device are refused at once, without
 * blocking.
 * @param mode  1, reading; the two numbers after it are 0.
 * @return 0, ZEL_ERR_FILE_MISSING, ZEL_ERR_FILE_ACCESS, ZEL_ERR_NO_MEMORY; *handle is null on failure.
 */
int ZEL_FileOpen(const char *path, int mode, int, int, void **handle);
/**
 * Reads up to *length bytes at *offset, stores their number in *length and advances *offset by it; fewer only at the
 * end of the file. Bytes behind the position may be read ahead into the handle, which serve the reads that follow on.
 * @return 0 when there were bytes, ZEL_ERR_END_OF_FILE when none remain, ZEL_ERR_READ.
 */
int ZEL_FileRead(void *handle, uint64_t *offset, void *buffer, unsigned long *length);
/** Closes a file and sets *handle to null. */
int ZEL_FileClose(void **handle);

#pragma GCC visibility pop
}

#endif
