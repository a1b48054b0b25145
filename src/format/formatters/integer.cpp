#include "format/formatters/integer.h"

#include "format/field.h"

#include <algorithm>
#include <cstring>

namespace
{

/** Builds digits from the last to the first; begin() is the first of them afterwards. */
class DigitBuilder
{
public:
    void prepend(char digit) { *--m_begin = digit; }

    /** Moves the digits to a buffer, terminated; their number. */
    int moveTo(char *buffer) const
    {
        const auto count = static_cast<size_t>(m_digits + kelto::integerTextSize - m_begin);
        std::memcpy(buffer, m_begin, count);
        buffer[count] = '\0';
        return static_cast<int>(count);
    }

private:
    char m_digits[kelto::integerTextSize];
    char *m_begin = m_digits + kelto::integerTextSize;
};

/** Digits of `bits` bits each. */
template <typename ToDigit> int writeBinaryDigits(char *buffer, uint64_t value, int bits, ToDigit toDigit)
{
    DigitBuilder digits;
    const uint64_t mask = (uint64_t{1} << bits) - 1;
    do
    {
        digits.prepend(toDigit(static_cast<int>(value & mask)));
        value >>= bits;
    } while (value != 0);
    return digits.moveTo(buffer);
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

/** A precision is a number of significant digits: zeros are put before too few, and in the place of those too many. */
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
int writeInteger(const char *prefix, size_t prefixLength, char *digits, size_t count, int width, int precision,
                 int flags, unsigned long *sizeInOut, UCS2 *out)
{
    const uint64_t zeros = applyPrecision(precision, digits, count);
    return kelto::writeNumber({prefix, prefixLength, zeros, digits, count, 0}, width, paddingOf(flags), sizeInOut, out);
}

const char *signOf(bool isNegative, int flags)
{
    if (isNegative)
        return "-";
    if ((flags & FLAG_PLUS) != 0)
        return "+";
    return (flags & FLAG_SPACE) != 0 ? " " : "";
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
    DigitBuilder digits;
    do
    {
        digits.prepend(static_cast<char>('0' + value % 10));
        value /= 10;
    } while (value != 0);
    return digits.moveTo(buffer);
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
    return writeBinaryDigits(buffer, value, 3, [](int digit) { return static_cast<char>('0' + digit); });
}

int uint64ToHex(char *buffer, uint64_t value, Flag_t type)
{
    return writeBinaryDigits(buffer, value, 4, [type](int digit) { return intToHex(digit, type); });
}

char intToHex(int digit, Flag_t type)
{
    if (digit < 0 || digit > 15)
        return '?';
    return (type == CONV_x ? "0123456789abcdef" : "0123456789ABCDEF")[digit];
}

namespace kelto
{

int integerToText(char *text, Flag_t type, int flags, const void *value) noexcept
{
    switch (type)
    {
    case CONV_d:
    {
        const int64_t number = readSigned(value, flags);
        return sint64ToAscii(text, number) + (number < 0 ? 1 : 0);
    }
    case CONV_u:
        return uint64ToAscii(text, readUnsigned(value, flags));
    case CONV_o:
        return uint64ToOctet(text, readUnsigned(value, flags));
    case CONV_x:
    case CONV_X:
        return uint64ToHex(text, readUnsigned(value, flags), type);
    default:
        *text = '\0';
        return 0;
    }
}

} // namespace kelto

int numToUCS2(UCS2 *out, Flag_t type, int flags, const void *value)
{
    char text[kelto::integerTextSize];
    const int count = kelto::integerToText(text, type, flags, value);
    std::copy_n(text, count + 1, out);
    return count;
}

int formatInteger(const char * /*convName*/, int width, int precision, int flags, KTEncoder /*passThru1*/,
                  void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    char text[kelto::integerTextSize];
    const auto length = static_cast<size_t>(kelto::integerToText(text, CONV_d, flags, *argSlot));
    const size_t minus = text[0] == '-' ? 1 : 0;
    const char *const sign = signOf(minus != 0, flags);
    return writeInteger(sign, *sign != '\0' ? 1 : 0, text + minus, length - minus, width, precision, flags, sizeInOut,
                        out);
}

int formatUnsigned(const char * /*convName*/, int width, int precision, int flags, KTEncoder /*passThru1*/,
                   void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    char digits[kelto::integerTextSize];
    const auto count = static_cast<size_t>(kelto::integerToText(digits, CONV_u, flags, *argSlot));
    return writeInteger("", 0, digits, count, width, precision, flags, sizeInOut, out);
}

int formatOctHex(const char *convName, int width, int precision, int flags, KTEncoder /*passThru1*/,
                 void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const Flag_t type = octHexType(convName[0]);
    char digits[kelto::integerTextSize];
    const auto count = static_cast<size_t>(kelto::integerToText(digits, type, flags, *argSlot));
    const char prefix[] = {'0', convName[0]};
    size_t prefixLength = 0;
    if ((flags & FLAG_HASH) != 0)
        prefixLength = type == CONV_o ? 1 : 2;
    return writeInteger(prefix, prefixLength, digits, count, width, precision, flags, sizeInOut, out);
}
