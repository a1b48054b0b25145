#include "kelto.h"
#include "support/fake_zel.h"
#include "support/literals.h"
#include "support/page.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

class MessageFiles : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(KTInit(), 0); }
    void TearDown() override { KTClean(); }

    /** Loads a file from memory. */
    int load(const std::string &xml, bool raw = false)
    {
        FakeZel::file(m_path, xml);
        return (raw ? KTLoadRawMessages : KTLoadMessages)(m_path, &m_table);
    }

    /** A file of these units, in the smallest frame. */
    int loadUnits(const std::string &units,
                  const std::string &attributes = R"(source-language="en" product-name="P" product-version="1")")
    {
        return load("<xliff><file " + attributes + "><header/><body>" + units + "</body></file></xliff>");
    }

    std::string message(unsigned id)
    {
        char *text = nullptr;
        const int result = KTGetMessage(m_table, id, &text);
        if (result != 0)
            return KTResultName(result);
        return text != nullptr ? text : "(null)";
    }

    const std::string page = readPage("docs/message-files.md");

private:
    MessageTable *m_table = nullptr;
    char m_path[10] = "page.xlf";
};

} // namespace

TEST_F(MessageFiles, TheCompleteExampleHoldsTheMessagesOfItsTable)
{
    const std::string fence = "```xml\n";
    const size_t begin = page.find(fence) + fence.size();
    const std::string example = page.substr(begin, page.find("```", begin) - begin);
    const std::vector<Row> rows = rowsUnder(page, "| ID | `KTLoadMessages` | `KTLoadRawMessages` |");
    ASSERT_GT(rows.size(), 5U);
    for (const bool raw : {false, true})
    {
        ASSERT_EQ(load(example, raw), 0);
        for (const Row &row : rows)
            EXPECT_EQ(message(static_cast<unsigned>(std::stoul(row[0]))), unquoted(row[raw ? 2 : 1])) << row[0];
        EXPECT_EQ(message(static_cast<unsigned>(rows.size() + 1)), "KT_ERR_INVALID_MSG_ID")
            << "the table is not complete";
    }
}

TEST_F(MessageFiles, SourcesBecomeTheMessagesShown)
{
    const std::vector<Row> rows = rowsUnder(page, "| In `source` | Message |");
    ASSERT_GT(rows.size(), 10U);
    for (const Row &row : rows)
    {
        ASSERT_EQ(loadUnits("<trans-unit id=\"1\"><source>" + row[0] + "</source></trans-unit>"), 0) << row[0];
        EXPECT_EQ(message(1), unquoted(row[1])) << row[0];
    }
}

TEST_F(MessageFiles, IdsAreReadAsShown)
{
    const std::vector<Row> rows = rowsUnder(page, "| Attributes of `trans-unit` | ID |");
    ASSERT_GT(rows.size(), 5U);
    for (const Row &row : rows)
    {
        const int result = loadUnits("<trans-unit " + row[0] + "><source>text</source></trans-unit>");
        if (row[1] == "refused")
            EXPECT_EQ(result, KT_ERR_BAD_MSG_FILE) << row[0];
        else
        {
            ASSERT_EQ(result, 0) << row[0];
            EXPECT_EQ(message(static_cast<unsigned>(std::stoul(row[1]))), "text") << row[0];
        }
    }
}

TEST_F(MessageFiles, FileAttributesAreAcceptedAsShown)
{
    const std::vector<Row> rows = rowsUnder(page, "| Attributes of `file` | |");
    ASSERT_GT(rows.size(), 3U);
    for (const Row &row : rows)
        EXPECT_EQ(loadUnits("", row[0]), row[1] == "loads" ? 0 : KT_ERR_BAD_MSG_FILE) << row[0];
}

TEST_F(MessageFiles, BodiesAreRefusedAsShown)
{
    const std::vector<Row> rows = rowsUnder(page, "| In `body` | Refused, since |");
    ASSERT_GT(rows.size(), 8U);
    for (const Row &row : rows)
        EXPECT_EQ(loadUnits(row[0]), KT_ERR_BAD_MSG_FILE) << row[0];
}
