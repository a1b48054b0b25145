#include "kelto.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <random>

namespace
{

// The peer is the calendar of the C library.
TEST(TimeText, IsTheTimeOfTheCalendarFromTheYear0ToTheYear9999)
{
    constexpr int64_t first = -62167219200;
    constexpr int64_t last = 253402300799;
    std::vector<int64_t> times = {first - 1, first, last, last + 1, INT64_MIN, INT64_MAX, -1, 0};
    std::mt19937_64 random(1);
    for (int i = 0; i < 5000; ++i)
        times.push_back(first + static_cast<int64_t>(random() % (last - first)));
    for (const int64_t seconds : times)
    {
        const time_t time = std::clamp(seconds, first, last);
        tm date{};
        gmtime_r(&time, &date);
        char expected[100];
        std::snprintf(expected, sizeof expected, "%04d-%02d-%02d'T%02d:%02d:%02dZ", date.tm_year + 1900,
                      date.tm_mon + 1, date.tm_mday, date.tm_hour, date.tm_min, date.tm_sec);
        char text[30];
        KTTimeText(seconds, text);
        ASSERT_STREQ(text, expected) << seconds;
    }
}

TEST(ClockText, IsTheSecondInWhichTheUnitHasBegun)
{
    constexpr int64_t exa = 1000000000000000000;
    const long double notANumber = std::nanl("");
    const struct
    {
        KTArgument count;
        int64_t numerator, denominator;
        const char *text;
    } rows[] = {
        {KT_INT64(1999), 1, 1000, "1970-01-01'T00:00:01Z"},
        {KT_INT64(-1), 1, 1000, "1969-12-31'T23:59:59Z"},
        {KT_DOUBLE(-0.5), 1, 1, "1969-12-31'T23:59:59Z"},
        {KT_UINT64(exa - 1), 3600, exa, "1970-01-01'T00:59:59Z"}, // the product has more than 64 bits
        {KT_INT64(1 - exa), 3600, exa, "1969-12-31'T23:00:00Z"},
        {KT_INT64(INT64_MAX), 3600, 1, "9999-12-31'T23:59:59Z"},
        {KT_LONG_DOUBLE(&notANumber), 1, 1, "0000-01-01'T00:00:00Z"},
        {KT_UTF8("1"), 1, 1, "0000-01-01'T00:00:00Z"},
    };
    for (const auto &row : rows)
    {
        char text[30];
        KTClockText(row.count, row.numerator, row.denominator, text);
        EXPECT_STREQ(text, row.text) << "row " << &row - rows;
    }
}

} // namespace
