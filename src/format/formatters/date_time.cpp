#include "format/formatters/date_time.h"

#include "format/formatters/integer.h"
#include "format/formatters/tags.h"

#include <cstdint>
#include <cstring>

// A text of at most 20 characters is a number of seconds since 1970; a longer one is a time stamp. Seconds become a day
// number, and the day number a date, in constant time: any four years are equally long here, since every fourth is a
// leap year. So from the 1st of March 2100 on a date is a day behind the calendar's. Both kinds of text fill the same
// six fields, and _formatDateTime() alone writes these.

namespace
{

/** The longest text of seconds, a byte less than a time stamp. A longer text is read as a time stamp. */
constexpr size_t maxSecondsLength = 20;

constexpr uint64_t secondsPerDay = 86400;
constexpr uint64_t endOfDays = (uint64_t{1} << 31) * secondsPerDay;

constexpr int firstYear = 1970;
constexpr int daysPerFourYears = 4 * 365 + 1;

/** The days before each year of a group that begins with 1970; its third year is the leap year. */
constexpr int daysBeforeYear[] = {0, 365, 2 * 365, 3 * 365 + 1};

struct Date
{
    int year, month, day;
};

bool isLeapYear(int year)
{
    return year % 4 == 0;
}

/** The date of a day number, 0 being 1970-01-01, in constant time. */
Date dateOfDay(int days)
{
    int year = firstYear + days / daysPerFourYears * 4;
    days %= daysPerFourYears;
    int inGroup = 3;
    while (days < daysBeforeYear[inGroup])
        --inGroup;
    year += inGroup;
    days -= daysBeforeYear[inGroup];
    int month = 1;
    for (; days >= numDaysInMonth(month, year); ++month)
        days -= numDaysInMonth(month, year);
    return {year, month, days + 1};
}

/** Reads decimal digits up to the end of the text; false for another character or a count that no day has. */
bool readSeconds(const char *text, uint64_t &seconds)
{
    seconds = 0;
    for (; *text != '\0'; ++text)
    {
        if (*text < '0' || *text > '9')
            return false;
        seconds = seconds * 10 + static_cast<uint64_t>(*text - '0');
        if (seconds >= endOfDays)
            return false;
    }
    return true;
}

/** Fields of a date and time as text. */
constexpr size_t fieldUnits = kelto::IntegerText::textSize;
enum FieldIndex
{
    yearField,
    monthField,
    dayField,
    hourField,
    minuteField,
    secondField,
    fieldCount
};
using FieldTexts = UCS2[fieldCount][fieldUnits];

int writeFields(const FieldTexts &fields, bool tag, Flag_t kind, UCS2 *out)
{
    return _formatDateTime(fields[yearField], fields[monthField], fields[dayField], fields[hourField],
                           fields[minuteField], fields[secondField], tag, kind, out);
}

/** One field of a time stamp and the characters that must follow it. */
struct StampStep
{
    FieldIndex field;
    int digits;
    const char *separators;
};

// The apostrophe is a part of the notation.
constexpr StampStep stampSteps[] = {{yearField, 4, "-"}, {monthField, 2, "-"},  {dayField, 2, "'T"},
                                    {hourField, 2, ":"}, {minuteField, 2, ":"}, {secondField, 2, "Z"}};

bool readStampStep(const char **cursor, const StampStep &step, UCS2 *field)
{
    if (takeDigits(cursor, step.digits, field) != 0)
        return false;
    for (const char *separator = step.separators; *separator != '\0'; ++separator)
        if (takeChar(cursor, *separator) != 0)
            return false;
    return true;
}

/** A field with what stands around it, tagged or not. */
struct Part
{
    const UCS2 *before, *text, *after;
};

void appendParts(UCS2 *out, const Part (&parts)[3])
{
    for (const Part &part : parts)
    {
        KTUCS2strcat(out, part.before);
        KTUCS2strcat(out, part.text);
        KTUCS2strcat(out, part.after);
    }
}

} // namespace

