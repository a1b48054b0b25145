#include "support/formatting.h"
#include "support/page.h"

#include <gtest/gtest.h>
#include <regex>

TEST(FormatStrings, EveryExampleOfThePageGivesTheOutputShown)
{
    ASSERT_EQ(KTInit(), 0);
    const std::string page = readPage("docs/format-strings.md");
    std::string formats;
    size_t count = 0;
    for (const bool tag : {false, true})
        for (const Row &row :
             rowsUnder(page, tag ? "| Format | Arguments | Output with tags |" : "| Format | Arguments | Output |"))
        {
            ASSERT_EQ(row.size(), 3U) << row[0];
            Arguments arguments(row[1]);
            EXPECT_EQ(formatted(unquoted(row[0]), arguments, {tag}), unquoted(row[2])) << row[0] << " of " << row[1];
            formats += row[0];
            ++count;
        }
    EXPECT_GT(count, 100U) << "tables are not found";
    for (const KTFormatter *record = builtInFormList; record->name != nullptr; ++record)
        EXPECT_TRUE(std::regex_search(formats, std::regex(std::string("%[-+ #0-9.*]*[hlL!]?") + record->name + "\\[")))
            << "no example of " << record->name;
    KTClean();
}
