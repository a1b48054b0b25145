#include "format/formatters/integer.h"

#include "format/arguments/slot_value.h"

#include <algorithm>
#include <cstring>

namespace
{

/* Digits are written from the last to the first, up to `end`; the result is where they begin. */

/** The digits of 0 to 99, two each: half as many divisions. */
struct DigitPairs
{
    char digits[200];

    constexpr DigitPairs() : digits()
    {
        for (size_t i = 0; i < 100; ++i)
        {
            digits[2 * i] = static_cast<char>('0' + i / 10);
            digits[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
    }
};

constexpr DigitPairs pairs;

// One by one: a copy into a buffer of known size would be a call that checks it.
char *writePair(char *end, uint64_t value)
{
    const char *const pair = pairs.digits + 2 * value;
    *--end = pair[1];
    *--end = pair[0];
    return end;
}

} // namespace

namespace kelto
{

char *writeDecimal(char *end, uint64_t value) noexcept
{
    for (; value >= 100; value /= 100)
        end = writePair(end, value % 100);
    if (value >= 10)
        return writePair(end, value);
    *--end = static_cast<char>('0' + value);
    return end;
}

} // namespace kelto

namespace
{

using kelto::writeDecimal;

/** Digits of `bits` bits each. */
template <typename ToDigit> char *writeBits(char *end, uint64_t value, int bits, ToDigit toDigit)
{
    const uint64_t mask = (uint64_t{1} << bits) - 1;
    do
    {
        *--end = toDigit(static_cast<int>(value & mask));
        value >>= bits;
    } while (value != 0);
    return end;
}

char *writeOctal(char *end, uint64_t value)
{
    return writeBits(end, value, 3, [](int digit) { return static_cast<char>('0' + digit); });
}

char *writeHexadecimal(char *end, uint64_t value, Flag_t type)
{
    return writeBits(end, value, 4, [type](int digit) { return intToHex(digit, type); });
}

/** Runs one of the writers above into a buffer of the caller's, terminated; the number of digits. */
template <typename Write> int writeToBuffer(char *buffer, Write write)
{
    char digits[kelto::IntegerText::textSize];
    char *const end = digits + sizeof digits;
    const char *const begin = write(end);
    *std::copy(begin, static_cast<const char *>(end), buffer) = '\0';
    return static_cast<int>(end - begin);
}

} // namespace

int uint64ToAscii(char *buffer, uint64_t value)
{
    return writeToBuffer(buffer, [value](char *end) { return writeDecimal(end, value); });
}

int sint64ToAscii(char *buffer, int64_t value)
{
    auto magnitude = static_cast<uint64_t>(value);
    if (value < 0)
    {
        *buffer++ = '-';
        magnitude = -magnitude;
    }
    return uint64ToAscii(buffer, magnitude);
}

int uint64ToOctet(char *buffer, uint64_t value)
{
    return writeToBuffer(buffer, [value](char *end) { return writeOctal(end, value); });
}

int uint64ToHex(char *buffer, uint64_t value, Flag_t type)
{
    return writeToBuffer(buffer, [value, type](char *end) { return writeHexadecimal(end, value, type); });
}

char intToHex(int digit, Flag_t type)
{
    if (digit < 0 || digit > 15)
        return '?';
    return (type == CONV_x ? "0123456789abcdef" : "0123456789ABCDEF")[digit];
}

namespace kelto
{

// cppcheck-suppress uninitMemberVar; what is before the digits is never read
IntegerText::IntegerText(int64_t value) noexcept
{
    *end() = '\0';
    const auto magnitude = static_cast<uint64_t>(value);
    char *begin = writeDecimal(end(), value < 0 ? -magnitude : magnitude);
    if (value < 0)
        *--begin = '-';
    beginAt(begin);
}

// cppcheck-suppress uninitMemberVar; what is before the digits is never read
IntegerText::IntegerText(Flag_t type, uint64_t value) noexcept
{
    *end() = '\0';
    switch (type)
    {
    case CONV_u:
        beginAt(writeDecimal(end(), value));
        break;
    case CONV_o:
        beginAt(writeOctal(end(), value));
        break;
    case CONV_x:
    case CONV_X:
        beginAt(writeHexadecimal(end(), value, type));
        break;
    default:
        beginAt(end());
    }
}

// Unlike in the C library, and for floating-point numbers, '0' wins over '-'.
Padding integerPadding(int flags) noexcept
{
    if ((flags & FLAG_ZERO) != 0)
        return Padding::zeros;
    return (flags & FLAG_MINUS) != 0 ? Padding::right : Padding::left;
}

Flag_t octHexType(char name) noexcept
{
    switch (name)
    {
    case 'o':
        return CONV_o;
    case 'x':
        return CONV_x;
    case 'X':
        return CONV_X;
    default:
        return CONV_UNKNOWN;
    }
}

} // namespace kelto

int numToUCS2(UCS2 *out, Flag_t type, int flags, const void *value)
{
    const kelto::IntegerText text = type == CONV_d ? kelto::IntegerText(kelto::readSigned(value, flags))
                                                   : kelto::IntegerText(type, kelto::readUnsigned(value, flags));
    std::copy_n(text.begin(), text.length() + 1, out);
    return static_cast<int>(text.length());
}

// Flattened for the same reason as the format calls: layout is many small steps.
[[gnu::flatten]] int formatInteger(const char * /*convName*/, int width, int precision, int flags,
                                   KTEncoder /*passThru1*/, void * /*passThru2*/, void **argSlot,
                                   unsigned long *sizeInOut, UCS2 *out)
{
    kelto::Field field(sizeInOut, out);
    return kelto::writeSigned(field, {width, precision, flags}, kelto::readSigned(*argSlot, flags));
}

[[gnu::flatten]] int formatUnsigned(const char * /*convName*/, int width, int precision, int flags,
                                    KTEncoder /*passThru1*/, void * /*passThru2*/, void **argSlot,
                                    unsigned long *sizeInOut, UCS2 *out)
{
    kelto::Field field(sizeInOut, out);
    return kelto::writeUnsigned(field, {width, precision, flags}, kelto::readUnsigned(*argSlot, flags));
}

[[gnu::flatten]] int formatOctHex(const char *convName, int width, int precision, int flags, KTEncoder /*passThru1*/,
                                  void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    kelto::Field field(sizeInOut, out);
    return kelto::writeOctHex(field, {width, precision, flags}, *convName, kelto::readUnsigned(*argSlot, flags));
}