int takeChar(const char **cursor, char c)
{
    if (**cursor != c)
        return 1;
    ++*cursor;
    return 0;
}

int takeDigits(const char **cursor, int maxDigits, UCS2 *field)
{
    for (int taken = 0; taken < maxDigits && **cursor != '\0'; ++taken)
    {
        if (**cursor < '0' || **cursor > '9')
            return 1;
        *field++ = static_cast<UCS2>(*(*cursor)++);
    }
    *field = 0;
    return 0;
}

int numDaysInMonth(int month, int year)
{
    static constexpr int days[] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12)
        return 0;
    return days[month] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

int _formatDateTime(const UCS2 *year, const UCS2 *month, const UCS2 *day, const UCS2 *hour, const UCS2 *minute,
                    const UCS2 *second, bool tag, Flag_t kind, UCS2 *out)
{
    *out = 0;
    if (kind == CONV_DT || kind == CONV_D)
    {
        if (tag)
        {
            KTUCS2strcat(out, date_tag_o);
            appendParts(
                out, {{year_tag_o, year, year_tag_c}, {month_tag_o, month, month_tag_c}, {day_tag_o, day, day_tag_c}});
            KTUCS2strcat(out, date_tag_c);
        }
        else
            appendParts(out, {{u"", month, ucs2_slash}, {u"", day, ucs2_slash}, {u"", year, u""}});
    }
    if (kind == CONV_DT)
        KTUCS2strcat(out, ucs2_space);
    if (kind == CONV_DT || kind == CONV_T)
    {
        if (tag)
        {
            KTUCS2strcat(out, time_tag_o);
            appendParts(out, {{hour_tag_o, hour, hour_tag_c},
                              {minute_tag_o, minute, minute_tag_c},
                              {second_tag_o, second, second_tag_c}});
            KTUCS2strcat(out, time_tag_c);
        }
        else
            appendParts(out, {{u"", hour, ucs2_colon}, {u"", minute, ucs2_colon}, {u"", second, u""}});
    }
    return 0;
}

int secondDateTime(const char *text, bool tag, Flag_t kind, UCS2 *out)
{
    uint64_t seconds = 0;
    if (!readSeconds(text, seconds))
        return KT_ERR_INVALID_PARAMETER;
    const Date date = dateOfDay(static_cast<int>(seconds / secondsPerDay));
    const auto rest = static_cast<int>(seconds % secondsPerDay);
    const int values[fieldCount] = {date.year, date.month, date.day, rest / 3600, rest % 3600 / 60, rest % 60};
    FieldTexts fields;
    for (int i = 0; i < fieldCount; ++i)
        numToUCS2(fields[i], CONV_d, 0, &values[i]);
    return writeFields(fields, tag, kind, out);
}

int ISODateTime(const char *text, bool tag, Flag_t kind, UCS2 *out)
{
    FieldTexts fields;
    for (const StampStep &step : stampSteps)
        if (!readStampStep(&text, step, fields[step.field]))
            return KT_ERR_INVALID_PARAMETER;
    if (*text != '\0')
        return KT_ERR_INVALID_PARAMETER;
    return writeFields(fields, tag, kind, out);
}

namespace kelto
{

int DateTimeText::make(const char *text, size_t length, const char *convName, int flags) noexcept
{
    const auto read = length <= maxSecondsLength ? secondDateTime : ISODateTime;
    const Flag_t kind = convName[0] != 'D' ? CONV_T : convName[1] == 'T' ? CONV_DT : CONV_D;
    return read(text, (flags & FLAG_TAG) != 0, kind, m_units);
}

} // namespace kelto

int formatDateTime(const char *convName, int /*width*/, int /*precision*/, int flags, KTEncoder /*passThru1*/,
                   void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const auto *const text = static_cast<const char *>(*argSlot);
    kelto::DateTimeText formatted;
    if (const int result = formatted.make(text, std::strlen(text), convName, flags))
    {
        *sizeInOut = 0;
        return result;
    }
    kelto::Field field(sizeInOut, out);
    return field.write(kelto::Ending::terminated, formatted.piece());
}
