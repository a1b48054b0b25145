// The tables of docs/plurals.md, as the library has them.

#include "kelto.h"
#include "support/page.h"

#include <gtest/gtest.h>
#include <sstream>

namespace
{

TEST(Plurals, HaveTheCategoriesOfThePage)
{
    const std::vector<Row> rows =
        rowsUnder(readPage("docs/plurals.md"), "| Language | zero | one | two | few | many | other |");
    ASSERT_GT(rows.size(), 8U);
    for (const Row &row : rows)
        for (int category = KT_VARIANT_ZERO; category <= KT_VARIANT_OTHER; ++category)
        {
            std::istringstream numbers(row.at(static_cast<size_t>(category) + 1));
            for (int number = 0; numbers >> number; numbers.ignore(1))
                EXPECT_EQ(KTPluralCategory(row[0].c_str(), false, KT_INT(number), 0), category) << row[0] << number;
        }
}

TEST(Plurals, CountTheDigitsThatAreShown)
{
    const std::vector<Row> rows =
        rowsUnder(readPage("docs/plurals.md"), "| Selector | Argument | Shown | English | French |");
    ASSERT_GT(rows.size(), 4U);
    for (const Row &row : rows)
    {
        const size_t point = row[0].find('.');
        const int digits = point == std::string::npos ? 0 : row[0][point + 1] - '0';
        char shown[40];
        std::snprintf(shown, sizeof shown, "%.*f", digits, std::stod(row[1]));
        EXPECT_EQ(shown, row[2]);
        for (const size_t column : {3U, 4U})
            EXPECT_EQ(KTPluralCategory(column == 3 ? "en" : "fr", false, KT_DOUBLE(std::stod(row[1])), digits),
                      row[column] == "one" ? KT_VARIANT_ONE : KT_VARIANT_OTHER)
                << row[0] << ' ' << row[1];
    }
}

} // namespace
