/**
 * A whole format string, in UCS-2 or UTF-8: literal text, "%%", and conversion specifications whose positions must be
 * exactly 1 to n. checkFormat() turns it into an array of KTParameter in the order of the positions, and of a format
 * that is refused says why and where; checkSyntax() is its exported face.
 */
#ifndef KELTO_FORMAT_FORMAT_STRING_H
#define KELTO_FORMAT_FORMAT_STRING_H

#include "format/conversion_record.h"
#include "platform/scoped.h"

#include <climits>

namespace kelto
{

/** The first '%' in [from, end), or end. */
const UCS2 *findPercent(const UCS2 *from, const UCS2 *end) noexcept;
const char *findPercent(const char *from, const char *end) noexcept;

/** A '%' in a format: of a conversion specification, or of a "%%". */
template <typename Unit> struct PercentPlace
{
    const Unit *begin; /**< the '%'; the end of the format where there is no further one */
    const Unit *end;   /**< behind the conversion specification, or behind "%%" */
    int position;      /**< of the conversion specification; 0 for "%%" */
};

/**
 * The places of a checked format in the order of the text. The check notes the first of them, so that whoever writes
 * the text need not look for them again; the others, or all of a format that was checked elsewhere, are found anew. An
 * empty object finds all of them. They can be walked through once.
 */
template <typename Unit> class PercentPlaces
{
public:
    /** Notes the place behind those noted so far, while there is room. */
    void note(const PercentPlace<Unit> &place) noexcept
    {
        if (m_noted < maxNoted)
            m_places[m_noted++] = place;
    }

    /** The next place, `from` being the end of the one before or the beginning of the format. */
    PercentPlace<Unit> next(const Unit *from, const Unit *end) noexcept
    {
        return m_nextNoted < m_noted ? m_places[m_nextNoted++] : find(from, end);
    }

private:
    static PercentPlace<Unit> find(const Unit *from, const Unit *end) noexcept;

    static constexpr size_t maxNoted = 16;
    PercentPlace<Unit> m_places[maxNoted];
    size_t m_noted = 0;
    size_t m_nextNoted = 0;
};

/**
 * Walks through a checked format of `length` units: `literal(begin, count)` for each run of text, the '%' of a "%%"
 * being one or a part of one, `conversion(place)` for each conversion specification, which returns whether to go on.
 * @return whether the walk came to its end.
 */
template <typename Unit, typename Literal, typename Conversion>
bool walkFormat(const Unit *format, size_t length, PercentPlaces<Unit> &places, Literal literal, Conversion conversion)
{
    const Unit *const end = format + length;
    for (const Unit *from = format;;)
    {
        const PercentPlace<Unit> place = places.next(from, end);
        const bool isPercentSign = place.begin != end && place.position == 0;
        const auto count = static_cast<size_t>(place.begin - from) + (isPercentSign ? 1 : 0);
        if (count > 0)
            literal(from, count);
        if (place.begin == end)
            return true;
        if (!isPercentSign && !conversion(place))
            return false;
        from = place.end;
    }
}

/** What a check says of a format. */
struct FormatVerdict
{
    int result;            /**< 0, KT_ERR_FORMAT_SYNTAX, KT_ERR_NO_MEMORY; KT_ERR_CONVERSION_INVALID_ARGUMENT */
    KTRule rule;           /**< what a refused format breaks */
    unsigned position;     /**< that is repeated or missing; else 0 */
    size_t offset, length; /**< the conversion specification concerned, in units of the format */
};

/** Whether a format of so many bytes is refused for its length: the calls that convert it offer one unit more. */
constexpr bool isTooLong(size_t length) noexcept
{
    return length >= INT_MAX;
}

/**
 * Checks a format.
 * @param format      zero-terminated; `length` units without the terminator.
 * @param parameters  out: as in checkSyntax().
 * @param places      empty; receives the places of the format.
 */
template <typename Unit>
FormatVerdict checkFormat(const Unit *format, size_t length, formTable *table, TagBlock<KTParameter> &parameters,
                          PercentPlaces<Unit> &places) noexcept;

} // namespace kelto

#endif
