#include "message/table_walk.h"

#include "lifecycle/global_state.h"

#include <algorithm>

bool kelto::TableWalk::start(MessageTable *table) noexcept
{
    if (msgTableList->IsInList(table) == nullptr)
        return false;
    m_table = table;
    m_index = SparseIndex::find(table);
    return true;
}

uint32_t kelto::TableWalk::next(uint32_t after) const noexcept
{
    if (after >= m_table->msgCount)
        return 0;
    if (m_index != nullptr)
        return m_index->next(after);
    char *const *const messages = m_table->messages;
    char *const *const end = messages + m_table->msgCount + 1;
    const auto isThere = [](const char *message) { return message != nullptr; };
    char *const *const found = std::find_if(messages + after + 1, end, isThere);
    return found != end ? static_cast<uint32_t>(found - messages) : 0;
}
