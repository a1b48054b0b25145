#include "message/table_list.h"

#include "lifecycle/global_state.h"
#include "message/loading.h"
#include "platform/zel.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <gmock/gmock.h>
#include <random>

static_assert(offsetof(MessageTable, productVersion) == 8 && offsetof(MessageTable, language) == 16 &&
              offsetof(MessageTable, country) == 19 && offsetof(MessageTable, msgCount) == 24 &&
              offsetof(MessageTable, messages) == 32 && sizeof(MessageTable) == 40);
static_assert(offsetof(tableItem, prev) == 8 && offsetof(tableItem, next) == 16 && sizeof(tableItem) == 24);
static_assert(sizeof(MsgTableList) == 16);

namespace
{

class MsgTableListTest : public MessageTest
{
};

template <typename T> T *take(size_t bytes = sizeof(T))
{
    return static_cast<T *>(std::memset(ZEL_malloc(glbResHandle, bytes), 0, bytes));
}

MessageTable *makeTable()
{
    auto *const table = take<MessageTable>();
    table->productName = take<char>();
    table->productVersion = take<char>();
    table->messages = take<char *>();
    return table;
}

/** The fields of a list. */
struct Fields
{
    tableItem *head;
    unsigned count;
};

/** Walks the list both ways; the tables from the newest on. */
std::vector<MessageTable *> tablesOf(MsgTableList &list)
{
    Fields fields{};
    std::memcpy(static_cast<void *>(&fields), static_cast<void *>(&list), sizeof fields);
    std::vector<MessageTable *> tables;
    const tableItem *last = fields.head;
    for (tableItem *item = list.Head(); item != nullptr; item = item->next)
    {
        EXPECT_EQ(item->prev, last);
        EXPECT_EQ(list.IsInList(item->table), item);
        tables.push_back(item->table);
        last = item;
    }
    EXPECT_EQ(fields.head->table, nullptr);
    EXPECT_EQ(fields.head->prev, last);
    EXPECT_EQ(fields.head->next, list.Head());
    EXPECT_EQ(fields.count, tables.size());
    EXPECT_EQ(list.TableCount(), tables.size());
    return tables;
}

TEST_F(MsgTableListTest, IsWellLinkedAfterAnyInsertionsAndRemovals)
{
    MsgTableList list;
    std::vector<MessageTable *> expected;
    std::minstd_rand random(1);
    for (int step = 0; step < 2000; ++step)
    {
        if (expected.empty() || (expected.size() < 6 && random() % 2 == 0))
        {
            expected.insert(expected.begin(), makeTable());
            ASSERT_EQ(list.Insert(expected.front()), 0);
        }
        else
        {
            const auto removed = expected.begin() + static_cast<long>(random() % expected.size());
            MessageTable *const table = *removed;
            ASSERT_EQ(list.Remove(table), 0);
            ASSERT_EQ(list.Remove(table), KT_ERR_TABLE_NOT_FOUND);
            expected.erase(removed);
        }
        ASSERT_EQ(tablesOf(list), expected) << "step " << step;
    }
}

TEST_F(MsgTableListTest, FreesEveryTableAndNodeAtItsEnd)
{
    const Outstanding before = FakeZel::outstanding();
    alignas(MsgTableList) std::array<unsigned char, sizeof(MsgTableList)> storage = {};
    auto *const list = new (storage.data()) MsgTableList;
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(list->Insert(makeTable()), 0);
    FakeZel::record();
    list->~MsgTableList();
    EXPECT_THAT(storage, testing::Each(0)) << "no node, and none counted";
    EXPECT_EQ(FakeZel::outstanding(), before);
    EXPECT_EQ(FakeZel::count(Operation::Free), 3 * 4u + 3 + 1);
    EXPECT_EQ(FakeZel::count(Operation::MutexAcquire), 0u);
}

TEST_F(MsgTableListTest, SetsWhatATableOwnsToNullBeforeTheTableGoes)
{
    MessageTable *const table = makeTable();
    bool isFreed = false;
    MsgTableList list;
    ASSERT_EQ(list.Insert(table), 0);
    const FakeZel::Observer observer([&](const Call &call) {
        if (call.operation != Operation::Free || call.object != table)
            return;
        isFreed = true;
        EXPECT_EQ(table->productName, nullptr);
        EXPECT_EQ(table->productVersion, nullptr);
        EXPECT_EQ(table->messages, nullptr);
    });
    EXPECT_EQ(list.Remove(table), 0);
    EXPECT_TRUE(isFreed);
}

TEST_F(MsgTableListTest, LeavesATableToTheCallerWhenThereIsNoNodeForIt)
{
    MsgTableList list;
    MessageTable *const table = makeTable();
    FakeZel::fail(Operation::Malloc);
    EXPECT_EQ(list.Insert(table), KT_ERR_NO_MEMORY);
    EXPECT_TRUE(tablesOf(list).empty());
    EXPECT_EQ(list.Insert(table), 0);
}

TEST_F(MsgTableListTest, WithoutASentinelStaysEmpty)
{
    FakeZel::fail(Operation::Malloc);
    MsgTableList list;
    EXPECT_FALSE(list.hasSentinel());
    EXPECT_EQ(list.Insert(nullptr), KT_ERR_NO_MEMORY);
    EXPECT_EQ(list.Remove(nullptr), KT_ERR_TABLE_NOT_FOUND);
    EXPECT_EQ(list.Head(), nullptr);
    EXPECT_EQ(list.TableCount(), 0u);
}

} // namespace
