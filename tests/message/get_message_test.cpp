#include "message/loading.h"
#include "support/guarded.h"

namespace
{

class GetMessageTest : public MessageTest
{
protected:
    MessageTable *loadTable(const std::string &xml)
    {
        MessageTable *table = nullptr;
        FakeZel::file(memoryPath, xml);
        EXPECT_EQ(KTLoadMessages(memoryPath, &table), 0);
        return table;
    }
};

char marker[] = "untouched";

TEST_F(GetMessageTest, AcceptsExactlyTheIdsUpToTheHighest)
{
    MessageTable *const table = loadTable(MessageFile().unit(5, "five").unit(2, "two").xml());
    struct Row
    {
        unsigned id;
        int result;
        const char *text;
    };
    for (const Row &row : {Row{0, KT_ERR_INVALID_MSG_ID, nullptr}, Row{1, 0, nullptr}, Row{2, 0, "two"},
                           Row{3, 0, nullptr}, Row{4, 0, nullptr}, Row{5, 0, "five"},
                           Row{6, KT_ERR_INVALID_MSG_ID, nullptr}, Row{0xFFFFFFFF, KT_ERR_INVALID_MSG_ID, nullptr}})
    {
        char *message = marker;
        EXPECT_EQ(KTGetMessage(table, row.id, &message), row.result) << row.id;
        EXPECT_STREQ(message, row.text) << row.id;
    }
    MessageTable *const empty = loadTable(MessageFile().xml());
    char *message = marker;
    EXPECT_EQ(KTGetMessage(empty, 1, &message), KT_ERR_INVALID_MSG_ID);
    EXPECT_EQ(message, nullptr);
}

/** All messages, as the walk gives them. */
std::string walk(MessageTable *table)
{
    std::string all;
    unsigned id = 0;
    char *message = nullptr;
    while (KTNextMessage(table, id, &id, &message) == 0)
        all += std::to_string(id) + "=" + message + " ";
    EXPECT_EQ(id, 0u);
    EXPECT_EQ(message, nullptr);
    return all;
}

TEST_F(GetMessageTest, WalksFromMessageToMessage)
{
    struct Row
    {
        std::string xml, all;
    };
    MessageFile dense = MessageFile().unit(65536, "z");
    std::string allOfDense;
    for (int id = 1; id <= 1024; ++id)
    {
        dense.unit(id, "m");
        allOfDense += std::to_string(id) + "=m ";
    }
    allOfDense += "65536=z ";
    for (const Row &row :
         {Row{MessageFile().xml(), ""},
          {MessageFile().unit(5, "b").unit(2, "a").unit(6, "").xml(), "2=a 5=b 6= "},
          {MessageFile().unit(4194304, "c").unit(1, "a").unit(4194303, "b").xml(), "1=a 4194303=b 4194304=c "},
          {dense.xml(), allOfDense}})
    {
        MessageTable *const table = loadTable(row.xml), *const other = loadTable(row.xml);
        EXPECT_EQ(KTFreeMessages(other), 0);
        EXPECT_EQ(walk(table), row.all);
        unsigned id = 7;
        char *message = marker;
        EXPECT_EQ(KTNextMessage(table, 0xFFFFFFFF, &id, &message), KT_ERR_INVALID_MSG_ID);
        EXPECT_EQ(id, 0u);
        EXPECT_EQ(KTNextMessage(other, 0, &id, &message), KT_ERR_TABLE_NOT_FOUND);
        EXPECT_EQ(KTNextMessage(table, 0, nullptr, &message), KT_ERR_INVALID_PARAMETER);
        EXPECT_EQ(KTNextMessage(table, 0, &id, nullptr), KT_ERR_INVALID_PARAMETER);
    }
}

TEST_F(GetMessageTest, WalksOverTheTablesThatAreLeft)
{
    MessageTable *tables[4];
    for (MessageTable *&table : tables)
        table = loadTable(MessageFile().unit(4194304, "b").unit(1, "a").xml());
    for (const size_t freed : {1, 3, 0}) // in the middle, the latest, the first
    {
        EXPECT_EQ(KTFreeMessages(tables[freed]), 0);
        EXPECT_EQ(walk(tables[2]), "1=a 4194304=b ");
    }
}

// What the file has in the second pass decides, whatever was counted in the first.
TEST_F(GetMessageTest, WalksOverAllMessagesOfAFileThatChanged)
{
    MessageTable *table = nullptr;
    FakeZel::file(memoryPath, MessageFile().unit(4194304, "abcdefg").xml())
        .thenBytes(MessageFile().unit(4194304, "a").unit(1, "b").unit(2, "c").xml());
    ASSERT_EQ(KTLoadMessages(memoryPath, &table), 0);
    EXPECT_EQ(walk(table), "1=b 2=c 4194304=a ");
}

TEST_F(GetMessageTest, TellsWhatTheFileSays)
{
    MessageTable *const table = loadTable(MessageFile().unit(7, "a").xml());
    KTTableFacts facts = {};
    EXPECT_EQ(KTTableInfo(table, &facts), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTTableInfo(table, nullptr), KT_ERR_INVALID_PARAMETER);
    facts.structSize = sizeof facts + 1;
    EXPECT_EQ(KTTableInfo(nullptr, &facts), KT_ERR_TABLE_NOT_FOUND);
    EXPECT_EQ(facts.productName, nullptr);
    EXPECT_EQ(KTTableInfo(table, &facts), 0);
    facts = {};
    facts.structSize = sizeof facts;
    ASSERT_EQ(KTTableInfo(table, &facts), 0);
    EXPECT_EQ(std::string(facts.productName) + facts.productVersion + facts.language + facts.country, "Example1.0enUS");
    EXPECT_EQ(facts.highestId, 7u);
}

TEST_F(GetMessageTest, RefusesHandlesThatAreNotLoaded)
{
    MessageTable *const released = loadTable(MessageFile().unit(1, "one").xml());
    EXPECT_EQ(KTFreeMessages(released), 0);
    for (MessageTable *const handle : {released, static_cast<MessageTable *>(nullptr)})
    {
        char *message = marker;
        EXPECT_EQ(KTGetMessage(handle, 1, &message), KT_ERR_TABLE_NOT_FOUND);
        EXPECT_EQ(message, nullptr);
        EXPECT_EQ(KTFreeMessages(handle), KT_ERR_TABLE_NOT_FOUND);
    }
}

} // namespace
