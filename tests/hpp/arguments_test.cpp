#include "hpp/texts.h"

#include <chrono>
#include <limits>

enum class Colour : short
{
    red = -3
};

struct Version
{
    int major, minor;
};
template <> struct kelto::argument_of<Version>
{
    static std::string convert(const Version &v) { return std::to_string(v.major) + '.' + std::to_string(v.minor); }
};
enum class Level
{
    high
};
template <> struct kelto::argument_of<Level>
{
    static const char *convert(Level) { return "high"; }
};

namespace
{

using namespace std::chrono;
using SystemTime = system_clock::time_point;

template <class Duration> time_point<system_clock, Duration> at(Duration sinceEpoch)
{
    return time_point<system_clock, Duration>(sinceEpoch);
}

TEST(Arguments, AreWhatTheirTypesSay)
{
    const std::string text = "files", zero("a\0b", 3), longText(2000, 'x');
    char array[] = "array";
    const char *const none = nullptr;
    const char16_t *const noUnits = nullptr;
    const volatile int counter = 7;
    const Expected rows[] = {
        {"1 0", text_of("%d[1] %u[2]", true, false)},
        {"-128 255", text_of("%d[1] %u[2]", std::int8_t(-128), std::uint8_t(255))},
        {"-32768 65535", text_of("%hd[1] %hu[2]", std::int16_t(-32768), std::uint16_t(65535))},
        {"-2147483648 4294967295", text_of("%d[1] %u[2]", std::numeric_limits<int>::min(), ~0U)},
        {"ffffffff 4294967293 7", text_of("%x[1] %u[2] %d[3]", -1, Colour::red, counter)},
        {"-9223372036854775808 18446744073709551615",
         text_of("%!d[1] %ul[2]", std::numeric_limits<long>::min(), ~0ULL)},
        {"ffffffffffffffff -3", text_of("%!x[1] %d[2]", -1L, Colour::red)},
        {"   7 0004", text_of("%*d[1] %.*d[2]", 4, 7, 4, 4)},
        {"A\xC3\xA9", text_of("%c[1]%c[2]", 'A', '\xE9')},
        {"あ", text_of("%lc[1]", u'あ')},
        {"あ あ", text_of("%lc[1] %U[2]", U'あ', U'あ')},
        {"😀 \xEF\xBF\xBD \xEF\xBF\xBD", text_of("%U[1] %U[2] %lc[3]", U'😀', char32_t(0x110000), char32_t(0xD800))},
        {"KT_ERR_INVALID_PARAMETER", text_of("%lc[1]", U'😀')},
        {"1.5 0.25 2.5", text_of("%.1f[1] %.2f[2] %.1Lf[3]", 1.5F, 0.25, 2.5L)},
        {"files|literal|array", text_of("%s[1]|%s[2]|%s[3]", text, "literal", array)},
        {"view|a", text_of("%s[1]|%s[2]", std::string_view("viewed").substr(0, 4), zero)},
        {"||", text_of("%s[1]|%s[2]|%U[3]", none, std::string_view(), noUnits)},
        {"wide literal wi",
         text_of("%U[1] %U[2] %U[3]", std::u16string(u"wide"), u"literal", std::u16string_view(u"wide").substr(0, 2))},
        {longText, text_of("%s[1]", longText)},
        {"1.2 high", text_of("%s[1] %s[2]", Version{1, 2}, Level::high)},
        {"01/01/1970 00:00:00", text_of("%DT[1]", SystemTime())},
        {"12/31/1969 23:59:59", text_of("%DT[1]", at(milliseconds(-1)))},
        {"02/29/2000", text_of("%D[1]", at(hours(24 * 11016)))},
        {"03/01/2100 23:59:59", text_of("%DT[1]", at(seconds(4107628799)))},
        {"01/01/0000 00:00:00", text_of("%DT[1]", at(hours::min()))},
        {"12/31/9999 23:59:59", text_of("%DT[1]", at(hours::max()))},
        {"12/31/9999 23:59:59|01/01/0000 00:00:00",
         text_of("%DT[1]|%DT[2]", at(seconds(253402300799)), at(seconds(-62167219200)))},
#if defined(__cpp_char8_t)
        {"é é é", text_of("%s[1] %s[2] %s[3]", u8"é", std::u8string(u8"é"), std::u8string_view(u8"é"))},
#endif
        {"KT_ERR_INVALID_PARAMETER", text_of("%s[1]", 7)},
        {"KT_ERR_INVALID_PARAMETER", text_of("%d[1]", "seven")},
        {"KT_ERR_INVALID_PARAMETER", text_of("%hd[1]", 32768)},
        {"KT_ERR_INVALID_PARAMETER", text_of("%d[1]", 7, 8)},
        {"KT_ERR_FORMAT_SYNTAX", text_of("%d", 7)},
    };
    for (const Expected &row : rows)
        EXPECT_EQ(row.text, row.given);
}

// All days of the years around the ends of eras and centuries, by counting.
TEST(Arguments, TimesAreDates)
{
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    long day = -719528; // 0000-01-01
    for (int year = 0; year < 10000; ++year)
        for (int month = 0; month < 12; ++month)
        {
            const bool isLeap = month == 1 && year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
            for (int d = 1; d <= lengths[month] + (isLeap ? 1 : 0); ++d, ++day)
            {
                char expected[40];
                std::snprintf(expected, sizeof expected, "%04d-%02d-%02d'T23:59:58Z", year, month + 1, d);
                ASSERT_STREQ(kelto::detail::time_stamp(seconds(day * 86400 + 86398)).text, expected);
            }
        }
}

/** Whether every slot that is said to take all values of a type takes its least and its greatest. */
template <class T> void compareWithSlots(std::initializer_list<T> values)
{
    constexpr std::pair<unsigned, const char *> slots[] = {
        {KT_SLOT_INT16, "%hd[1]"},       {KT_SLOT_UINT16, "%hx[1]"}, {KT_SLOT_INT32, "%d[1]"},
        {KT_SLOT_UINT32, "%EID[1]"},     {KT_SLOT_INT64, "%!d[1]"},  {KT_SLOT_UINT64, "%ul[1]"},
        {KT_SLOT_CHAR, "%c[1]"},         {KT_SLOT_UNIT, "%lc[1]"},   {KT_SLOT_DOUBLE, "%f[1]"},
        {KT_SLOT_LONG_DOUBLE, "%Lf[1]"}, {KT_SLOT_UTF8, "%s[1]"},    {KT_SLOT_UCS2, "%DND[1]"}};
    constexpr unsigned type = kelto::detail::slot_of<T>();
    for (const auto &[slot, format] : slots)
    {
        const bool fits = kelto::detail::fits(slot, type);
        for (const T &value : values)
        {
            const std::string text = text_of(format, value);
            if (fits || type > KT_SLOT_UINT64)
            {
                EXPECT_EQ(text == "KT_ERR_INVALID_PARAMETER", !fits) << format << ' ' << typeid(T).name();
            }
        }
    }
}

template <class... Integers> void compareIntegers()
{
    (compareWithSlots<Integers>({std::numeric_limits<Integers>::min(), std::numeric_limits<Integers>::max()}), ...);
}

TEST(Arguments, FitWhereTheCompilerSaysSo)
{
    compareIntegers<bool, signed char, unsigned char, short, unsigned short, int, unsigned, long, unsigned long,
                    long long, unsigned long long>();
    compareWithSlots<char>({'a', '\xFF'});
    compareWithSlots<char16_t>({u'a', u'\xFFFF'});
    compareWithSlots<char32_t>({U'a', U'あ'});
    compareWithSlots<float>({1});
    compareWithSlots<double>({1});
    compareWithSlots<long double>({1});
    compareWithSlots<const char *>({"a", nullptr});
    compareWithSlots<std::string>({"a"});
    compareWithSlots<std::u16string>({u"a"});
    compareWithSlots<Version>({{1, 2}});
}

} // namespace
