#include "kelto.h"
#include "lifecycle/state.h"
#include "message/table_list.h"
#include "platform/scoped.h"

#include <cstring>

int KTGetMessage(MessageTable *table, unsigned int id, char **message)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    *message = nullptr;
    const kelto::MutexGuard lock(tableListMutex);
    if (msgTableList->IsInList(table) == nullptr)
        return KT_ERR_TABLE_NOT_FOUND;
    if (id == 0 || id > table->msgCount)
        return KT_ERR_INVALID_MSG_ID;
    *message = table->messages[id];
    return 0;
}

int KTFreeMessages(MessageTable *table)
{
    return kelto::isStarted() ? msgTableList->Remove(table) : KT_ERR_NOT_INITIALIZED;
}

namespace
{

/** Where the first two zero bytes in a row begin. */
const char *terminatingPair(const char *message)
{
    const char *zero = message + std::strlen(message);
    while (zero[1] != '\0')
        zero += 1 + std::strlen(zero + 1);
    return zero;
}

} // namespace

int KTMsgLen(const char *message)
{
    return static_cast<int>(terminatingPair(message) - message);
}

const char *KTMsgCpy(const char *source, char *destination)
{
    const char *const end = terminatingPair(source);
    const size_t length = static_cast<size_t>(end - source);
    std::memmove(destination, source, length);
    std::memset(destination + length, 0, 2);
    return end;
}
