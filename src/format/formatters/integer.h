/**
 * Integers as text: the digit writers, numToUCS2() on top of them, and the formatters of "d", "u", "o", "x" and "X". The
 * rules differ from printf's on purpose: a precision also cuts digits, '0' wins over '-' and over a precision, and '#'
 * puts its prefix before a zero too.
 */
#ifndef KELTO_FORMAT_FORMATTERS_INTEGER_H
#define KELTO_FORMAT_FORMATTERS_INTEGER_H

#include "kelto.h"

#include <cstddef>
#include <cstdint>

namespace kelto
{

/** An integer as 8-bit text: a '-' where it is negative, and its digits. */
class IntegerText
{
public:
    /** Arguments as in numToUCS2(). */
    IntegerText(Flag_t type, int flags, const void *value) noexcept;

    bool isNegative() const noexcept { return *m_begin == '-'; }
    char *begin() noexcept { return m_begin; }
    const char *begin() const noexcept { return m_begin; }
    size_t length() const noexcept { return static_cast<size_t>(m_text + textSize - 1 - m_begin); }

    /** Bytes for any integer, terminator included: 22 octal digits, or a sign and 20 decimal ones. */
    static constexpr size_t textSize = 23;

private:
    char m_text[textSize];
    char *m_begin;
};

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
