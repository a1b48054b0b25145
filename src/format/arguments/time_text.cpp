// The count of a clock as the text that "DT" takes: KTTimeText() and KTClockText().

#include "kelto.h"

#include <algorithm>
#include <type_traits>

// The day is counted in years that begin in March, in eras of 400 years: the leap day is then the last of its year, and
// every month begins on the same day of it. The calendar is that of clocks, unlike the one of the formatters, which
// counts seconds by itself and writes the digits of such a text as they stand.

namespace
{

constexpr int64_t firstSecond = -62167219200; // 0000-01-01
constexpr int64_t lastSecond = 253402300799;  // the end of 9999-12-31
constexpr int64_t dayInSeconds = 86400;
constexpr int64_t daysPerEra = 146097;
constexpr int64_t daysToMarch = 60; // of the year 0, which is a leap year

char *append(char *out, int64_t value, int digits, const char *behind)
{
    for (int i = digits; i > 0; --i, value /= 10)
        out[i - 1] = static_cast<char>('0' + value % 10);
    for (out += digits; *behind != '\0'; ++behind)
        *out++ = *behind;
    *out = '\0';
    return out;
}

__extension__ using WideCount = __int128;

/** The second in which so many units end; beyond all dates for one that is too far away or no number. */
template <typename Count> int64_t secondsOf(Count count, int64_t numerator, int64_t denominator)
{
    // A count of hours may be more than any count of seconds can be, so it is compared roughly first.
    constexpr double farAway = 1e12;
    const double roughly =
        static_cast<double>(count) * static_cast<double>(numerator) / static_cast<double>(denominator);
    if (!(roughly > -farAway && roughly < farAway))
        return roughly > 0 ? INT64_MAX : INT64_MIN;
    if constexpr (std::is_integral_v<Count>)
    {
        const auto whole = static_cast<int64_t>(count / static_cast<Count>(denominator));
        const WideCount rest = WideCount{count % static_cast<Count>(denominator)} * numerator;
        return whole * numerator + static_cast<int64_t>(rest / denominator) - (rest % denominator < 0 ? 1 : 0);
    }
    else
    {
        const auto seconds = static_cast<int64_t>(roughly);
        return seconds - (static_cast<double>(seconds) > roughly ? 1 : 0);
    }
}

} // namespace

void KTTimeText(int64_t seconds, char *text)
{
    const int64_t since = std::clamp(seconds, firstSecond, lastSecond) - firstSecond;
    const int64_t time = since % dayInSeconds;
    const int64_t days = since / dayInSeconds + daysPerEra - daysToMarch;
    const int64_t dayOfEra = days % daysPerEra;
    const int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    text = append(text, (days / daysPerEra - 1) * 400 + yearOfEra + (month <= 2 ? 1 : 0), 4, "-");
    text = append(text, month, 2, "-");
    text = append(text, dayOfYear - (153 * monthFromMarch + 2) / 5 + 1, 2, "'T");
    text = append(text, time / 3600, 2, ":");
    text = append(text, time / 60 % 60, 2, ":");
    append(text, time % 60, 2, "Z");
}

void KTClockText(KTArgument count, int64_t numerator, int64_t denominator, char *text)
{
    switch (count.type)
    {
    case KT_ARGUMENT_INT:
    case KT_ARGUMENT_INT64:
        return KTTimeText(secondsOf(count.value.i, numerator, denominator), text);
    case KT_ARGUMENT_UINT:
    case KT_ARGUMENT_UINT64:
        return KTTimeText(secondsOf(count.value.u, numerator, denominator), text);
    case KT_ARGUMENT_DOUBLE:
        return KTTimeText(secondsOf(count.value.d, numerator, denominator), text);
    case KT_ARGUMENT_LONG_DOUBLE:
        if (count.value.p != nullptr)
            return KTTimeText(secondsOf(*static_cast<const long double *>(count.value.p), numerator, denominator),
                              text);
        break;
    default:
        break;
    }
    KTTimeText(INT64_MIN, text);
}
