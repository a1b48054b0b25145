/** A walk over the messages of a table, for KTNextMessage() and for writing a table out. */
#ifndef KELTO_MESSAGE_TABLE_WALK_H
#define KELTO_MESSAGE_TABLE_WALK_H

#include "message/sparse_index.h"
#include "message/table_list.h"

namespace kelto
{

class TableWalk
{
public:
    /**
     * Looks a table up. The walk is valid while the caller holds `tableListMutex`. @return whether the table is there.
     */
    bool start(MessageTable *table) noexcept;

    /** The lowest ID above this one that has a message; 0 when there is none. */
    uint32_t next(uint32_t after) const noexcept;

    const MessageTable &table() const noexcept { return *m_table; }

private:
    const MessageTable *m_table = nullptr;
    const SparseIndex *m_index = nullptr;
};

} // namespace kelto

#endif
