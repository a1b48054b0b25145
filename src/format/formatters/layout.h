/**
 * How one conversion's text is laid out, before any of it is written: a few pieces in a row, each a text or one unit
 * repeated. A conversion says its pieces once, to whatever takes them: the Field of a formatter, which adds them up,
 * answers "fits, or needs n" and writes them; or a FormatOutput (format_output.h) in either encoding. Only this file
 * knows what numbers and tagged values have in common, padding above all; each kind of conversion knows which flag
 * wins. (A text that an encoder has written itself is only padded: formatters/text.cpp.) Counts have 64 bits: a field
 * may be far longer than any memory, and is then only measured.
 */
#ifndef KELTO_FORMAT_FORMATTERS_LAYOUT_H
#define KELTO_FORMAT_FORMATTERS_LAYOUT_H

#include "format/formatters/few_units.h"
#include "strconv/ascii_run.h"

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

/** How a conversion is to be laid out: its width and precision, negative for none, and bits of KTFlag. */
struct Layout
{
    int width, precision, flags;
};

/* The pieces, each with its count of units. */

/** A UCS-2 text. */
struct UCS2Text
{
    const UCS2 *units;
    uint64_t count;

    UCS2 *writeTo(UCS2 *out) const noexcept { return std::copy_n(units, count, out); }
};

/** A text of 8-bit characters, each of them one unit. */
struct NarrowText
{
    const char *characters; /**< null for a text that is known not to fit, and only counted */
    uint64_t count;
    uint64_t beyondAscii = 0; /**< how many of them are: none but in the decimal mark of some locales */

    UCS2 *writeTo(UCS2 *out) const noexcept
    {
        constexpr uint64_t few = 4; // for which the steps of an ASCII run do not pay
        uint64_t done = count < few ? 0 : widenAscii(characters, count, out);
        for (; done != count; ++done)
            out[done] = static_cast<unsigned char>(characters[done]);
        return out + count;
    }

    /** Writes the text as UTF-8; it is ASCII. */
    char *writeTo(char *out) const noexcept { return copyUnits(characters, count, out); }
};

/** One unit, repeated. */
struct Fill
{
    UCS2 unit; /**< ASCII in every conversion */
    uint64_t count;

    template <typename Unit> Unit *writeTo(Unit *out) const noexcept
    {
        return fillUnits(out, count, static_cast<Unit>(unit));
    }
};

/** Whether a zero unit is written behind the text, as some conversions promise to those who call them directly. */
enum class Ending
{
    open,
    terminated
};

/** The output of a formatter: room in, size out. It writes a text whole, or nothing of it. */
class Field
{
public:
    Field(unsigned long *sizeInOut, UCS2 *out) noexcept : m_size(sizeInOut), m_room(*sizeInOut), m_out(out) {}

    bool canHold(uint64_t length) const noexcept { return fits(length, m_room); }

    /** Writes the pieces one after the other: 0, or KT_ERR_BUFFER_TOO_SMALL with the need stored. */
    template <typename... Pieces> int write(Ending ending, const Pieces &...pieces) noexcept
    {
        if (!claim((pieces.count + ...)))
            return KT_ERR_BUFFER_TOO_SMALL;
        UCS2 *end = m_out;
        ((end = pieces.writeTo(end)), ...);
        if (ending == Ending::terminated)
            *end = 0;
        return 0;
    }

    /** Writes and pads a text that may lie in the output itself: the text is moved before anything else is written. */
    int writePadded(const UCS2Text &text, const Fill &padding, bool isPaddedBehind) noexcept
    {
        if (!claim(text.count + padding.count))
            return KT_ERR_BUFFER_TOO_SMALL;
        UCS2 *const begin = isPaddedBehind ? m_out : m_out + padding.count;
        std::memmove(begin, text.units, text.count * sizeof(UCS2));
        padding.writeTo(isPaddedBehind ? m_out + text.count : m_out);
        m_out[text.count + padding.count] = 0;
        return 0;
    }

private:
    bool claim(uint64_t length) noexcept
    {
        *m_size = length;
        return canHold(length);
    }

    unsigned long *m_size;
    unsigned long m_room;
    UCS2 *m_out;
};

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

    uint64_t length() const noexcept { return prefix.count + leadingZeros + digits.count + trailingZeros; }
    uint64_t paddingTo(int width) const noexcept { return kelto::paddingTo(width, length() - uncounted); }
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

/** Lays a number out in its width and writes it. Prefix, zeros, digits and padding meet here and nowhere else. */
template <typename Out>
[[gnu::always_inline]] inline int writeNumber(Out &out, const NumberText &number, int width, Padding padding) noexcept
{
    const uint64_t missing = number.paddingTo(width);
    const auto paddingAt = [&](Padding place) { return padding == place ? missing : 0; };
    return out.write(Ending::open, Fill{u' ', paddingAt(Padding::left)}, number.prefix,
                     Fill{u'0', number.leadingZeros + paddingAt(Padding::zeros)}, number.digits,
                     Fill{u'0', number.trailingZeros}, Fill{u' ', paddingAt(Padding::right)});
}

/** Writes pieces between a pair of tags, terminated; or where the flags do not ask for tags alone, with `ending`. */
template <typename Out, typename... Pieces>
int writeTagged(Out &out, int flags, const UCS2 *openTag, const UCS2 *closeTag, Ending ending,
                const Pieces &...pieces) noexcept
{
    if ((flags & FLAG_TAG) == 0)
        return out.write(ending, pieces...);
    return out.write(Ending::terminated, UCS2Text{openTag, KTUCS2strlen(openTag)}, pieces...,
                     UCS2Text{closeTag, KTUCS2strlen(closeTag)});
}

} // namespace kelto

#endif
