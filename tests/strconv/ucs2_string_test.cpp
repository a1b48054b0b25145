#include "kelto.h"
#include "support/ucs2.h"

#include <gtest/gtest.h>

namespace
{

TEST(Ucs2String, MeasuresEveryLengthWithinItsBlock)
{
    for (size_t length = 0; length < 20; ++length)
    {
        Ucs2Buffer text = std::u16string(length, 0xD83D);
        EXPECT_EQ(KTUCS2strlen(text.data()), length);
    }
}

TEST(Ucs2String, CopiesAndAppendsWithTheTerminatorAndNoMore)
{
    Ucs2Buffer buffer(5);
    KTUCS2strcpy(buffer.data(), u"");
    EXPECT_TRUE(buffer.text().empty() && buffer.untouched(1));
    KTUCS2strcat(buffer.data(), u"ab");
    EXPECT_TRUE(buffer.text() == u"ab" && buffer.untouched(3));
    KTUCS2strcat(buffer.data(), u"\U0001F600");
    EXPECT_EQ(buffer.text(), u"ab\U0001F600");
    KTUCS2strcpy(buffer.data(), buffer.data() + 1);
    EXPECT_EQ(buffer.text(), u"b\U0001F600") << "moved toward its own start";
}

TEST(Ucs2String, ComparesUnitsAsUnsignedNumbers)
{
    struct
    {
        const UCS2 *a, *b;
        int result;
    } const rows[] = {
        {u"", u"", 0},           {u"", u"a", -1},      {u"a", u"", 1},          {u"abc", u"abd", -1},
        {u"abc", u"ab", 1},      {u"abc", u"abc", 0},  {u"\uFFFFa", u"zzz", 1}, {u"A", u"\uFFFF", -1},
        {u"ab\0x", u"ab\0y", 0}, {u"\1a", u"\1b", -1},
    };
    for (const auto &row : rows)
        EXPECT_EQ(KTUCS2strcmp(row.a, row.b), row.result) << testing::PrintToString(row.a);
}

TEST(Ucs2String, StepsThroughATextUnitByUnit)
{
    UCS2 text[] = u"abc";
    EXPECT_EQ(KTFirstUChar(text), u'a');
    EXPECT_EQ(KTNextUChar(text), u'b');
    EXPECT_EQ(KTNextUChar(text), u'c');
    EXPECT_EQ(KTNextUChar(text), 0) << "one unit is left, and stays";
    EXPECT_EQ(asString(text), u"c");

    UCS2 empty[] = u"";
    EXPECT_EQ(KTFirstUChar(empty), 0);
    EXPECT_EQ(KTNextUChar(empty), 0);
    EXPECT_EQ(KTFirstUChar(nullptr), 0);
    EXPECT_EQ(KTNextUChar(nullptr), 0);
}

} // namespace
