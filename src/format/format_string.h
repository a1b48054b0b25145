/**
 * A whole format string: literal text, "%%", and specifications whose positions must be exactly 1 to n. checkFormat()
 * turns it into an array of KTParameter in the order of the positions, which is what the driver walks; checkSyntax() is
 * its exported face for a text whose length is not known yet.
 */
#ifndef KELTO_FORMAT_FORMAT_STRING_H
#define KELTO_FORMAT_FORMAT_STRING_H

#include "format/records.h"

namespace kelto
{

/** The first '%' in [from, end), or end. */
const UCS2 *findPercent(const UCS2 *from, const UCS2 *end) noexcept;

/** A '%' in a format: of a specification, or of a "%%". */
struct PercentPlace
{
    const UCS2 *begin; /**< the '%'; the end of the format where there is no further one */
    const UCS2 *end;   /**< behind the specification, or behind "%%" */
    int position;      /**< of the specification; 0 for "%%" */
};

/**
 * The places of a checked format in the order of the text. The check notes the first of them, so that the driver need
 * not look for them again; the others, or all of a format that was checked elsewhere, are found anew. An empty object
 * finds all of them. They can be walked through once.
 */
class PercentPlaces
{
public:
    /** Notes the place behind those noted so far, while there is room. */
    void note(const PercentPlace &place) noexcept
    {
        if (m_noted < maxNoted)
            m_places[m_noted++] = place;
    }

    /** The next place, `from` being the end of the one before or the beginning of the format. */
    PercentPlace next(const UCS2 *from, const UCS2 *end) noexcept
    {
        return m_nextNoted < m_noted ? m_places[m_nextNoted++] : find(from, end);
    }

private:
    static PercentPlace find(const UCS2 *from, const UCS2 *end) noexcept;

    static constexpr size_t maxNoted = 16;
    PercentPlace m_places[maxNoted];
    size_t m_noted = 0;
    size_t m_nextNoted = 0;
};

/**
 * checkSyntax() for a text of known length.
 * @param format      zero-terminated; `length` units without the terminator.
 * @param parameters  as in checkSyntax(); the caller frees it with ZEL_free().
 * @param places      empty; receives the places of the format.
 */
int checkFormat(const UCS2 *format, size_t length, formTable *table, KTParameter **parameters,
                PercentPlaces &places) noexcept;

} // namespace kelto

#endif
