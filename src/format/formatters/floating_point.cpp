#include "format/field.h"
#include "lifecycle/state.h"
#include "platform/scoped.h"

#include <algorithm>
#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <langinfo.h>

namespace
{

/** Renderings of usual length live on the stack. */
constexpr size_t usualSize = 304;

constexpr int defaultPrecision = 6;

/** The most decimal places that a value of the type can have: all behind them are zeros. */
template <typename Value> constexpr int mostDecimals = 0;
template <> constexpr int mostDecimals<double> = DBL_MANT_DIG - DBL_MIN_EXP;
template <> constexpr int mostDecimals<long double> = LDBL_MANT_DIG - LDBL_MIN_EXP;
static_assert(mostDecimals<double> == 1074 && mostDecimals<long double> == 16445);

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
    const char *const point = nl_langinfo(RADIXCHAR);
    return std::fegetround() == FE_TONEAREST && point[0] == '.' && point[1] == '\0';
}

__extension__ using Wide = unsigned __int128;

constexpr int mostScaledPlaces = 19;
constexpr uint64_t powerOfTen(int exponent)
{
    return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

/**
 * A number times a power of ten, rounded to an integer, ties to even. It is computed exactly: a double is an integer of
 * 53 bits over a power of two, and the product fits 128 bits.
 * @param value   finite and not negative.
 * @param scaled  out: the integer.
 * @return false where the integer, or the number of places, is too large for this.
 */
bool scale(double value, int places, uint64_t &scaled)
{
    static constexpr uint64_t powers[] = {
        powerOfTen(0),  powerOfTen(1),  powerOfTen(2),  powerOfTen(3),  powerOfTen(4),  powerOfTen(5),  powerOfTen(6),
        powerOfTen(7),  powerOfTen(8),  powerOfTen(9),  powerOfTen(10), powerOfTen(11), powerOfTen(12), powerOfTen(13),
        powerOfTen(14), powerOfTen(15), powerOfTen(16), powerOfTen(17), powerOfTen(18), powerOfTen(19)};
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

/** A number as the C library writes it, in a fixed buffer, or where that is too small in one from the tag. */
class Rendering
{
public:
    /** False when memory ran out. */
    template <typename Value> bool render(int flags, int precision, Value value)
    {
        if (renderQuickly(flags, precision, value))
            return true;
        const char *const format = formatOf<Value>(flags);
        m_begin = m_usual;
        if (!print(m_usual, usualSize, format, precision, value))
            return false;
        if (m_length < usualSize)
            return true;
        m_long = kelto::allocate<char>(glbResHandle, m_length + 1);
        m_begin = m_long.get();
        return m_long != nullptr && print(m_long.get(), m_length + 1, format, precision, value);
    }

    const char *text() const { return m_begin; }
    size_t length() const { return m_length; }

private:
    // The same digits, since the C library rounds exactly too, at a fraction of the cost; for doubles of usual size.
    bool renderQuickly(int flags, int precision, double value)
    {
        uint64_t scaled = 0;
        if ((flags & FLAG_HASH) != 0 || !std::isfinite(value) || !isPlainEnvironment() ||
            !scale(std::fabs(value), precision, scaled))
            return false;
        char *const end = m_usual + usualSize;
        char *at = end;
        const auto prependDigit = [&] {
            *--at = static_cast<char>('0' + scaled % 10);
            scaled /= 10;
        };
        for (int place = 0; place < precision; ++place)
            prependDigit();
        if (precision > 0)
            *--at = '.';
        do
            prependDigit();
        while (scaled != 0);
        if (std::signbit(value))
            *--at = '-';
        m_begin = at;
        m_length = static_cast<size_t>(end - at);
        return true;
    }
    static bool renderQuickly(int /*flags*/, int /*precision*/, long double /*value*/) { return false; }

    // The C library takes memory of its own for a very long number, and fails without it.
    template <typename Value> bool print(char *to, size_t size, const char *format, int precision, Value value)
    {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        const int length = std::snprintf(to, size, format, precision, value);
#pragma GCC diagnostic pop
        m_length = length >= 0 ? static_cast<size_t>(length) : 0;
        return length >= 0;
    }

    char m_usual[usualSize];
    kelto::TagBlock<char> m_long;
    const char *m_begin = nullptr;
    size_t m_length = 0;
};

/** As in the C library, and unlike integers: '-' wins over '0', and infinity and what is no number are not
 * padded with zeros. */
kelto::Padding paddingOf(int flags, bool isFinite)
{
    if ((flags & FLAG_MINUS) != 0)
        return kelto::Padding::right;
    return (flags & FLAG_ZERO) != 0 && isFinite ? kelto::Padding::zeros : kelto::Padding::left;
}

/** The bytes of the locale's decimal point beyond the first: in a width the C library counts it as one. */
uint64_t uncountedBytes(bool hasPoint)
{
    return hasPoint ? std::strlen(nl_langinfo(RADIXCHAR)) - 1 : 0;
}

template <typename Value>
int writeValue(Value value, int width, int precision, int flags, unsigned long *sizeInOut, UCS2 *out)
{
    const bool isFinite = std::isfinite(value);
    const int wanted = precision >= 0 ? precision : defaultPrecision;
    const int rendered = std::min(wanted, mostDecimals<Value>);
    Rendering rendering;
    if (!rendering.render(flags, rendered, value))
        return KT_ERR_NO_MEMORY;
    const char *const text = rendering.text();
    const size_t minus = *text == '-' ? 1 : 0;
    const uint64_t moreDecimals = isFinite ? static_cast<uint64_t>(wanted - rendered) : 0;
    return kelto::writeNumber({kelto::signOf(minus != 0, flags),
                               0,
                               {text + minus, rendering.length() - minus},
                               moreDecimals,
                               uncountedBytes(isFinite && (wanted > 0 || (flags & FLAG_HASH) != 0))},
                              width, paddingOf(flags, isFinite), sizeInOut, out);
}

template <typename Value> Value read(const void *slot)
{
    Value value;
    std::memcpy(&value, slot, sizeof value);
    return value;
}

} // namespace

int formatDouble(const char * /*convName*/, int width, int precision, int flags, KTEncoder /*passThru1*/,
                 void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    if ((flags & FLAG_L) != 0)
        return writeValue(read<long double>(*argSlot), width, precision, flags, sizeInOut, out);
    return writeValue(read<double>(*argSlot), width, precision, flags, sizeInOut, out);
}
