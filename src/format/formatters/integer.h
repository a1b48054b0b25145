/**
 * Integers as text: the digit writers, numToUCS2() on top of them, and the formatters of "d", "u", "o", "x" and "X".
 * The rules differ from printf's on purpose: a precision also cuts digits, '0' wins over '-' and over a precision, and
 * '#' puts its prefix before a zero too.
 */
#ifndef KELTO_FORMAT_FORMATTERS_INTEGER_H
#define KELTO_FORMAT_FORMATTERS_INTEGER_H

#include "format/formatters/layout.h"

#include <cstddef>
#include <cstdint>

namespace kelto
{

/** Writes decimal digits up to `end`, 20 at most. @return where they begin. */
char *writeDecimal(char *end, uint64_t value) noexcept;

/** An integer as 8-bit text: a '-' where it is negative, and its digits. */
class IntegerText
{
public:
    /** Writes decimal digits. */
    explicit IntegerText(int64_t value) noexcept;
    /** Writes the digits of a conversion: CONV_u, CONV_o, CONV_x or CONV_X. Any other has none. */
    IntegerText(Flag_t type, uint64_t value) noexcept;

    bool isNegative() const noexcept { return *begin() == '-'; }
    char *begin() noexcept { return m_text + m_at; }
    const char *begin() const noexcept { return m_text + m_at; }
    size_t length() const noexcept { return textSize - 1 - m_at; }

    /** Bytes for any integer, terminator included: 22 octal digits are the most; decimal are 20, or a sign and 19. */
    static constexpr size_t textSize = 23;

private:
    char *end() noexcept { return m_text + textSize - 1; }
    void beginAt(const char *begin) noexcept { m_at = static_cast<size_t>(begin - m_text); }

    char m_text[textSize];
    size_t m_at;
};

/** Where an integer is padded. */
Padding integerPadding(int flags) noexcept;

/** A precision is a number of digits: 42 with four is 0042, 12345 with two is 12000. @return the zeros before them. */
inline uint64_t applyPrecision(int precision, char *digits, size_t count) noexcept
{
    if (precision < 0)
        return 0;
    const auto wanted = static_cast<size_t>(precision);
    if (wanted >= count)
        return wanted - count;
    std::memset(digits + wanted, '0', count - wanted);
    return 0;
}

/** The part that all integer conversions share: prefix and digits are known. */
template <typename Out>
int writeInteger(Out &out, const Layout &layout, const NarrowText &prefix, char *digits, size_t count) noexcept
{
    const uint64_t zeros = applyPrecision(layout.precision, digits, count);
    return writeNumber(out, {prefix, zeros, {digits, count}, 0}, layout.width, integerPadding(layout.flags));
}

/** "d". */
template <typename Out>
[[gnu::always_inline]] inline int writeSigned(Out &out, const Layout &layout, int64_t value) noexcept
{
    IntegerText text(value);
    const size_t minus = value < 0 ? 1 : 0;
    return writeInteger(out, layout, signOf(value < 0, layout.flags), text.begin() + minus, text.length() - minus);
}

/** "d" without flags, width and precision. */
template <typename Out> [[gnu::always_inline]] inline int writeBare(Out &out, int64_t value) noexcept
{
    const IntegerText text(value);
    return out.write(Ending::open, NarrowText{text.begin(), text.length()});
}

/** "u". */
template <typename Out> int writeUnsigned(Out &out, const Layout &layout, uint64_t value) noexcept
{
    IntegerText text(CONV_u, value);
    return writeInteger(out, layout, {"", 0}, text.begin(), text.length());
}

/** The type that the first character of a name stands for, where it is one of "o", "x" and "X"; CONV_UNKNOWN else. */
Flag_t octHexType(char name) noexcept;

/** "o", "x" and "X". For another name, which a table of the caller may bring, the prefix is written, but no digits. */
template <typename Out> int writeOctHex(Out &out, const Layout &layout, char name, uint64_t value) noexcept
{
    const Flag_t type = octHexType(name);
    IntegerText text(type, value);
    const char prefix[] = {'0', name};
    size_t prefixLength = 0;
    if ((layout.flags & FLAG_HASH) != 0)
        prefixLength = type == CONV_o ? 1 : 2;
    return writeInteger(out, layout, {prefix, prefixLength}, text.begin(), text.length());
}

} // namespace kelto

extern "C" {
#pragma GCC visibility push(default)

/**
 * Renders an integer without any layout: digits, and a '-' before a negative one.
 * @param out    room for 23 units; terminated.
 * @param type   CONV_d, CONV_u, CONV_o, CONV_x or CONV_X; any other renders nothing.
 * @param flags  FLAG_h: the value has 16 bits; else FLAG_BANG: 64; else 32. Signed for CONV_d only.
 * @return the units written, without the terminator.
 *
 *     UCS2 text[23];
 *     int value = -5;
 *     int units = numToUCS2(text, CONV_d, 0, &value); // "-5", 2 units
 */
int numToUCS2(UCS2 *out, Flag_t type, int flags, const void *value);

/* 64-bit digit writers: text and terminator into the buffer, the number of digits as the result; zero is "0". */

/** Decimal; 21 bytes. */
int uint64ToAscii(char *buffer, uint64_t value);
/** Decimal with a '-' for a negative value, which the result does not count; 22 bytes. */
int sint64ToAscii(char *buffer, int64_t value);
/** Octal; 23 bytes. */
int uint64ToOctet(char *buffer, uint64_t value);
/** Hexadecimal, letters as intToHex() gives them; 17 bytes. */
int uint64ToHex(char *buffer, uint64_t value, Flag_t type);
/** One hexadecimal digit, 'a' to 'f' for CONV_x and 'A' to 'F' for any other type; '?' outside 0 to 15. */
char intToHex(int digit, Flag_t type);

#pragma GCC visibility pop
}

#endif
