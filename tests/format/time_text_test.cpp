#include "kelto.h"

#include <algorithm>
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

} // namespace
