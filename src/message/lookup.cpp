#include "kelto.h"
#include "lifecycle/state.h"
#include "message/table_list.h"
#include "platform/scoped.h"

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
