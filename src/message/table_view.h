/**
 * The messages of a table for a call that reads several: the handle is looked up once. As with a message of
 * KTGetMessage(), nobody may release the table meanwhile.
 */
#ifndef KELTO_MESSAGE_TABLE_VIEW_H
#define KELTO_MESSAGE_TABLE_VIEW_H

#include "kelto.h"

#include <cstdint>

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
        return id - 1 < m_count ? m_messages[id] : nullptr; // 0 too, since it wraps
    }

    uint32_t highestId() const noexcept { return m_count; }

    /** The language that the file names, as "de_AT". */
    const char *language() const noexcept { return m_language; }

private:
    char **m_messages = nullptr;
    uint32_t m_count = 0;
    char m_language[6] = {};
};

} // namespace kelto

#endif
