/**
 * The text of one conversion before it is written: a few pieces in a row, each a text or one unit repeated. Every
 * formatter describes its output as a field, so that the size is known before the first unit is written; the sum, the
 * question whether it fits, and the writing stand here and nowhere else. Counts are 64 bits wide: a field may be far
 * longer than any memory, since it is then measured only.
 */
#ifndef KELTO_FORMAT_FIELD_H
#define KELTO_FORMAT_FIELD_H

#include "kelto.h"

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

/** Whether a zero unit is written behind the text. */
enum class Ending
{
    open,
    terminated
};

class Field
{
public:
    /** Appends a UCS-2 text, which must live until the field is written. */
    void text(const UCS2 *units, size_t count) noexcept { append({units, count, 0, Kind::wide}); }
    /** Appends a text of 8-bit characters, each widened to one unit. */
    void narrowText(const char *characters, size_t count) noexcept { append({characters, count, 0, Kind::narrow}); }
    /** Appends one unit, `count` times. */
    void fill(UCS2 unit, uint64_t count) noexcept
    {
        if (count > 0)
            append({nullptr, count, unit, Kind::fill});
    }

    /** Leaves room that the caller fills in once the field is written. */
    void reserve(size_t count) noexcept { append({nullptr, count, 0, Kind::reserved}); }

    uint64_t length() const noexcept { return m_length; }

    /** Writes the field under the formatters' size protocol: 0, or KT_ERR_BUFFER_TOO_SMALL with nothing written. */
    int write(unsigned long *sizeInOut, UCS2 *out, Ending ending) const noexcept;

private:
    enum class Kind
    {
        wide,
        narrow,
        fill,
        reserved
    };
    struct Piece
    {
        const void *source;
        uint64_t count;
        UCS2 unit;
        Kind kind;
    };

    void append(const Piece &piece) noexcept
    {
        m_pieces[m_count++] = piece;
        m_length += piece.count;
    }

    // A number is the longest: padding, prefix, zeros, digits, zeros behind them, padding.
    static constexpr size_t maxPieces = 6;
    Piece m_pieces[maxPieces];
    size_t m_count = 0;
    uint64_t m_length = 0;
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
    const char *prefix; /**< a sign or "0x" */
    size_t prefixLength;
    uint64_t leadingZeros;
    const char *digits;
    size_t digitCount;
    uint64_t trailingZeros;
};

/** Lays a number out in its width and writes it: the one place where prefix, zeros, digits and padding meet. */
int writeNumber(const NumberText &number, int width, Padding padding, unsigned long *sizeInOut, UCS2 *out) noexcept;

/** A pair of tags, both empty where the conversion is not tagged. */
struct TagPair
{
    const UCS2 *open;
    const UCS2 *close;

    TagPair(int flags, const UCS2 *openTag, const UCS2 *closeTag) noexcept
        : open((flags & FLAG_TAG) != 0 ? openTag : u""), close((flags & FLAG_TAG) != 0 ? closeTag : u"")
    {
    }

    /** Appends the tag, the body and the tag. `addBody(field)` appends at most four pieces. */
    template <typename AddBody> Field around(AddBody addBody) const
    {
        Field field;
        field.text(open, KTUCS2strlen(open));
        addBody(field);
        field.text(close, KTUCS2strlen(close));
        return field;
    }
};

} // namespace kelto

#endif
