#include "message/table_view.h"

#include "lifecycle/global_state.h"
#include "platform/scoped.h"

namespace kelto
{

bool TableView::open(const MessageTable *table) noexcept
{
    const MutexGuard lock(tableListMutex);
    m_table = msgTableList->find(table) != nullptr ? table : nullptr;
    return m_table != nullptr;
}

} // namespace kelto
