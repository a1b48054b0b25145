#include "conversions.h"

#include "language.h"

#include <cstring>
#include <new>

namespace kelto::locale
{

namespace
{

constexpr int signedInteger[] = {KT_ARG_SIGNED, KT_ARG_END};
constexpr int unsignedInteger[] = {KT_ARG_UNSIGNED, KT_ARG_END};
constexpr int number[] = {KT_ARG_DOUBLE, KT_ARG_END};
constexpr int text[] = {KT_ARG_UTF8, KT_ARG_END};
constexpr int twoTexts[] = {KT_ARG_UTF8, KT_ARG_UTF8, KT_ARG_END};
constexpr int numberAndText[] = {KT_ARG_DOUBLE, KT_ARG_UTF8, KT_ARG_END};

template <typename T> T read(const void *slot)
{
    T value;
    std::memcpy(&value, slot, sizeof value);
    return value;
}

/** The bits that an integer argument has. */
constexpr unsigned bitsOfInteger(int flags)
{
    if ((flags & FLAG_h) != 0)
        return 16;
    return (flags & FLAG_BANG) != 0 ? 64 : 32;
}

/** An integer slot, extended to 64 bits. */
template <typename Small, typename Usual, typename Large> uint64_t readInteger(const void *slot, int flags)
{
    switch (bitsOfInteger(flags))
    {
    case 16:
        return static_cast<uint64_t>(read<Small>(slot));
    case 32:
        return static_cast<uint64_t>(read<Usual>(slot));
    default:
        return static_cast<uint64_t>(read<Large>(slot));
    }
}

void readValue(void *slot, int type, int flags, Value &value)
{
    if (type == KT_ARG_SIGNED)
        value.integer = readInteger<int16_t, int32_t, int64_t>(slot, flags);
    else if (type == KT_ARG_UNSIGNED)
        value.integer = readInteger<uint16_t, uint32_t, uint64_t>(slot, flags);
    else if (type == KT_ARG_DOUBLE)
        value.number = slot;
    else
        new (&value.text) std::string_view(static_cast<const char *>(slot));
}

std::string_view textOf(const KTArgument &argument)
{
    const auto *const begin = static_cast<const char *>(argument.value.p);
    if (begin == nullptr)
        return "";
    if (argument.length == UINT32_MAX)
        return begin;
    return {begin, strnlen(begin, argument.length)};
}

uint64_t cutUnsigned(uint64_t value, int flags)
{
    return value & UINT64_MAX >> (64 - bitsOfInteger(flags));
}

[[gnu::always_inline]] inline void readValue(const KTArgument &argument, int type, int flags, Value &value)
{
    if (type == KT_ARG_SIGNED)
        value.integer = argument.value.u;
    else if (type == KT_ARG_UNSIGNED)
        value.integer = cutUnsigned(argument.value.u, flags);
    else if (type == KT_ARG_DOUBLE)
        value.number = (flags & FLAG_L) != 0 ? argument.value.p : &argument.value.d;
    else
        new (&value.text) std::string_view(textOf(argument));
}

/** Reads the values, which are slots or typed arguments, and writes the conversion. */
template <typename Given> int format(const char *convName, const Spec &spec, Given &given, Output &&output)
{
    const Conversion &conversion = Conversion::of(convName);
    const Kind &kind = *conversion.kind;
    Value values[2];
    readValue(given[0], kind.argTypes[0], spec.flags, values[0]);
    if (kind.argCount > 1)
        readValue(given[1], kind.argTypes[1], spec.flags, values[1]);
    const int result = kind.write(*conversion.language, kind, spec, values, output);
    return result == 0 || result == KT_ERR_BUFFER_TOO_SMALL ? result : output.fail(result);
}

} // namespace

const Kind kinds[kindCount] = {
    {"ago", 1, signedInteger, writeAgo, 0},
    {"and", 1, text, writeList, ULISTFMT_TYPE_AND},
    {"date", 1, text, writeDate, datePart},
    {"datetime", 1, text, writeDate, dateAndTime},
    {"decimal", 1, number, writeDecimal, plainNumber},
    {"money", 2, twoTexts, writeMoney, 0},
    {"number", 1, signedInteger, writeInteger, signedNumber},
    {"or", 1, text, writeList, ULISTFMT_TYPE_OR},
    {"percent", 1, number, writeDecimal, percentNumber},
    {"time", 1, text, writeDate, timePart},
    {"unit", 2, numberAndText, writeUnit, 0},
    {"unumber", 1, unsignedInteger, writeInteger, unsignedNumber},
};

int formatUnits(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void * /*passThru2*/,
                void **argSlot, unsigned long *sizeInOut, UCS2 *out) noexcept
{
    return format(convName, {width, precision, flags, passThru1}, argSlot, Output(sizeInOut, out));
}

int formatUTF8(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void * /*passThru2*/,
               const KTArgument *arguments, size_t *sizeInOut, char *out) noexcept
{
    return format(convName, {width, precision, flags, passThru1}, arguments, Output(sizeInOut, out));
}

} // namespace kelto::locale
