#include "format/field.h"
#include "lifecycle/state.h"
#include "platform/scoped.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>

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

template <typename Value> struct ValueFormat;
template <> struct ValueFormat<double>
{
    static constexpr const char *conversion = ".*f";
};
template <> struct ValueFormat<long double>
{
    static constexpr const char *conversion = ".*Lf";
};

/** The C library's format for a value without its width: the flags that concern its digits, and the precision. */
template <typename Value> void buildFormat(char *format, int flags)
{
    *format++ = '%';
    if ((flags & FLAG_HASH) != 0)
        *format++ = '#';
    if ((flags & FLAG_PLUS) != 0)
        *format++ = '+';
    if ((flags & FLAG_SPACE) != 0)
        *format++ = ' ';
    std::strcpy(format, ValueFormat<Value>::conversion);
}

/** A number as the C library writes it, in a fixed buffer, or where that is too small in one from the tag. */
class Rendering
{
public:
    /** False when memory ran out. */
    template <typename Value> bool render(const char *format, int precision, Value value)
    {
        m_length = print(m_usual, usualSize, format, precision, value);
        if (m_length < usualSize)
            return true;
        m_long = kelto::allocate<char>(glbResHandle, m_length + 1);
        if (m_long == nullptr)
            return false;
        print(m_long.get(), m_length + 1, format, precision, value);
        return true;
    }

    const char *text() const { return m_long != nullptr ? m_long.get() : m_usual; }
    size_t length() const { return m_length; }

private:
    template <typename Value> static size_t print(char *to, size_t size, const char *format, int precision, Value value)
    {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        return static_cast<size_t>(std::snprintf(to, size, format, precision, value));
#pragma GCC diagnostic pop
    }

    char m_usual[usualSize];
    kelto::TagBlock<char> m_long;
    size_t m_length = 0;
};

/** As in the C library, and unlike integers: '-' wins over '0', and what is no number is not padded with zeros. */
kelto::Padding paddingOf(int flags, bool isFinite)
{
    if ((flags & FLAG_MINUS) != 0)
        return kelto::Padding::right;
    return (flags & FLAG_ZERO) != 0 && isFinite ? kelto::Padding::zeros : kelto::Padding::left;
}

template <typename Value>
int writeValue(Value value, int width, int precision, int flags, unsigned long *sizeInOut, UCS2 *out)
{
    const bool isFinite = std::isfinite(value);
    const int wanted = precision >= 0 ? precision : defaultPrecision;
    const int rendered = std::min(wanted, mostDecimals<Value>);
    char format[sizeof "%#+ .*Lf"];
    buildFormat<Value>(format, flags);
    Rendering rendering;
    if (!rendering.render(format, rendered, value))
        return KT_ERR_NO_MEMORY;
    const char *const text = rendering.text();
    const size_t sign = *text == '-' || *text == '+' || *text == ' ' ? 1 : 0;
    const uint64_t moreDecimals = isFinite ? static_cast<uint64_t>(wanted - rendered) : 0;
    return kelto::writeNumber({{text, sign}, 0, {text + sign, rendering.length() - sign}, moreDecimals}, width,
                              paddingOf(flags, isFinite), sizeInOut, out);
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
