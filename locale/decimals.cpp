#include "decimals.h"

#include "conversions.h"
#include "language.h"

#include <cfenv>
#include <cmath>
#include <cstring>
#include <iterator>

namespace kelto::locale
{

namespace
{

constexpr int defaultDecimals = 2;

bool isDigit(UCS2 unit)
{
    return unit >= '0' && unit <= '9';
}

/** The digits of a double or long double as "f" writes them. */
class RenderedDigits
{
public:
    int make(const void *number, int decimals, int flags) noexcept
    {
        UCS2 usual[usualLength];
        HeapBlock<UCS2> longer;
        const UCS2 *text = usual;
        unsigned long length = usualLength;
        int result = render(number, decimals, flags, &length, usual);
        if (result == KT_ERR_BUFFER_TOO_SMALL)
        {
            longer = allocate<UCS2>(++length);
            m_long = allocate<char>(length);
            if (longer == nullptr || m_long == nullptr)
                return KT_ERR_NO_MEMORY;
            text = longer.get();
            result = render(number, decimals, flags, &length, longer.get());
        }
        if (result != 0)
            return result;
        // The decimal mark is whatever the numeric locale of the process has, and is left out.
        char *const begin = m_long != nullptr ? m_long.get() : m_usual;
        char *end = begin;
        for (unsigned long i = 0; i < length; ++i)
            if (isDigit(text[i]))
                *end++ = static_cast<char>(text[i]);
        m_decimal = decimalOf(*text == '-', decimals, {begin, static_cast<size_t>(end - begin)});
        return 0;
    }

    const Decimal &decimal() const noexcept { return m_decimal; }

private:
    static int render(const void *number, int decimals, int flags, unsigned long *length, UCS2 *text) noexcept
    {
        void *slot = const_cast<void *>(number);
        return formatDouble("f", KT_ABSENT, decimals, flags & FLAG_L, nullptr, nullptr, &slot, length, text);
    }

    static constexpr size_t usualLength = 64;
    char m_usual[usualLength];
    HeapBlock<char> m_long;
    Decimal m_decimal = {};
};

/**
 * Rounds a double of usual size to a few decimals as "f" does, exactly and ties to even, at a fraction of the cost;
 * false where it is for "f" itself to say.
 */
bool roundExactly(double number, int decimals, Decimal &decimal)
{
    constexpr uint64_t powers[] = {1, 10, 100, 1000}; // times a mantissa they are below 2^63
    constexpr int mantissaBits = 52;
    constexpr int bias = 1075;
    constexpr int longestShift = 63;
    if (decimals >= static_cast<int>(std::size(powers)) || std::fegetround() != FE_TONEAREST)
        return false;
    uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    const bool isNegative = bits >> 63 != 0;
    const auto exponent = static_cast<int>(bits >> mantissaBits & 0x7FF);
    if (bits << 1 == 0)
        return decimal = {isNegative, decimals, 0, {}}, true;
    // The number is a product, shifted to the right, whose bits on that side decide.
    const int shift = bias - exponent;
    if (shift < 1 || shift > longestShift)
        return false;
    constexpr uint64_t one = 1;
    const uint64_t product = ((bits & ((one << mantissaBits) - 1)) | one << mantissaBits) * powers[decimals];
    const uint64_t whole = product >> shift;
    const uint64_t rest = product & ((one << shift) - 1);
    const uint64_t half = one << (shift - 1);
    const bool isUp = rest > half || (rest == half && (whole & 1) != 0);
    decimal = {isNegative, decimals, whole + (isUp ? 1 : 0), {}};
    return true;
}

/**
 * The number as a double; of a long double, which a double may not hold, only whether it is finite, and if not, what.
 */
double readNumber(const void *number, bool isLong)
{
    if (isLong)
    {
        long double longer = 0;
        std::memcpy(&longer, number, sizeof longer);
        return std::isfinite(longer) ? 0 : static_cast<double>(longer);
    }
    double usual = 0;
    std::memcpy(&usual, number, sizeof usual);
    return usual;
}

} // namespace

// As in "f": '-' wins over '0'.
int writeDouble(KTLLanguage &language, NumberKey &key, const Spec &spec, const void *number, Output &output)
{
    const int decimals = spec.precision >= 0 ? spec.precision : defaultDecimals;
    if (decimals > maxDecimals)
        return KT_ERR_INVALID_PARAMETER;
    key.decimals = static_cast<int16_t>(decimals);
    const bool isZeroPadded = spec.has(FLAG_ZERO) && !spec.has(FLAG_MINUS);
    const bool isLong = spec.has(FLAG_L);
    const double value = readNumber(number, isLong);
    Decimal decimal;
    if (!isLong && roundExactly(value, decimals, decimal))
        return writeExact(language, key, decimal, spec, output, isZeroPadded);
    if (!std::isfinite(value))
        return writeNotFinite(language, key, value, spec, output);
    RenderedDigits digits;
    if (const int result = digits.make(number, decimals, spec.flags))
        return result;
    return writeExact(language, key, digits.decimal(), spec, output, isZeroPadded);
}

int writeDecimal(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output)
{
    NumberKey key(static_cast<NumberKind>(kind.variant));
    return writeDouble(language, key, spec, values[0].number, output);
}

} // namespace kelto::locale
