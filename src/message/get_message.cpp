// Messages by number, and from one to the next: KTGetMessage() and KTNextMessage().

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/table_list.h"
#include "message/table_walk.h"
#include "platform/zel.h"

namespace
{

/**
 * Holds `tableListMutex` to the end of the scope. The end is not inlined: a look-up is so short that keeping the values
 * for it costs more than the call.
 */
class ListLock
{
public:
    ListLock() noexcept { ZEL_LMutexAcquire(tableListMutex); }
    ~ListLock() { release(); }
    ListLock(const ListLock &) = delete;
    ListLock &operator=(const ListLock &) = delete;

private:
    [[gnu::noinline]] static void release() noexcept { ZEL_LMutexRelease(tableListMutex); }
};

} // namespace

int KTGetMessage(MessageTable *table, unsigned int id, char **message)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    *message = nullptr;
    const ListLock lock;
    if (msgTableList->find(table) == nullptr)
        return KT_ERR_TABLE_NOT_FOUND;
    const bool isOutside = id - 1 >= table->msgCount; // 0 too, since it wraps
    if (__builtin_expect(isOutside, false))           // so that the result needs no register of its own
        return KT_ERR_INVALID_MSG_ID;
    *message = table->messages[id];
    return 0;
}

int KTNextMessage(MessageTable *table, unsigned int after, unsigned int *id, char **message)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (id == nullptr || message == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    *id = 0;
    *message = nullptr;
    const ListLock lock;
    kelto::TableWalk walk;
    if (!walk.start(table))
        return KT_ERR_TABLE_NOT_FOUND;
    *id = walk.next(after);
    if (*id == 0)
        return KT_ERR_INVALID_MSG_ID;
    *message = table->messages[*id];
    return 0;
}
