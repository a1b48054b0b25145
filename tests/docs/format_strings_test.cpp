#include "support/formatting.h"
#include "support/page.h"

#include <gtest/gtest.h>
#include <regex>

TEST(FormatStrings, EveryExampleOfThePageGivesTheOutputShown)
{
    ASSERT_EQ(KTInit(), 0);
    const std::string page = readPage("docs/format-strings.md");
    size_t count = 0;
    for (const bool tag : {false, true})
        for (const Row &row :
             rowsUnder(page, tag ? "| Format | Arguments | Output with tags |" : "| Format | Arguments | Output |"))
        {
            ASSERT_EQ(row.size(), 3U) << row[0];
            Arguments arguments(row[1]);
            EXPECT_EQ(formatted(unquoted(row[0]), arguments, {tag}), unquoted(row[2])) << row[0] << " of " << row[1];
            ++count;
        }
    EXPECT_GT(count, 100U) << "tables are not found";
    KTClean();
}

TEST(FormatStrings, EveryListOfConversionsHasThemAll)
{
    // What stands around a name, others of its list included.
    const char *const lists[][3] = {{"include/kelto.h", "\n \\*     ([A-Za-z]+ )*", "( [A-Za-z]+)*  "},
                                    {"docs/format-strings.md", "\n\\| (`[A-Za-z]+`, )*`", "`(, `[A-Za-z]+`)* \\|"},
                                    {"docs/format-strings.md", "\n\\| `\"[^`]*%[-+ #0-9.*]*[hlL!]?", "\\["},
                                    {"docs/man/kelto.1", "\n\\.B ([A-Za-z]+ )*", "( [A-Za-z]+)*\n"},
                                    {"docs/man/kelto-format.7", "\n([A-Za-z]+, )*", "(, [A-Za-z]+)*\t"},
                                    {"tools/commands/format_command.cpp", "\n  ([A-Za-z]+ )*", "( [A-Za-z]+)*  "}};
    for (const auto &[file, before, after] : lists)
        for (const KTFormatter *record = builtInFormList; record->name != nullptr; ++record)
            EXPECT_TRUE(std::regex_search(readPage(file), std::regex(before + std::string(record->name) + after)))
                << file << " does not list " << record->name;
}
