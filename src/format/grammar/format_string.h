/**
 * A whole format string, in UCS-2 or UTF-8: literal text, "%%", and conversion specifications whose positions must be
 * exactly 1 to n. checkFormat() turns it into an array of KTParameter in the order of the positions, and of a format
 * that is refused says why and where; checkSyntax() is its exported face.
 */
#ifndef KELTO_FORMAT_GRAMMAR_FORMAT_STRING_H
#define KELTO_FORMAT_GRAMMAR_FORMAT_STRING_H

#include "format/conversion_record.h"
#include "platform/scoped.h"

#include <climits>

namespace kelto
{

/** A '%' in a format: of a conversion specification, or of a "%%". */
template <typename Unit> struct PercentPlace
{
    const Unit *begin; /**< the '%'; the end of the format where there is no further one */
    const Unit *end;   /**< behind the conversion specification, or behind "%%" */
    int position;      /**< of the conversion specification; 0 for "%%" */
};

/**
 * The places of a checked format in the order of the text, the first few of them: the check notes them, so that whoever
 * writes the text need not look for them again. None are noted of a format that was checked elsewhere.
 */
template <typename Unit> class PercentPlaces
{
public:
    /** Notes the place behind those noted so far, while there is room. */
    void note(const PercentPlace<Unit> &place) noexcept
    {
        if (m_count < maxCount)
            m_places[m_count++] = place;
    }

    const PercentPlace<Unit> *begin() const noexcept { return m_places; }
    const PercentPlace<Unit> *end() const noexcept { return m_places + m_count; }

    /** Finds the next place, `from` being the end of the one before or the beginning of the format. */
    static PercentPlace<Unit> find(const Unit *from, const Unit *end) noexcept;

private:
    static constexpr size_t maxCount = 16;
    PercentPlace<Unit> m_places[maxCount];
    size_t m_count = 0;
};

/**
 * Walks through a checked format of `length` units: `literal(begin, count)` for each run of text, the '%' of a "%%"
 * being one or a part of one, `conversion(place)` for each conversion specification, which returns whether to go on.
 * @return whether the walk came to its end.
 */
template <typename Unit, typename Literal, typename Conversion>
bool walkFormat(const Unit *format, size_t length, const PercentPlaces<Unit> &places, Literal literal,
                Conversion conversion)
{
    const Unit *const end = format + length;
    const PercentPlace<Unit> *noted = places.begin();
    const PercentPlace<Unit> *const notedEnd = places.end();
    PercentPlace<Unit> found;
    for (const Unit *from = format;;)
    {
        const PercentPlace<Unit> &place = noted != notedEnd ? *noted++ : (found = places.find(from, end));
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
 * Room for the parameters of most formats, so that a check which hands none of them out needs no block. They end at
 * one whose formatter is null, as in checkSyntax().
 */
struct FewParameters
{
    static constexpr size_t count = 10;
    KTParameter records[count + 1];
};

/**
 * Checks a format.
 * @param format      zero-terminated; `length` units without the terminator.
 * @param parameters  out: as in checkSyntax(); null also where `few` holds them.
 * @param places      empty; receives the places of the format.
 * @param few         null where parameters are to stand in a block always.
 */
template <typename Unit>
FormatVerdict checkFormat(const Unit *format, size_t length, formTable *table, TagBlock<KTParameter> &parameters,
                          PercentPlaces<Unit> &places, FewParameters *few = nullptr) noexcept;

} // namespace kelto

#endif
