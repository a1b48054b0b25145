/**
 * An open language: its names, its form table with a record for each conversion, and the objects of ICU that the
 * conversions use, made when one is first needed. Everything in it is made once and then only read, or lent to one
 * thread at a time, so it never changes for its users.
 *
 * A formatter is told the name in its record and nothing of the table. So the name stands in front of a pointer to the
 * language, and each conversion finds both where its name is.
 */
#ifndef KELTO_LOCALE_LANGUAGE_H
#define KELTO_LOCALE_LANGUAGE_H

#include "conversions.h"
#include "dates.h"
#include "integers.h"
#include "kelto-locale.h"
#include "language_name.h"
#include "number_formatters.h"

#include <cstddef>
#include <unicode/ulistformatter.h>
#include <unicode/ureldatefmt.h>

namespace kelto::locale
{

/** A name in a language's memory, and what it names. */
struct Conversion
{
    char name[longestConversionName + 1];
    const Kind *kind;
    KTLLanguage *language;

    /** The conversion whose name this is. */
    static const Conversion &of(const char *name) noexcept
    {
        return *reinterpret_cast<const Conversion *>(name - offsetof(Conversion, name));
    }
};

using ListFormatter = Lazy<UListFormatter, Close<ulistfmt_close>>;

} // namespace kelto::locale

struct KTLLanguage
{
    // cppcheck-suppress uninitMemberVar; open() fills them in
    KTLLanguage() = default;
    ~KTLLanguage();
    KTLLanguage(const KTLLanguage &) = delete;
    KTLLanguage &operator=(const KTLLanguage &) = delete;

    /**
     * Fills in all that stands at the opening.
     * @param locale, timeZone  of lengths that have room.
     * @param behind            the table to which that of the language is chained.
     */
    int open(const char *locale, const char *timeZone, formTable *behind) noexcept;

    kelto::locale::LanguageName name;
    formTable table;
    kelto::locale::Conversion conversions[kelto::locale::kindCount];
    KTFormatter records[kelto::locale::kindCount + 1];

    kelto::locale::Lazy<kelto::locale::IntegerRules> integers;
    kelto::locale::NumberFormatters numbers;
    kelto::locale::Currencies currencies;
    kelto::locale::DateFormatters dates;
    kelto::locale::Lazy<URelativeDateTimeFormatter, kelto::locale::Close<ureldatefmt_close>> ago;
    kelto::locale::ListFormatter lists[2];

    // Of those who open and close; guarded by their lock.
    char askedLocale[ULOC_FULLNAME_CAPACITY], askedZone[kelto::locale::maxZoneLength + 1];
    uint32_t hash;
    unsigned long users;
    KTLLanguage *next;
};

#endif
