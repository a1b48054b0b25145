/** A table that is being built: it is freed with all that it owns, unless it gets into the list. */
#ifndef KELTO_MESSAGE_TABLE_OWNER_H
#define KELTO_MESSAGE_TABLE_OWNER_H

#include "message/sparse_index.h"
#include "message/table_list.h"

#include <memory>

namespace kelto
{

struct TableFree
{
    void operator()(MessageTable *table) const noexcept { freeTable(table); }
};

using TableOwner = std::unique_ptr<MessageTable, TableFree>;

/** Hands a complete table to the list, with its index if it has one. @return 0 or KT_ERR_NO_MEMORY. */
int insertTable(TableOwner table, std::unique_ptr<SparseIndex> index) noexcept;

} // namespace kelto

#endif
