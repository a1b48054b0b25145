#include "format/formatters/date_time.h"

#include "format/formatting.h"

namespace
{

using DateTime = StartedTest;

const Formatted invalid = {KT_ERR_INVALID_PARAMETER, u""};

TEST_F(DateTime, ReadsSecondsAndTimeStamps)
{
    struct Row
    {
        const char *format, *value;
        const char16_t *expected;
    };
    const Row rows[] = {
        {"%DT[1]", "2006-05-17'T08:09:10Z", u"05/17/2006 08:09:10"},
        {"%D[1]", "2006-05-17'T08:09:10Z", u"05/17/2006"},
        {"%T[1]", "2006-05-17'T08:09:10Z", u"08:09:10"},
        {"%DT[1]", "2006-13-45'T99:99:99Z", u"13/45/2006 99:99:99"},
        {"%DT[1]", "1147853350", u"5/17/2006 8:9:10"},
        {"%DT[1]", "", u"1/1/1970 0:0:0"},
        {"%DT[1]", "00000000000000000000", u"1/1/1970 0:0:0"},
        {"%DT[1]", "86399", u"1/1/1970 23:59:59"},
        {"%D[1]", "86400", u"1/2/1970"},
        {"%-9.3D[1]", "951782400", u"2/29/2000"},
        {"%D[1]", "4107542400", u"2/29/2100"},
        {"%D[1]", "185542587187199", u"10/18/5881459"},
    };
    for (const Row &row : rows)
        EXPECT_EQ(format(row.format, row.value), ok(row.expected)) << row.format << ' ' << row.value;
}

TEST_F(DateTime, WrapsItsPartsInTags)
{
    EXPECT_EQ(formatTagged("%D[1]", "86400"), ok(u"<date><year>1970</year><month>1</month><day>2</day></date>"));
    EXPECT_EQ(formatTagged("%T[1]", "2006-05-17'T08:09:10Z"),
              ok(u"<time><hour>08</hour><minute>09</minute><second>10</second></time>"));
    EXPECT_EQ(formatTagged("%DT[1]", "185542587187199"),
              ok(u"<date><year>5881459</year><month>10</month><day>18</day></date> "
                 u"<time><hour>23</hour><minute>59</minute><second>59</second></time>"));
}

TEST_F(DateTime, RefusesEverythingElse)
{
    const std::string stamp = "2006-05-17'T08:09:10Z";
    for (size_t i = 0; i < stamp.size(); ++i)
    {
        std::string spoiled = stamp;
        spoiled[i] = 'x';
        EXPECT_EQ(format("%DT[1]", spoiled.c_str()), invalid) << spoiled;
        EXPECT_TRUE(i <= 4 || format("%DT[1]", stamp.substr(0, i).c_str()) == invalid) << "cut after " << i;
    }
    for (const char *text :
         {"12a", "-1", "+1", " 1", "1 ", "2006-05-17T08:09:10Z", "2006-05-17'T08:09:10Z ", "2006-05-17'T08:09:10",
          "99999999999999999999", "18446744073709551616", "185542587187200", "000000000000000000000"})
        EXPECT_EQ(format("%DT[1]", text), invalid) << text;
    EXPECT_EQ(format("%D[1]", std::string(100000, '9').c_str()), invalid);
    UCS2 out[200];
    EXPECT_EQ(secondDateTime(std::string(100000, '9').c_str(), false, CONV_D, out), KT_ERR_INVALID_PARAMETER);
}

/** The calendar again, one day at a time. */
TEST(Calendar, AgreesWithCountingDays)
{
    int year = 1970, month = 1, day = 1;
    for (int number = 0; number < 400 * 366; ++number)
    {
        UCS2 out[200];
        ASSERT_EQ(secondDateTime(std::to_string(number * 86400LL).c_str(), false, CONV_D, out), 0);
        const std::string expected = std::to_string(month) + "/" + std::to_string(day) + "/" + std::to_string(year);
        const std::u16string text = asString(out);
        ASSERT_EQ(std::string(text.begin(), text.end()), expected) << number;
        static const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        if (++day > lengths[month - 1] + (month == 2 && year % 4 == 0 ? 1 : 0))
        {
            day = 1;
            if (++month > 12)
            {
                month = 1;
                ++year;
            }
        }
    }
}

/** Whole groups of four years up to the last day, where the pattern above must repeat. */
TEST(Calendar, RepeatsEveryFourYearsOverItsWholeRange)
{
    for (int64_t number = 0; number < INT32_MAX - 1461; number += 1461 * 1009 + 7)
    {
        UCS2 first[200], later[200];
        ASSERT_EQ(secondDateTime(std::to_string(number * 86400).c_str(), false, CONV_D, first), 0);
        ASSERT_EQ(secondDateTime(std::to_string((number + 1461) * 86400).c_str(), false, CONV_D, later), 0);
        const std::u16string before = asString(first), after = asString(later);
        const size_t slash = before.rfind(u'/') + 1;
        ASSERT_EQ(before.substr(0, slash), after.substr(0, slash));
        ASSERT_EQ(std::stol(std::string(before.begin() + slash, before.end())) + 4,
                  std::stol(std::string(after.begin() + slash, after.end())));
    }
}

TEST(Calendar, KnowsTheMonths)
{
    EXPECT_EQ(numDaysInMonth(2, 2100), 29);
    EXPECT_EQ(numDaysInMonth(2, 2001), 28);
    EXPECT_EQ(numDaysInMonth(0, 2000), 0);
    EXPECT_EQ(numDaysInMonth(13, 2000), 0);
}

TEST(DateTimeFormatter, NeedsAUnitForTheTerminatorThatItWrites)
{
    const char text[] = "86400";
    EXPECT_EQ(callFormatter(formatDateTime, "D", 0, text, 8).result, KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(callFormatter(formatDateTime, "D", 0, text, 8).size, 8u);
    EXPECT_EQ(callFormatter(formatDateTime, "other", 0, text, 100).text, u"0:0:0") << "any other name is a time";
    Ucs2Buffer out(9);
    unsigned long size = 9;
    void *slot = const_cast<char *>(text);
    EXPECT_EQ(formatDateTime("D", -1, -1, 0, nullptr, nullptr, &slot, &size, out.data()), 0);
    EXPECT_EQ(out.text(), u"1/2/1970");
    EXPECT_EQ(callFormatter(formatDateTime, "D", 0, "x", 100).size, 0u);
}

TEST(TimeStampReader, TakesDigitsToTheCountOrTheEnd)
{
    struct Row
    {
        const char *text;
        int maxDigits, result;
        size_t taken;
        const char16_t *field;
    };
    const Row rows[] = {{"12:", 2, 0, 2, u"12"}, {"123", 2, 0, 2, u"12"}, {"1", 2, 0, 1, u"1"},    {"", 2, 0, 0, u""},
                        {"1", 0, 0, 0, u""},     {"x", 2, 1, 0, nullptr}, {"1x", 2, 1, 1, nullptr}};
    for (const Row &row : rows)
    {
        const char *cursor = row.text;
        UCS2 field[3] = {u'?', u'?', u'?'};
        EXPECT_EQ(takeDigits(&cursor, row.maxDigits, field), row.result) << row.text;
        EXPECT_EQ(static_cast<size_t>(cursor - row.text), row.taken) << row.text;
        EXPECT_TRUE(row.field == nullptr || asString(field) == row.field) << row.text;
    }
    const char *cursor = "ab";
    EXPECT_EQ(takeChar(&cursor, 'b'), 1);
    EXPECT_EQ(takeChar(&cursor, 'a'), 0);
    EXPECT_EQ(*cursor, 'b');
}

TEST(DateTimeLayout, IsEmptyForAnotherKind)
{
    UCS2 out[10] = {u'x'};
    EXPECT_EQ(_formatDateTime(u"1", u"2", u"3", u"4", u"5", u"6", true, CONV_d, out), 0);
    EXPECT_EQ(out[0], 0);
}

} // namespace
