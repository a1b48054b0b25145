/**
 * Dates and times: what the texts of "D", "T" and "DT" mean, shown by ICU in a language's calendar and in a time zone.
 * ICU's formatters are for one thread at a time, so each kind has a pool of them, cloned from one that is never used
 * itself.
 */
#ifndef KELTO_LOCALE_DATES_H
#define KELTO_LOCALE_DATES_H

#include "icu.h"

#include <unicode/udat.h>
#include <unicode/uloc.h>

namespace kelto::locale
{

/** The variants of the conversions. */
enum DateParts
{
    datePart,
    timePart,
    dateAndTime,
    datePartsCount
};

/** The longest name of a time zone. */
constexpr size_t maxZoneLength = 63;

class DateFormatters
{
public:
    /**
     * @param locale    ICU's name of the language.
     * @param timeZone  at most maxZoneLength bytes, or null for UTC.
     * @return 0, KT_ERR_INVALID_PARAMETER for what is no time zone, or the result of a failure.
     */
    int setZone(const char *locale, const char *timeZone) noexcept;

    /** Writes a moment. @param style  0 short to 3 full. */
    int format(DateParts parts, int style, UDate moment, IcuText &text) noexcept;

private:
    static constexpr int styleCount = 4;

    struct Formatter
    {
        Lazy<UDateFormat, Close<udat_close>> original;
        Pool<UDateFormat, udat_close> clones;
    };

    int open(DateParts parts, int style, Handle<UDateFormat, udat_close> &made) const noexcept;

    char m_locale[ULOC_FULLNAME_CAPACITY + 32];
    UChar m_zone[maxZoneLength + 1];
    Formatter m_formatters[datePartsCount][styleCount];
};

} // namespace kelto::locale

#endif
