/**
 * Dates and times: the formatter of "DT", "D" and "T" with its two readers and its one layout. The value is a text: a
 * count of seconds since 1970-01-01 00:00:00, or a time stamp of exactly 21 bytes. There is no time zone and no locale.
 * In this calendar every fourth year is a leap year, without exception.
 */
#ifndef KELTO_FORMAT_FORMATTERS_DATE_TIME_H
#define KELTO_FORMAT_FORMATTERS_DATE_TIME_H

#include "format/formatters/layout.h"

namespace kelto
{

/** The text of a "DT", "D" or "T". */
class DateTimeText
{
public:
    /**
     * @param text      zero-terminated; `length` bytes without the terminator.
     * @param convName  its first two characters tell the parts, as in formatDateTime().
     * @return 0, or KT_ERR_INVALID_PARAMETER for what is no date and time.
     */
    int make(const char *text, size_t length, const char *convName, int flags) noexcept;

    UCS2Text piece() const noexcept { return {m_units, KTUCS2strlen(m_units)}; }

    /** The longest text that can be a date and time: a longer one fails whatever it holds. */
    static constexpr size_t maxLength = 21;

private:
    UCS2 m_units[304]; // tags, separators and a year of seven digits are well under this
};

} // namespace kelto

extern "C" {
#pragma GCC visibility push(default)

/**
 * Writes a count of seconds; the empty text is 0.
 * @param text  decimal digits, below 185542587187200 (the day number then fits 32 bits).
 * @param tag   whether the parts are wrapped in tags.
 * @param kind  CONV_DT, CONV_D or CONV_T.
 * @param out   room for 200 units; terminated.
 * @return 0, or KT_ERR_INVALID_PARAMETER for anything else in the text.
 */
int secondDateTime(const char *text, bool tag, Flag_t kind, UCS2 *out);

/**
 * Writes a time stamp, its digits as they stand and unchecked. Arguments and result are those of secondDateTime().
 * @param text  as "2006-05-17'T08:09:10Z".
 */
int ISODateTime(const char *text, bool tag, Flag_t kind, UCS2 *out);

/** Writes the fields that the kind asks for, "month/day/year hour:minute:second" or tagged; nothing for other kinds. */
int _formatDateTime(const UCS2 *year, const UCS2 *month, const UCS2 *day, const UCS2 *hour, const UCS2 *minute,
                    const UCS2 *second, bool tag, Flag_t kind, UCS2 *out);

/** Moves the cursor past the character c: 0; or 1 where another one stands there, and the cursor stays. */
int takeChar(const char **cursor, char c);

/**
 * Copies up to maxDigits digits, fewer only where the text ends; field has room for maxDigits + 1 units.
 * @return 0, or 1 where another character comes first.
 */
int takeDigits(const char **cursor, int maxDigits, UCS2 *field);

/** 28 to 31; 0 for a month that is not 1 to 12. */
int numDaysInMonth(int month, int year);

#pragma GCC visibility pop
}

#endif
