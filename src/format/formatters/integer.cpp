#include "format/formatters/integer.h"

#include "format/field.h"

#include <algorithm>
#include <cstring>

namespace
{

/* Digits are written from the last to the first, up to `end`; the result is where they begin. */

char *writeDecimal(char *end, uint64_t value)
{
    do
    {
        *--end = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    return end;
}

/** Digits of `bits` bits each. */
template <typename ToDigit> char *writeBinary(char *end, uint64_t value, int bits, ToDigit toDigit)
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
    return writeBinary(end, value, 3, [](int digit) { return static_cast<char>('0' + digit); });
}

char *writeHexadecimal(char *end, uint64_t value, Flag_t type)
{
    return writeBinary(end, value, 4, [type](int digit) { return intToHex(digit, type); });
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

template <typename Integer> Integer read(const void *value)
{
    Integer integer;
    std::memcpy(&integer, value, sizeof integer);
    return integer;
}

int64_t readSigned(const void *value, int flags)
{
    if ((flags & FLAG_h) != 0)
        return read<int16_t>(value);
    return (flags & FLAG_BANG) != 0 ? read<int64_t>(value) : read<int32_t>(value);
}

uint64_t readUnsigned(const void *value, int flags)
{
    if ((flags & FLAG_h) != 0)
        return read<uint16_t>(value);
    return (flags & FLAG_BANG) != 0 ? read<uint64_t>(value) : read<uint32_t>(value);
}

/** A precision is a number of digits: 42 with four is 0042, and 12345 with two is 12000. */
uint64_t applyPrecision(int precision, char *digits, size_t count)
{
    if (precision < 0)
        return 0;
    const auto wanted = static_cast<size_t>(precision);
    if (wanted >= count)
        return wanted - count;
    std::fill(digits + wanted, digits + count, '0');
    return 0;
}

kelto::Padding paddingOf(int flags)
{
    if ((flags & FLAG_ZERO) != 0)
        return kelto::Padding::zeros;
    return (flags & FLAG_MINUS) != 0 ? kelto::Padding::right : kelto::Padding::left;
}

/** What all integer conversions share once prefix and digits are known. */
int writeInteger(kelto::NarrowText prefix, char *digits, size_t count, int width, int precision, int flags,
                 unsigned long *sizeInOut, UCS2 *out)
{
    const uint64_t zeros = applyPrecision(precision, digits, count);
    return kelto::writeNumber({prefix, zeros, {digits, count}, 0}, width, paddingOf(flags), sizeInOut, out);
}

Flag_t octHexType(char name)
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

IntegerText::IntegerText(Flag_t type, int flags, const void *value) noexcept
{
    char *const end = m_text + textSize - 1;
    *end = '\0';
    switch (type)
    {
    case CONV_d:
    {
        const int64_t number = readSigned(value, flags);
        const auto magnitude = static_cast<uint64_t>(number);
        m_begin = writeDecimal(end, number < 0 ? -magnitude : magnitude);
        if (number < 0)
            *--m_begin = '-';
        break;
    }
    case CONV_u:
        m_begin = writeDecimal(end, readUnsigned(value, flags));
        break;
    case CONV_o:
        m_begin = writeOctal(end, readUnsigned(value, flags));
        break;
    case CONV_x:
    case CONV_X:
        m_begin = writeHexadecimal(end, readUnsigned(value, flags), type);
        break;
    default:
        m_begin = end;
    }
}

} // namespace kelto

int numToUCS2(UCS2 *out, Flag_t type, int flags, const void *value)
{
    const kelto::IntegerText text(type, flags, value);
    std::copy_n(text.begin(), text.length() + 1, out);
    return static_cast<int>(text.length());
}

// Flattened for the same reason as the format calls: layout is many small steps.
[[gnu::flatten]] int formatInteger(const char * /*convName*/, int width, int precision, int flags,
                                   KTEncoder /*passThru1*/, void * /*passThru2*/, void **argSlot,
                                   unsigned long *sizeInOut, UCS2 *out)
{
    kelto::IntegerText text(CONV_d, flags, *argSlot);
    const size_t minus = text.isNegative() ? 1 : 0;
    return writeInteger(kelto::signOf(text.isNegative(), flags), text.begin() + minus, text.length() - minus, width,
                        precision, flags, sizeInOut, out);
}

[[gnu::flatten]] int formatUnsigned(const char * /*convName*/, int width, int precision, int flags,
                                    KTEncoder /*passThru1*/, void * /*passThru2*/, void **argSlot,
                                    unsigned long *sizeInOut, UCS2 *out)
{
    kelto::IntegerText text(CONV_u, flags, *argSlot);
    return writeInteger({nullptr, 0}, text.begin(), text.length(), width, precision, flags, sizeInOut, out);
}

[[gnu::flatten]] int formatOctHex(const char *convName, int width, int precision, int flags, KTEncoder /*passThru1*/,
                                  void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const Flag_t type = octHexType(convName[0]);
    kelto::IntegerText text(type, flags, *argSlot);
    const char prefix[] = {'0', convName[0]};
    size_t prefixLength = 0;
    if ((flags & FLAG_HASH) != 0)
        prefixLength = type == CONV_o ? 1 : 2;
    return writeInteger({prefix, prefixLength}, text.begin(), text.length(), width, precision, flags, sizeInOut, out);
}
