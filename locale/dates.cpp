#include "dates.h"

#include "conversions.h"
#include "language.h"

#include <algorithm>
#include <cstring>
#include <unicode/ucal.h>
#include <unicode/ustring.h>

namespace kelto::locale
{

namespace
{

constexpr int64_t secondsPerDay = 86400;
constexpr double millisecondsPerSecond = 1000;

/** The last second that ICU has, and the lengths of both kinds of text. */
constexpr int64_t lastSecond = 183882168921600;
constexpr size_t longestCount = 20, stampLength = 21;

/** A field of a time stamp: where its digits stand, what it may be, and the character that follows. */
struct StampField
{
    size_t begin, length;
    int least, most;
    char after;
};

constexpr StampField stampFields[] = {{0, 4, 0, 9999, '-'}, {5, 2, 1, 12, '-'},  {8, 2, 1, 31, '\''},
                                      {12, 2, 0, 23, ':'},  {15, 2, 0, 59, ':'}, {18, 2, 0, 59, 'Z'}};
constexpr size_t stampFieldCount = std::size(stampFields);

bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month)
{
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

/** The days from 1970-01-01 to a date; years are counted from March, so that the leap day is their last. */
int64_t daysTo(int year, int month, int day)
{
    const int shifted = year - (month <= 2 ? 1 : 0) + 400; // not negative
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    constexpr int epoch = 719468 + 146097; // 1970-01-01, counted so, with 400 years more
    return int64_t{365} * shifted + shifted / 4 - shifted / 100 + shifted / 400 + dayOfYear - epoch;
}

bool readDigits(std::string_view text, int64_t &value)
{
    value = 0;
    for (const char digit : text)
    {
        if (digit < '0' || digit > '9')
            return false;
        value = std::min(value * 10 + (digit - '0'), lastSecond + 1);
    }
    return true;
}

bool readStamp(std::string_view text, int64_t &seconds)
{
    int64_t fields[stampFieldCount];
    for (size_t i = 0; i < stampFieldCount; ++i)
    {
        const StampField &field = stampFields[i];
        if (!readDigits(text.substr(field.begin, field.length), fields[i]) || fields[i] < field.least ||
            fields[i] > field.most || text[field.begin + field.length] != field.after)
            return false;
    }
    const auto year = static_cast<int>(fields[0]);
    const auto month = static_cast<int>(fields[1]);
    const auto day = static_cast<int>(fields[2]);
    if (text[11] != 'T' || day > daysInMonth(year, month))
        return false;
    seconds = daysTo(year, month, day) * secondsPerDay + fields[3] * 3600 + fields[4] * 60 + fields[5];
    return true;
}

/**
 * The moment that a text of a "D", "T" or "DT" means, in milliseconds since 1970 in UTC: a count of seconds, or a time
 * stamp as "2006-05-17'T08:09:10Z". The calendar is the one that people use, with no leap year in 2100.
 * @return 0, or KT_ERR_INVALID_PARAMETER for another text, a day or hour that does not exist, and a count beyond ICU's.
 */
int readMoment(std::string_view text, UDate &moment)
{
    int64_t seconds = 0;
    const bool isMoment = text.size() <= longestCount ? readDigits(text, seconds) && seconds <= lastSecond
                                                      : text.size() == stampLength && readStamp(text, seconds);
    moment = static_cast<double>(seconds) * millisecondsPerSecond;
    return isMoment ? 0 : KT_ERR_INVALID_PARAMETER;
}

/** The described text of a date with tags, which is the same in every language. */
int writeTagged(const Kind &kind, const Spec &spec, std::string_view text, Output &output)
{
    constexpr const char *names[] = {"D", "T", "DT"};
    constexpr size_t longestTagged = 304;
    char copy[stampLength + 2] = {}; // what is longer is no date
    text.copy(copy, stampLength + 1);
    UCS2 units[longestTagged];
    unsigned long length = longestTagged;
    void *slot = copy;
    const int result =
        formatDateTime(names[kind.variant], KT_ABSENT, KT_ABSENT, spec.flags, nullptr, nullptr, &slot, &length, units);
    return result != 0 ? result : output.write({{units, length}});
}

/** Whether there is a time zone of this name. */
int findZone(const UChar *name, bool &isZone)
{
    UChar canonical[2 * maxZoneLength];
    UErrorCode status = U_ZERO_ERROR;
    ucal_getCanonicalTimeZoneID(name, -1, canonical, static_cast<int32_t>(std::size(canonical)), nullptr, &status);
    isZone = U_SUCCESS(status) && u_strcmp(canonical, u"Etc/Unknown") != 0;
    return status == U_ILLEGAL_ARGUMENT_ERROR ? 0 : resultOf(status);
}

} // namespace

int DateFormatters::setZone(const char *locale, const char *timeZone) noexcept
{
    // A formatter is first made in the zone of its locale; without one ICU would look for that of the machine.
    UErrorCode status = U_ZERO_ERROR;
    std::strcpy(m_locale, locale);
    uloc_setKeywordValue("timezone", "UTC", m_locale, sizeof m_locale, &status);
    const char *const zone = timeZone != nullptr ? timeZone : "UTC";
    u_charsToUChars(zone, m_zone, static_cast<int32_t>(std::strlen(zone)) + 1);
    if (timeZone == nullptr || U_FAILURE(status))
        return resultOf(status);
    bool isZone = false;
    if (const int result = findZone(m_zone, isZone))
        return result;
    if (isZone)
        return 0;
    // Without its data ICU knows none at all.
    const int result = findZone(u"Europe/London", isZone);
    if (result != 0)
        return result;
    return isZone ? KT_ERR_INVALID_PARAMETER : KT_ERR_CONVERSION_FAILED;
}

int DateFormatters::open(DateParts parts, int style, Handle<UDateFormat, udat_close> &made) const noexcept
{
    constexpr UDateFormatStyle styles[] = {UDAT_SHORT, UDAT_MEDIUM, UDAT_LONG, UDAT_FULL};
    UErrorCode status = U_ZERO_ERROR;
    made.reset(udat_open(parts != datePart ? styles[style] : UDAT_NONE, parts != timePart ? styles[style] : UDAT_NONE,
                         m_locale, m_zone, -1, nullptr, 0, &status));
    if (U_FAILURE(status))
        return resultOf(status);
    // The dates of time stamps are counted back without the calendar reform of 1582.
    const Handle<UCalendar, ucal_close> calendar(ucal_clone(udat_getCalendar(made.get()), &status));
    if (U_SUCCESS(status))
    {
        constexpr UDate everSince = -184303902528000000.0;
        ucal_setGregorianChange(calendar.get(), everSince, &status);
        if (U_SUCCESS(status))
            udat_setCalendar(made.get(), calendar.get());
        else if (status == U_UNSUPPORTED_ERROR) // another calendar than that
            status = U_ZERO_ERROR;
    }
    return resultOf(status);
}

int DateFormatters::format(DateParts parts, int style, UDate moment, IcuText &text) noexcept
{
    Formatter &formatter = m_formatters[parts][style];
    UDateFormat *clone = formatter.clones.take();
    if (clone == nullptr)
    {
        const UDateFormat *original = nullptr;
        if (const int result = formatter.original.get(original, [&](auto &made) { return open(parts, style, made); }))
            return result;
        if (const int asked = askForMemory(true))
            return asked;
        UErrorCode status = U_ZERO_ERROR;
        clone = static_cast<UDateFormat *>(udat_clone(original, &status));
        if (U_FAILURE(status))
            return resultOf(status);
    }
    const Pool<UDateFormat, udat_close>::Loan loan(formatter.clones, clone);
    int result = askForMemory(false);
    if (result == 0)
        result = text.make([&](UChar *out, int32_t capacity, UErrorCode *status) {
            return udat_format(clone, moment, out, capacity, nullptr, status);
        });
    // Without memory ICU writes nothing, and says that all is well.
    return result != 0 || text.length() > 0 ? result : int{KT_ERR_NO_MEMORY};
}

int writeDate(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output)
{
    if (spec.has(FLAG_TAG))
        return writeTagged(kind, spec, values[0].text, output);
    constexpr int mostDetailed = 3;
    constexpr int usual = 1;
    UDate moment = 0;
    if (const int result = readMoment(values[0].text, moment))
        return result;
    IcuText text;
    const int style = spec.precision >= 0 ? std::min(spec.precision, mostDetailed) : usual;
    if (const int result = language.dates.format(static_cast<DateParts>(kind.variant), style, moment, text))
        return result;
    return output.writePadded(spec, {text.units(), text.length()});
}

} // namespace kelto::locale
