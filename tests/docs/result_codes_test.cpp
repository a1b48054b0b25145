#include "kelto.h"
#include "support/page.h"

#include <gtest/gtest.h>
#include <sstream>

TEST(ResultCodes, ThePageHasEveryCodeOfTheHeaderWithItsNameAndText)
{
    const std::string page = readPage("docs/result-codes.md");
    size_t named = 0;
    for (const Row &row : rowsUnder(page, "| Code | Name | Text |"))
    {
        ASSERT_EQ(row.size(), 3U);
        const int code = std::stoi(row[0]);
        const char *const name = KTResultName(code);
        EXPECT_EQ(row[1], name != nullptr ? name : "") << code;
        EXPECT_EQ(row[2], KTResultText(code)) << code;
        if (name == nullptr)
            continue;
        ++named;
        EXPECT_NE(page.find("\n## " + row[1] + "\n"), std::string::npos) << row[1] << " is not explained";
    }

    size_t declared = 0;
    std::istringstream header(readPage("include/kelto.h"));
    for (std::string line; std::getline(header, line);)
        declared += line.compare(0, 11, "    KT_ERR_") == 0 ? 1 : 0;
    EXPECT_EQ(named, declared);
    EXPECT_GT(declared, 0U);
}
