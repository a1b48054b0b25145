#include "plural/shown_number.h"

#include "strconv/ascii.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

// From 2^63 on no number has digits behind the mark; below it the integer fits into 64 bits.
constexpr double wholeFrom = 9223372036854775808.0;

// Added to the last eighteen digits of a longer row, to tell it from a short one.
constexpr uint64_t eighteenDigits = 1'000'000'000'000'000'000;

/** A row of decimal digits as a number: the last eighteen, and whether others before them are not zero. */
class DigitRow
{
public:
    void append(uint64_t digit)
    {
        constexpr uint64_t seventeenDigits = eighteenDigits / 10;
        m_isLong = m_isLong || m_last >= seventeenDigits;
        m_last = m_last % seventeenDigits * 10 + digit;
    }

    /** Appends zeros. More than eighteen have the effect of eighteen. */
    void appendZeros(int count)
    {
        for (int i = std::min(count, 18); i > 0; --i)
            append(0);
    }

    uint64_t value() const { return m_last + (m_isLong ? eighteenDigits : 0); }

private:
    uint64_t m_last = 0;
    bool m_isLong = false;
};

int print(char *out, size_t size, int digits, double value)
{
    return std::snprintf(out, size, "%.*f", digits, value);
}

int print(char *out, size_t size, int digits, long double value)
{
    return std::snprintf(out, size, "%.*Lf", digits, value);
}

} // namespace

namespace kelto
{

bool ShownNumber::read(const KTArgument &argument, int digits) noexcept
{
    if (argument.type == KT_ARGUMENT_DOUBLE)
        return readReal(argument.value.d, digits);
    if (argument.type == KT_ARGUMENT_LONG_DOUBLE && argument.value.p != nullptr)
        return readReal(*static_cast<const long double *>(argument.value.p), digits);
    return false;
}

template <typename Real> bool ShownNumber::readReal(Real value, int digits) noexcept
{
    isNegative = std::signbit(value);
    isFinite = std::isfinite(value);
    if (!isFinite)
        return true;
    const Real magnitude = std::fabs(value);
    DigitRow behind;
    DigitRow significant; // the digits behind the mark, up to the last that is not 0
    uint64_t integer = 0;
    if (magnitude >= Real{wholeFrom})
        integer = static_cast<uint64_t>(std::fmod(magnitude, Real{eighteenDigits})) + eighteenDigits;
    else
    {
        constexpr int mostDigits = 1100; // behind the mark: a double has no more, and of a long double these count
        char text[mostDigits + 40];
        const int printed = std::min(digits, mostDigits);
        const char *const end = text + print(text, sizeof text, printed, magnitude);
        const char *next = text;
        for (; next != end && kelto::isDigit(*next); ++next)
            integer = integer * 10 + kelto::digitOf(*next);
        int zeros = 0;
        for (next = end - printed; next != end; ++next)
        {
            const uint64_t digit = kelto::digitOf(*next);
            behind.append(digit);
            ++zeros;
            if (digit == 0)
                continue;
            significant.appendZeros(zeros - 1);
            significant.append(digit);
            zeros = 0;
        }
        behind.appendZeros(digits - printed);
    }
    i = integer;
    f = behind.value();
    t = significant.value();
    return true;
}

} // namespace kelto
