/**
 * What the conversions "EID" and "E" write: an entry ID as eight hexadecimal digits behind "0X", an error as its text,
 * both tagged on request. ("IP" writes nothing.)
 */
#ifndef KELTO_FORMAT_FORMATTERS_ENTRY_ID_ERROR_IP_H
#define KELTO_FORMAT_FORMATTERS_ENTRY_ID_ERROR_IP_H

#include "format/formatters/integer.h"
#include "format/formatters/tags.h"

namespace kelto
{

template <typename Out> int writeEntryId(Out &out, int flags, uint32_t value) noexcept
{
    constexpr size_t entryIdDigits = 8;
    const IntegerText digits(CONV_X, value);
    return writeTagged(out, flags, eid_tag_o, eid_tag_c, Ending::open, NarrowText{"0X", 2},
                       Fill{u'0', entryIdDigits - digits.length()}, NarrowText{digits.begin(), digits.length()});
}

/** @param text  a piece: UCS2Text or UTF8Text. */
template <typename Out, typename Piece> int writeError(Out &out, int flags, const Piece &text) noexcept
{
    return writeTagged(out, flags, error_tag_o, error_tag_c, Ending::terminated, text);
}

} // namespace kelto

#endif
