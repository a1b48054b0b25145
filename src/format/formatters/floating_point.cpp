#include "format/formatters/floating_point.h"

#include "format/arguments/slot_value.h"
#include "format/formatters/integer.h"
#include "lifecycle/global_state.h"

#include <algorithm>
#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <langinfo.h>

// A double of usual size with at most 19 decimal places is multiplied by a power of ten in 128 bits, which is exact,
// and rounded to nearest, ties to even. The parts before and behind the point are then written as integers. All else is
// printed by the C library: a long double, a larger value, more places, '#', another rounding mode or decimal mark.

namespace
{

/** The C library's format for a value without its width and sign flags. */
template <typename Value> const char *formatOf(int flags);
template <> const char *formatOf<double>(int flags)
{
    return (flags & FLAG_HASH) != 0 ? "%#.*f" : "%.*f";
}
template <> const char *formatOf<long double>(int flags)
{
    return (flags & FLAG_HASH) != 0 ? "%#.*Lf" : "%.*Lf";
}

/** Whether the C library rounds to nearest and writes a point, as in nearly every program. */
bool isPlainEnvironment()
{
    return std::fegetround() == FE_TONEAREST && std::strcmp(nl_langinfo(RADIXCHAR), ".") == 0;
}

__extension__ using Wide = unsigned __int128;

constexpr int mostScaledPlaces = 19;
constexpr uint64_t powerOfTen(int exponent)
{
    return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

constexpr uint64_t powers[] = {powerOfTen(0),  powerOfTen(1),  powerOfTen(2),  powerOfTen(3),  powerOfTen(4),
                               powerOfTen(5),  powerOfTen(6),  powerOfTen(7),  powerOfTen(8),  powerOfTen(9),
                               powerOfTen(10), powerOfTen(11), powerOfTen(12), powerOfTen(13), powerOfTen(14),
                               powerOfTen(15), powerOfTen(16), powerOfTen(17), powerOfTen(18), powerOfTen(19)};

/**
 * A number times a power of ten, rounded to an integer, ties to even. It is computed exactly: a double is an integer of
 * 53 bits over a power of two, and the product fits 128 bits.
 * @param value   finite and not negative.
 * @param scaled  out: the integer.
 * @return false where the integer, or the number of places, is too large for this.
 */
bool scale(double value, int places, uint64_t &scaled)
{
    constexpr int fractionBits = DBL_MANT_DIG - 1;
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const auto exponent = static_cast<int>(bits >> fractionBits);
    uint64_t mantissa = bits & ((uint64_t{1} << fractionBits) - 1);
    if (exponent != 0)
        mantissa |= uint64_t{1} << fractionBits;
    // value = mantissa / 2^shift
    const int shift = fractionBits + 1 - DBL_MIN_EXP - (exponent != 0 ? exponent - 1 : 0);
    if (places > mostScaledPlaces || shift < 1)
        return false;

    constexpr int productBits = DBL_MANT_DIG + 64;
    scaled = 0;
    if (shift > productBits)
        return true; // the product is less than 2^117, and so less than half of the last place
    const Wide product = Wide{mantissa} * powers[places];
    const Wide whole = product >> shift;
    const Wide rest = product - (whole << shift);
    const Wide half = Wide{1} << (shift - 1);
    scaled = static_cast<uint64_t>(whole);
    scaled += rest > half || (rest == half && (scaled & 1) != 0) ? 1 : 0;
    return whole < UINT64_MAX; // with room for rounding up
}

/** Prints as the C library does; the length of the whole, or a negative number: it takes memory of its own. */
template <typename Value> int print(char *to, size_t size, int flags, int precision, Value value)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    return std::snprintf(to, size, formatOf<Value>(flags), precision, value);
#pragma GCC diagnostic pop
}

template <typename Value> size_t minusLength(Value value)
{
    return std::signbit(value) ? 1 : 0;
}

} // namespace

namespace kelto
{

// For doubles of usual size: the digits of the C library, which rounds exactly too, at a fraction of its cost.
bool Rendering::renderQuickly(int flags, int precision, double value) noexcept
{
    uint64_t scaled = 0;
    if ((flags & FLAG_HASH) != 0 || !std::isfinite(value) || !isPlainEnvironment() ||
        !scale(std::fabs(value), precision, scaled))
        return false;
    const uint64_t one = powers[precision];
    char *const end = m_usual + usualSize;
    char *at = end;
    if (precision > 0)
    {
        at = writeDecimal(end, scaled % one);
        while (at != end - precision)
            *--at = '0';
        *--at = '.';
    }
    at = writeDecimal(at, scaled / one);
    m_digits = {at, static_cast<uint64_t>(end - at)};
    return true;
}

bool Rendering::renderQuickly(int /*flags*/, int /*precision*/, long double /*value*/) noexcept
{
    return false;
}

template <typename Value> bool Rendering::measure(int flags, int precision, Value value) noexcept
{
    if (renderQuickly(flags, precision, value))
        return true;
    // The number keeps its sign here: a directed rounding depends on it.
    const int length = print(m_usual, usualSize, flags, precision, value);
    if (length < 0)
        return false;
    const auto size = static_cast<size_t>(length);
    m_digits = {size < usualSize ? m_usual + minusLength(value) : nullptr, size - minusLength(value)};
    if (!std::isfinite(value) || (precision == 0 && (flags & FLAG_HASH) == 0))
        return true;
    // The mark is taken from the text, whatever the locale says of it.
    char marked[32];
    const int markedLength = print(marked, sizeof marked, 0, 1, 0.0);
    for (const char *mark = marked + 1; mark < marked + markedLength - 1; ++mark)
    {
        ++m_markBytes;
        m_digits.beyondAscii += static_cast<unsigned char>(*mark) > 127 ? 1 : 0;
    }
    return true;
}

template <typename Value> bool Rendering::complete(int flags, int precision, Value value) noexcept
{
    const size_t size = minusLength(value) + m_digits.count + 1;
    m_long = allocate<char>(glbResHandle, size);
    if (m_long == nullptr || print(m_long.get(), size, flags, precision, value) < 0)
        return false;
    m_digits.characters = m_long.get() + minusLength(value);
    return true;
}

template bool Rendering::measure(int, int, double) noexcept;
template bool Rendering::measure(int, int, long double) noexcept;
template bool Rendering::complete(int, int, double) noexcept;
template bool Rendering::complete(int, int, long double) noexcept;

// As in the C library, and unlike integers: '-' wins over '0', and infinity and what is no number are not padded with
// zeros.
Padding floatingPointPadding(int flags, bool isFinite) noexcept
{
    if ((flags & FLAG_MINUS) != 0)
        return Padding::right;
    return (flags & FLAG_ZERO) != 0 && isFinite ? Padding::zeros : Padding::left;
}

} // namespace kelto

int formatDouble(const char * /*convName*/, int width, int precision, int flags, KTEncoder /*passThru1*/,
                 void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    kelto::Field field(sizeInOut, out);
    const kelto::Layout layout = {width, precision, flags};
    if ((flags & FLAG_L) != 0)
        return kelto::writeFloatingPoint(field, layout, kelto::readSlot<long double>(*argSlot));
    return kelto::writeFloatingPoint(field, layout, kelto::readSlot<double>(*argSlot));
}
