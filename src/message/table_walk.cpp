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
    char *const *const highest = messages + m_table->msgCount; // which always has a message
    const auto isThere = [](const char *message) { return message != nullptr; };
    return static_cast<uint32_t>(std::find_if(messages + after + 1, highest, isThere) - messages);
}
