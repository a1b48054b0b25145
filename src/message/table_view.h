/**
 * The messages of a table for a call that reads several: the handle is looked up once. As with a message of
 * KTGetMessage(), nobody may release the table meanwhile.
 */
#ifndef KELTO_MESSAGE_TABLE_VIEW_H
#define KELTO_MESSAGE_TABLE_VIEW_H

#include "message/table_list.h"

namespace kelto
{

class TableView
{
public:
    /** Finds a table; false for a handle that is not in the list. The library is started. */
    bool open(const MessageTable *table) noexcept;

    /** The message of a number, or null. */
    const char *message(uint64_t id) const noexcept
    {
        return id - 1 < m_table->msgCount ? m_table->messages[id] : nullptr; // 0 gives null too: it wraps
    }

    /** The language that the file names, two letters, and the country, which may be the empty text. */
    const char *language() const noexcept { return m_table->language; }
    const char *country() const noexcept { return m_table->country; }

private:
    const MessageTable *m_table = nullptr;
};

} // namespace kelto

#endif
