#include "kelto.h"
#include "lifecycle/state.h"
#include "message/sparse_index.h"
#include "message/table_list.h"
#include "platform/scoped.h"

#include <algorithm>
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

namespace
{

/** The lowest ID above this one that has a message; 0 when there is none. */
uint32_t nextId(const MessageTable &table, uint32_t after)
{
    if (after >= table.msgCount)
        return 0;
    if (const kelto::SparseIndex *const index = kelto::SparseIndex::find(&table))
        return index->next(after);
    char **const end = table.messages + table.msgCount + 1;
    char **const found =
        std::find_if(table.messages + after + 1, end, [](char *message) { return message != nullptr; });
    return found != end ? static_cast<uint32_t>(found - table.messages) : 0;
}

} // namespace

int KTNextMessage(MessageTable *table, unsigned int after, unsigned int *id, char **message)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    *id = 0;
    *message = nullptr;
    const kelto::MutexGuard lock(tableListMutex);
    if (msgTableList->IsInList(table) == nullptr)
        return KT_ERR_TABLE_NOT_FOUND;
    *id = nextId(*table, after);
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
