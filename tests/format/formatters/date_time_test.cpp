#include "format/formatters/date_time.h"

#include "support/guarded.h"

#include <gtest/gtest.h>

namespace
{

using Reader = int(const char *, bool, Flag_t, UCS2 *);

/** What a reader makes of a text, in ASCII; or "refused". */
std::string read(Reader reader, const std::string &text, Flag_t kind)
{
    Guarded<UCS2> out(200);
    const int result = reader(text.c_str(), false, kind, out.data());
    EXPECT_TRUE(result == 0 || result == KT_ERR_INVALID_PARAMETER);
    const std::u16string written = out.text();
    return result == 0 ? std::string(written.begin(), written.end()) : "refused";
}

TEST(TimeStamp, IsOfOneShape)
{
    const std::string stamp = "2006-05-17'T08:09:10Z";
    EXPECT_EQ(read(ISODateTime, stamp, CONV_DT), "05/17/2006 08:09:10");
    for (size_t i = 0; i < stamp.size(); ++i)
    {
        for (const char wrong : {'/', ':'}) // next to the digits
        {
            std::string spoiled = stamp;
            spoiled[i] = stamp[i] == wrong ? '1' : wrong;
            EXPECT_EQ(read(ISODateTime, spoiled, CONV_DT), "refused") << spoiled;
        }
        EXPECT_EQ(read(ISODateTime, stamp.substr(0, i), CONV_DT), "refused") << "cut after " << i;
    }
}

TEST(Seconds, AgreeWithCountingMonths)
{
    // Every day of the first decades, then days all over the range; the calendar repeats every four years.
    for (int64_t number = 0; number < int64_t{1} << 31; number += number < 20000 ? 1 : 1000003)
    {
        int64_t month = 0, day = number % 1461;
        for (const int length :
             {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31,
              31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31})
        {
            if (day < length)
                break;
            day -= length;
            ++month;
        }
        const std::string expected = std::to_string(month % 12 + 1) + "/" + std::to_string(day + 1) + "/" +
                                     std::to_string(1970 + number / 1461 * 4 + month / 12);
        ASSERT_EQ(read(secondDateTime, std::to_string(number * 86400), CONV_D), expected);
    }
    EXPECT_EQ(read(secondDateTime, std::string(100000, '9'), CONV_D), "refused");
}

TEST(DateTimeHelpers, KnowTheMonthsAndTakeDigits)
{
    EXPECT_EQ(numDaysInMonth(2, 2100), 29);
    EXPECT_EQ(numDaysInMonth(12, 2100), 31);
    EXPECT_EQ(numDaysInMonth(0, 2000), 0);
    EXPECT_EQ(numDaysInMonth(13, 2000), 0);
    struct Row
    {
        const char *text;
        int maxDigits, result;
        ptrdiff_t taken;
        const char16_t *field;
    };
    const Row rows[] = {{"12:", 2, 0, 2, u"12"}, {"123", 2, 0, 2, u"12"}, {"1", 2, 0, 1, u"1"},  {"", 2, 0, 0, u""},
                        {"1", 0, 0, 0, u""},     {"x", 2, 1, 0, u"??"},   {"1x", 2, 1, 1, u"1?"}};
    for (const Row &row : rows)
    {
        const char *cursor = row.text;
        UCS2 field[] = u"??"; // left alone by what fails, but for the digits
        EXPECT_EQ(takeDigits(&cursor, row.maxDigits, field), row.result) << row.text;
        EXPECT_EQ(cursor - row.text, row.taken) << row.text;
        EXPECT_EQ(std::u16string(field), row.field) << row.text;
    }
    const char *cursor = "ab";
    EXPECT_EQ(takeChar(&cursor, 'b'), 1);
    EXPECT_EQ(takeChar(&cursor, 'a'), 0);
    EXPECT_EQ(*cursor, 'b');
    UCS2 out[10] = {u'x'};
    EXPECT_EQ(_formatDateTime(u"1", u"2", u"3", u"4", u"5", u"6", true, CONV_d, out), 0);
    EXPECT_EQ(std::u16string(out), u"") << "of another kind";
}

} // namespace
