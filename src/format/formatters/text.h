/**
 * Characters and texts, cut to a precision and padded to a width: what "c", "s" and "U" write where no encoder does.
 */
#ifndef KELTO_FORMAT_FORMATTERS_TEXT_H
#define KELTO_FORMAT_FORMATTERS_TEXT_H

#include "format/formatters/layout.h"

namespace kelto
{

inline UCS2 padUnit(int flags) noexcept
{
    return (flags & FLAG_ZERO) != 0 ? u'0' : u' ';
}

inline uint64_t cutTo(int precision, uint64_t length) noexcept
{
    return precision >= 0 ? std::min(length, static_cast<uint64_t>(precision)) : length;
}

/** "s" and "U". @param text  a piece, whose count is that of the whole text. */
template <typename Out, typename Piece>
[[gnu::always_inline]] inline int writeText(Out &out, const Layout &layout, Piece text) noexcept
{
    text.count = cutTo(layout.precision, text.count);
    const Fill padding = {padUnit(layout.flags), paddingTo(layout.width, text.count)};
    return out.writePadded(text, padding, (layout.flags & FLAG_MINUS) != 0);
}

/** "c", which has no precision. */
template <typename Out> int writeCharacter(Out &out, const Layout &layout, UCS2 character) noexcept
{
    return writeText(out, {layout.width, KT_ABSENT, layout.flags}, UCS2Text{&character, 1});
}

} // namespace kelto

#endif
