#include "lifecycle/lifecycle.h"

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/table_list.h"
#include "platform/scoped.h"

#include <algorithm>
#include <clocale>
#include <iterator>
#include <new>

namespace
{

constexpr long mutexParameter = 1000;

/** The mutexes in the order of their creation, which is also that of their destruction. */
void **const mutexes[] = {&tableListMutex, &formTableMutex, &refCountMutex};

bool createMutex(void **mutex)
{
    if (ZEL_LMutexCreate(mutex, mutexParameter) == 0)
        return true;
    *mutex = nullptr;
    return false;
}

bool createMutexes()
{
    return std::all_of(std::begin(mutexes), std::end(mutexes), createMutex);
}

bool createTableList()
{
    msgTableList = new (std::nothrow) MsgTableList;
    return msgTableList != nullptr && msgTableList->hasSentinel();
}

bool createMemoryTag()
{
    if (ZEL_AllocMemTag(glbZELHandle, &glbResHandle) == 0)
        return true;
    glbResHandle = nullptr;
    return false;
}

/** Takes one user off the count, which never falls below 0; true for the last one. */
bool dropUser()
{
    int users = __atomic_load_n(&keltoRefCount, __ATOMIC_ACQUIRE);
    while (users > 0)
        if (__atomic_compare_exchange_n(&keltoRefCount, &users, users - 1, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE))
            return users == 1;
    return false;
}

void *turnLock = nullptr; // held while a use begins or ends that takes turns with others

} // namespace

long KeltoInit(long handle)
{
    if (glbZELHandle != 0)
        return glbZELHandle;
    if (kelto::isStarted())
        return reinterpret_cast<long>(msgTableList);
    glbZELHandle = handle;
    if (ZEL_Startup(handle, 0) != 0 || !createMemoryTag() || !createMutexes() || !createTableList())
    {
        KeltoClean();
        return 0;
    }
    __atomic_store_n(&keltoInitialized, true, __ATOMIC_RELEASE);
    return reinterpret_cast<long>(msgTableList);
}

// The list goes first: its blocks come from the memory tag, and a mutex guards it.
void KeltoClean(void)
{
    delete msgTableList;
    msgTableList = nullptr;
    for (void **mutex : mutexes)
        if (*mutex != nullptr)
        {
            ZEL_LMutexDestroy(mutex);
            *mutex = nullptr;
        }
    if (glbResHandle != nullptr)
    {
        ZEL_FreeMemTag(&glbResHandle);
        glbResHandle = nullptr;
    }
    if (glbZELHandle != 0)
    {
        ZEL_Cleanup(glbZELHandle);
        glbZELHandle = 0;
    }
    __atomic_store_n(&keltoInitialized, false, __ATOMIC_RELEASE);
}

int KTInit(void)
{
    int result = 0;
    ZEL_EnterSpinLock(&ktpLock);
    if (__atomic_add_fetch(&keltoRefCount, 1, __ATOMIC_ACQ_REL) == 1)
    {
        if (KeltoInit(0) == 0)
        {
            __atomic_store_n(&keltoRefCount, 0, __ATOMIC_RELEASE);
            result = KT_ERR_NOT_INITIALIZED;
        }
        setlocale(LC_CTYPE, "");
    }
    ZEL_LeaveSpinLock(&ktpLock);
    return result;
}

int KTClean(void)
{
    void *const mutex = refCountMutex;
    if (mutex != nullptr)
        ZEL_LMutexAcquire(mutex);
    const bool wasLast = dropUser();
    if (mutex != nullptr)
        ZEL_LMutexRelease(mutex);
    if (wasLast)
        KeltoClean();
    return 0;
}

int KTBeginUse(void)
{
    const kelto::SpinLockGuard turn(turnLock);
    return KTInit();
}

void KTEndUse(void)
{
    const kelto::SpinLockGuard turn(turnLock);
    KTClean();
}
