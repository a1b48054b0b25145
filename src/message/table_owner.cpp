#include "message/table_owner.h"

#include "lifecycle/global_state.h"
#include "platform/scoped.h"

#include <utility>

// The index comes first: once the table is in the list, another thread may have released it already.
int kelto::insertTable(TableOwner table, std::unique_ptr<SparseIndex> index) noexcept
{
    const bool isIndexed = index != nullptr;
    SparseIndex::attach(std::move(index), table.get());
    const int result = msgTableList->Insert(table.get());
    if (result == 0)
    {
        static_cast<void>(table.release());
        return 0;
    }
    if (isIndexed)
    {
        const MutexGuard lock(tableListMutex);
        SparseIndex::detach(table.get());
    }
    return result;
}
