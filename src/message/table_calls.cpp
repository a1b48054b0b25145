#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/table_list.h"
#include "message/table_walk.h"
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

int KTTableInfo(MessageTable *table, KTTableFacts *info)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (info == nullptr || info->structSize < sizeof(KTTableFacts))
        return KT_ERR_INVALID_PARAMETER;
    const kelto::MutexGuard lock(tableListMutex);
    if (msgTableList->IsInList(table) == nullptr)
        return KT_ERR_TABLE_NOT_FOUND;
    info->productName = table->productName;
    info->productVersion = table->productVersion;
    std::memcpy(info->language, table->language, sizeof info->language);
    std::memcpy(info->country, table->country, sizeof info->country);
    info->highestId = table->msgCount;
    return 0;
}

int KTFreeMessages(MessageTable *table)
{
    return kelto::isStarted() ? msgTableList->Remove(table) : KT_ERR_NOT_INITIALIZED;
}
