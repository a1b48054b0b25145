/**
 * Floating-point numbers as the C library's printf writes them in the current numeric locale, in fixed-point notation
 * and at any length. Padding and sign are laid out here: the C library is never asked to measure a huge width or
 * precision. Doubles of usual size are rendered here too, with the same digits.
 */
#ifndef KELTO_FORMAT_FORMATTERS_FLOATING_POINT_H
#define KELTO_FORMAT_FORMATTERS_FLOATING_POINT_H

#include "format/formatters/layout.h"
#include "platform/scoped.h"

#include <cmath>
#include <limits>

namespace kelto
{

/** The most decimal places that a value of the type can have: all behind them are zeros. */
template <typename Value>
constexpr int mostDecimals = std::numeric_limits<Value>::digits - std::numeric_limits<Value>::min_exponent;
static_assert(mostDecimals<double> == 1074);
static_assert(mostDecimals<long double> == 16445 || mostDecimals<long double> == 16494); // of 80 bits, or of 128

/**
 * A number without its sign: in a fixed buffer, or, where that is too small and the text is needed, in a block of the
 * memory tag.
 */
class Rendering
{
public:
    /** Renders the number, or only counts its text where that is too long for the buffer; false when memory ran out. */
    template <typename Value> bool measure(int flags, int precision, Value value) noexcept;

    /** Renders a number that was only counted, from the same arguments; false when memory ran out. */
    template <typename Value> bool complete(int flags, int precision, Value value) noexcept;

    const NarrowText &digits() const noexcept { return m_digits; }

    /** The bytes of the decimal mark beyond the first: in a width the C library counts it as one. */
    uint64_t uncounted() const noexcept { return m_markBytes > 1 ? m_markBytes - 1 : 0; }

private:
    bool renderQuickly(int flags, int precision, double value) noexcept;
    static bool renderQuickly(int flags, int precision, long double value) noexcept;

    static constexpr size_t usualSize = 304;
    char m_usual[usualSize];
    TagBlock<char> m_long;
    NarrowText m_digits = {nullptr, 0};
    uint64_t m_markBytes = 0;
};

/** Where a floating-point number is padded. */
Padding floatingPointPadding(int flags, bool isFinite) noexcept;

/** "f". A text that does not fit takes no memory. @return as Out::write(), or KT_ERR_NO_MEMORY. */
template <typename Out, typename Value> int writeFloatingPoint(Out &out, const Layout &layout, Value value) noexcept
{
    constexpr int defaultPrecision = 6;
    const bool isFinite = std::isfinite(value);
    const int wanted = layout.precision >= 0 ? layout.precision : defaultPrecision;
    const int rendered = std::min(wanted, mostDecimals<Value>);
    Rendering rendering;
    if (!rendering.measure(layout.flags, rendered, value))
        return KT_ERR_NO_MEMORY;
    NumberText number = {signOf(std::signbit(value), layout.flags), 0, rendering.digits(),
                         isFinite ? static_cast<uint64_t>(wanted - rendered) : 0, rendering.uncounted()};
    if (number.digits.characters == nullptr && out.canHold(number.length() + number.paddingTo(layout.width)))
    {
        if (!rendering.complete(layout.flags, rendered, value))
            return KT_ERR_NO_MEMORY;
        number.digits = rendering.digits();
    }
    return writeNumber(out, number, layout.width, floatingPointPadding(layout.flags, isFinite));
}

} // namespace kelto

#endif
