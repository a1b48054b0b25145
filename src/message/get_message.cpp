#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/table_list.h"
#include "message/table_walk.h"
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

int KTNextMessage(MessageTable *table, unsigned int after, unsigned int *id, char **message)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (id == nullptr || message == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    *id = 0;
    *message = nullptr;
    const kelto::MutexGuard lock(tableListMutex);
    kelto::TableWalk walk;
    if (!walk.start(table))
        return KT_ERR_TABLE_NOT_FOUND;
    *id = walk.next(after);
    if (*id == 0)
        return KT_ERR_INVALID_MSG_ID;
    *message = table->messages[*id];
    return 0;
}
