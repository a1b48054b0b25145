#include "message/table_view.h"

#include "lifecycle/global_state.h"
#include "message/table_list.h"
#include "platform/scoped.h"

#include <cstring>

namespace kelto
{

bool TableView::open(const MessageTable *table) noexcept
{
    const MutexGuard lock(tableListMutex);
    if (msgTableList->find(table) == nullptr)
        return false;
    m_messages = table->messages;
    m_count = table->msgCount;
    std::memcpy(m_language, table->language, 2);
    m_language[2] = table->country[0] != '\0' ? '_' : '\0';
    std::memcpy(m_language + 3, table->country, 2);
    return true;
}

} // namespace kelto
