/**
 * The process-global state: the reference count, the locks, the memory tag and the list of loaded tables. Only
 * lifecycle.cpp creates and destroys what stands here; the rest of the library reads it, and asks isStarted() before it
 * does. A handle is null exactly while its object does not exist.
 */
#ifndef KELTO_LIFECYCLE_GLOBAL_STATE_H
#define KELTO_LIFECYCLE_GLOBAL_STATE_H

class MsgTableList;

extern "C" {
#pragma GCC visibility push(default)

extern void *ktpLock;         /**< the spin lock that serialises KTInit() */
extern int keltoRefCount;     /**< calls of KTInit() not yet matched by KTClean(); changed atomically */
extern bool keltoInitialized; /**< true from a successful start to the tear-down */
extern long glbZELHandle;     /**< the platform handle given to the start; 0 when KTInit() started the library */
extern void *glbResHandle;    /**< the memory tag of every ZEL_malloc() */
extern void *tableListMutex;  /**< guards the list of message tables */
extern void *formTableMutex;  /**< guards the encoder of the built-in form table */
extern void *refCountMutex;   /**< guards the decrement of keltoRefCount */
extern MsgTableList *msgTableList;

#pragma GCC visibility pop
}

namespace kelto
{

/** Whether the operations that use the state above may run; the first thing that each of them asks. */
inline bool isStarted() noexcept
{
    return __atomic_load_n(&keltoInitialized, __ATOMIC_ACQUIRE);
}

} // namespace kelto

#endif
