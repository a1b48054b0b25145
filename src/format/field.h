/**
 * The text of one conversion before it is written: a few pieces in a row, each a text or one unit repeated. Every
 * formatter hands its pieces to writeField(), so that the size is known before the first unit is written; the sum, the
 * question whether it fits, and the writing stand here and nowhere else. (A text that an encoder has written itself is
 * only padded: formatters/text.cpp.) Counts are 64 bits wide: a field may be far longer than any memory, since it is then
 * measured only.
 */
#ifndef KELTO_FORMAT_FIELD_H
#define KELTO_FORMAT_FIELD_H

#include "kelto.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kelto
{

/** Whether a text of this length can be written into the room; one unit stays free for the final terminator. */
constexpr bool fits(uint64_t length, unsigned long room) noexcept
{
    return length < room;
}

/** The units missing to a width; none where the width is absent (negative). */
constexpr uint64_t paddingTo(int width, uint64_t length) noexcept
{
    return width >= 0 && static_cast<uint64_t>(width) > length ? static_cast<uint64_t>(width) - length : 0;
}

/* The pieces. Each knows its count of units and writes them, returning the end. */

/** A UCS-2 text. */
struct Text
{
    const UCS2 *units;
    uint64_t count;

    UCS2 *writeTo(UCS2 *out) const noexcept { return std::copy_n(units, count, out); }
};

/** A text of 8-bit characters, each widened to one unit. Numbers are short: a loop is all they need. */
struct NarrowText
{
    const char *characters;
    uint64_t count;

    UCS2 *writeTo(UCS2 *out) const noexcept
    {
        for (const char *next = characters; next != characters + count; ++next)
            *out++ = static_cast<unsigned char>(*next);
        return out;
    }
};

/** One unit, repeated. */
struct Fill
{
    UCS2 unit;
    uint64_t count;

    UCS2 *writeTo(UCS2 *out) const noexcept { return std::fill_n(out, count, unit); }
};

/** Whether a zero unit is written behind the text, as some conversions promise to those who call them directly. */
enum class Ending
{
    open,
    terminated
};

/** Writes pieces under the formatters' size protocol: 0, or KT_ERR_BUFFER_TOO_SMALL with nothing written. */
template <typename... Pieces>
int writeField(unsigned long *sizeInOut, UCS2 *out, Ending ending, const Pieces &...pieces) noexcept
{
    const unsigned long room = *sizeInOut;
    const uint64_t length = (pieces.count + ...);
    *sizeInOut = length;
    if (!fits(length, room))
        return KT_ERR_BUFFER_TOO_SMALL;
    ((out = pieces.writeTo(out)), ...);
    if (ending == Ending::terminated)
        *out = 0;
    return 0;
}

/** Where the padding of a number stands. */
enum class Padding
{
    left,  /**< blanks before it */
    right, /**< blanks behind it */
    zeros  /**< zeros between prefix and digits */
};

/** A number in its parts, in the order in which they are written. */
struct NumberText
{
    NarrowText prefix; /**< a sign or "0x" */
    uint64_t leadingZeros;
    NarrowText digits;
    uint64_t trailingZeros;
    uint64_t uncounted = 0; /**< units that a width does not count: of a decimal mark of several bytes all but one */
};

/** The sign of a signed number: '-', or what the flags put in its place. */
inline NarrowText signOf(bool isNegative, int flags) noexcept
{
    if (isNegative)
        return {"-", 1};
    if ((flags & FLAG_PLUS) != 0)
        return {"+", 1};
    return {" ", (flags & FLAG_SPACE) != 0 ? 1U : 0U};
}

/** Lays a number out in its width and writes it: the one place where prefix, zeros, digits and padding meet. */
int writeNumber(const NumberText &number, int width, Padding padding, unsigned long *sizeInOut, UCS2 *out) noexcept;

/** Writes pieces between a pair of tags, terminated; or where the flags do not ask for tags alone, with `ending`. */
template <typename... Pieces>
int writeTagged(int flags, const UCS2 *openTag, const UCS2 *closeTag, unsigned long *sizeInOut, UCS2 *out,
                Ending ending, const Pieces &...pieces) noexcept
{
    if ((flags & FLAG_TAG) == 0)
        return writeField(sizeInOut, out, ending, pieces...);
    return writeField(sizeInOut, out, Ending::terminated, Text{openTag, KTUCS2strlen(openTag)}, pieces...,
                      Text{closeTag, KTUCS2strlen(closeTag)});
}

} // namespace kelto

#endif
