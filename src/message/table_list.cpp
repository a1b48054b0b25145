#include "message/table_list.h"

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/sparse_index.h"
#include "platform/scoped.h"

namespace
{

tableItem *allocateItem()
{
    return kelto::allocate<tableItem>(glbResHandle, 1).release();
}

template <typename T> void freeOwned(T *&block)
{
    if (block != nullptr)
        ZEL_free(block);
    block = nullptr;
}

} // namespace

MsgTableList::MsgTableList() : head(allocateItem()), count(0)
{
    if (head != nullptr)
        *head = {nullptr, head, nullptr};
}

MsgTableList::~MsgTableList()
{
    while (head != nullptr)
    {
        tableItem *const freed = head;
        head = freed->next;
        freeTableItem(freed);
    }
    count = 0;
}

tableItem *MsgTableList::Head()
{
    return head != nullptr ? head->next : nullptr;
}

unsigned MsgTableList::TableCount() // NOLINT(readability-make-member-function-const): exported as it is
{
    return count;
}

tableItem *MsgTableList::IsInList(MessageTable *table) // NOLINT(readability-make-member-function-const): likewise
{
    return hasSentinel() ? find(table) : nullptr;
}

int MsgTableList::Insert(MessageTable *table)
{
    tableItem *const item = head != nullptr ? allocateItem() : nullptr;
    if (item == nullptr)
        return KT_ERR_NO_MEMORY;

    const kelto::MutexGuard lock(tableListMutex);
    tableItem *const oldFirst = Head();
    *item = {table, head, oldFirst};
    (oldFirst != nullptr ? oldFirst : head)->prev = item;
    head->next = item;
    ++count;
    return 0;
}

int MsgTableList::Remove(MessageTable *table)
{
    const kelto::MutexGuard lock(tableListMutex);
    tableItem *const item = IsInList(table);
    if (item == nullptr)
        return KT_ERR_TABLE_NOT_FOUND;

    // Behind the last node stands the sentinel, whose prev is the last node.
    item->prev->next = item->next;
    (item->next != nullptr ? item->next : head)->prev = item->prev;
    freeTableItem(item);
    --count;
    return 0;
}

void MsgTableList::freeTableItem(tableItem *item) // NOLINT(readability-convert-member-functions-to-static): likewise
{
    if (item->table != nullptr)
    {
        kelto::SparseIndex::detach(item->table);
        kelto::freeTable(item->table);
    }
    item->table = nullptr;
    ZEL_free(item);
}

void kelto::freeTable(MessageTable *table) noexcept
{
    freeOwned(table->productName);
    freeOwned(table->productVersion);
    freeOwned(table->messages);
    ZEL_free(table);
}

int KTFreeMessages(MessageTable *table)
{
    return kelto::isStarted() ? msgTableList->Remove(table) : KT_ERR_NOT_INITIALIZED;
}
