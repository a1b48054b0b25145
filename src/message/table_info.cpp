// KTTableInfo(): what a file says of itself, its product, version and language, and how many messages it has.

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/table_list.h"
#include "platform/scoped.h"

#include <cstring>

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
