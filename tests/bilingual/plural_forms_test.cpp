#include "bilingual/plural_forms.h"
#include "kelto.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unicode/uloc.h>

using namespace tool::bilingual;

namespace
{

TEST(PluralForms, HeaderSaysWhatTheLibrarySaysInEveryLanguage)
{
    size_t languages = 0;
    for (int32_t i = 0; i < uloc_countAvailable(); ++i, ++languages)
    {
        const std::string language = uloc_getAvailable(i);
        const std::string text = pluralHeaderOf(language);
        const std::optional<PluralHeader> header = PluralHeader::read(text);
        ASSERT_TRUE(header) << language << ": " << text;
        const std::vector<Category> categories = categoriesOf(language, false);
        ASSERT_EQ(header->forms(), categories.size()) << language << ": " << text;
        const auto check = [&](uint64_t number) {
            const int variant = KTPluralCategory(language.c_str(), false, KT_UINT64(number), 0);
            const std::optional<unsigned> form = header->formOf(number);
            ASSERT_TRUE(form && categories[*form].variant == variant) << language << ", " << number << ": " << text;
        };
        const uint64_t stride = static_cast<uint64_t>(5077 + 2 * i); // other numbers in each language
        for (uint64_t number = 0; number < 210; ++number)
            check(number);
        for (uint64_t number = 210; number <= 1100000; number += stride)
            check(number);
        for (const uint64_t number : {1000, 100000, 101000, 140000, 1000000, 1000001, 1000100, 1099999})
            check(number);
    }
    EXPECT_GT(languages, 200U);
}

TEST(PluralForms, EvaluatesHeadersOfOthersWithBounds)
{
    const std::string brackets(1000000, '(');
    const std::string sums = fmt::format("{}", fmt::join(std::vector<std::string>(101, "+(1-1)"), ""));
    const struct
    {
        std::string header;
        int forms; // -1: refused
        std::vector<std::pair<uint64_t, int>> numbers = {};
    } rows[] = {
        {"nplurals=2; plural=n != 1;", 2, {{0, 1}, {1, 0}, {2, 1}}},
        {"nplurals=2; plural=(n > 1)", 2, {{1, 0}, {2, 1}}},
        {" nplurals = 3 ;\tplural = n%10==1&&n%100!=11?0:n!=0?1:2;", 3, {{21, 0}, {11, 1}, {0, 2}}},
        {"nplurals=3; plural=n==1 ? 0 : !(n-2) ? 1 : 2;", 3, {{1, 0}, {2, 1}, {3, 2}}},
        {"nplurals=2; plural=n*0+n/2*3-2<n||0;", 2, {{1, 0}}},
        {"nplurals=2; plural=1+n*2==7;", 2, {{2, 0}, {3, 1}}},
        {"nplurals=2; plural=n;", 2, {{1, 1}, {2, -1}}},
        {"nplurals=2; plural=1/n;", 2, {{1, 1}, {0, -1}}},
        {"nplurals=2; plural=n%0;", -1},
        {"nplurals=1000000; plural=0;", -1},
        {"nplurals=0; plural=0;", -1},
        {"nplurals=18446744073709551617; plural=0;", 1, {{7, 0}}},
        {"nplurals=2; plural=" + brackets, -1},
        {"nplurals=2; plural=" + std::string(2000, '!') + "n;", 2, {{0, 0}, {7, 1}}},
        {"nplurals=2; plural=" + std::string(100, '(') + "n" + std::string(100, ')') + ";", -1},
        {"nplurals=2; plural=" + std::string(99, '(') + "n" + std::string(99, ')') + ";", 2, {{1, 1}}},
        {"nplurals=64; plural=n;", 64, {{63, 63}, {64, -1}}},
        {"nplurals=65; plural=n;", -1},
        {"nplurals=2; plural=n" + std::string(4096 - 20, ' '), 2, {{1, 1}}},
        {"nplurals=2; plural=n" + std::string(4096 - 19, ' '), -1},
        {"nplurals=2; plural=\tn\t!=\t1 ;", 2, {{1, 0}, {2, 1}}},
        {"nplurals\t=\t2; plural\t=\tn", 2, {{1, 1}}},
        {"nplurals=2; plural=0" + sums + "+n", 2, {{1, 1}}}, // one behind another is not deep
        {"nplurals=20; plural=n == 1 ? 19 : 09;", 20, {{1, 19}, {2, 9}}},
        {"nplurals=2; plural=n ? n == 1 ? 0 : 1 : 1;", 2, {{0, 1}, {1, 0}, {2, 1}}},
        {"nplurals=n; plural=0;", -1},
        {"nplurals 2; plural=n;", -1},
        {"nplurals=2; plural n;", -1},
        {"nplurals", -1},
        {"nplurals=2", -1},
        {"nplurals=2; plural=n)", -1},
        {"nplurals=2; plural=(n", -1},
        {"nplurals=2; plural=n 1", -1},
        {"nplurals=2; plural=n ? 1;", -1},
        {"nplurals=2; plural=n == ;", -1},
        {"nplurals=2; plural=x;", -1},
        {"nplurals=2;", -1},
        {"plural=n;", -1},
        {"", -1},
    };
    for (const auto &row : rows)
    {
        const std::optional<PluralHeader> header = PluralHeader::read(row.header);
        EXPECT_EQ(header ? static_cast<int>(header->forms()) : -1, row.forms) << row.header.substr(0, 100);
        for (const auto &[number, form] : row.numbers)
        {
            const std::optional<unsigned> found = header ? header->formOf(number) : std::nullopt;
            EXPECT_EQ(found ? static_cast<int>(*found) : -1, form) << row.header.substr(0, 100) << ", " << number;
        }
    }
}

// The compiler knows which operator binds tighter: each expression stands here as a text, and as code.
TEST(PluralForms, EvaluateWhatStandsBesideEachOtherAsCDoes)
{
#define ROW(expression)                                                                                                \
    std::pair(                                                                                                         \
        #expression, +[](uint64_t n) -> uint64_t { return expression; })
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wparentheses"
    const std::pair<const char *, uint64_t (*)(uint64_t)> rows[] = {
        ROW(n == 1 || n == 2 && n == 3),
        ROW(n && n == 1),
        ROW(n == 1 < 2),
        ROW(n != 2 > 1),
        ROW(1 == n <= 2),
        ROW(1 == n >= 2),
        ROW(n < 1 + 1),
        ROW(n > 3 - 1),
        ROW(2 <= n + 1),
        ROW(2 >= n + 1),
        ROW(n - n / 2),
        ROW(1 + n % 2),
        ROW(1 + n * 2),
        ROW(17 - n - 1),
        ROW(n / 2 * 2),
        ROW(n != 9 && n < 10),
        ROW(!n + 1),
        ROW(!n == 0),
        ROW(n > 1 ? 2 : n != 0),
        ROW((n ? n > 2 ? 3 : 2 : 1) + 1),
    };
#pragma GCC diagnostic pop
#undef ROW
    for (const auto &[expression, inC] : rows)
    {
        const auto header = PluralHeader::read(std::string("nplurals=64; plural=") + expression);
        ASSERT_TRUE(header) << expression;
        for (uint64_t number = 0; number < 13; ++number)
            EXPECT_EQ(header->formOf(number), inC(number)) << expression << ", " << number;
    }
}

TEST(PluralForms, AreNamedByTheirFirstNumbers)
{
    const std::vector<Category> polish = categoriesOf("pl", false);
    ASSERT_EQ(polish.size(), 3U);
    EXPECT_EQ(examplesText(polish[1]), "2, 3, 4, 22");
    EXPECT_EQ(categoriesOf("ja", false).size(), 1U);
    EXPECT_EQ(categoriesOf("fr", false).size(), 3U); // 1000000 de fichiers
    EXPECT_EQ(categoriesOf("en", true).size(), 4U);
}

} // namespace
