#include "format/grammar/conversion_spec.h"

#include "format/tables/form_table.h"
#include "strconv/ascii.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <type_traits>

namespace
{

template <typename Unit> constexpr bool isAscii(Unit unit)
{
    return static_cast<std::make_unsigned_t<Unit>>(unit) <= 127;
}

/** A character of the syntax and the flag that it sets. */
struct FlagCharacter
{
    char character;
    int flag;
};

/** The rows of flags, spread out by character: one access for a unit in place of a search. */
class FlagTable
{
public:
    template <size_t N> constexpr explicit FlagTable(const FlagCharacter (&rows)[N])
    {
        for (const FlagCharacter &row : rows)
            m_flags[static_cast<unsigned char>(row.character)] = static_cast<uint16_t>(row.flag);
    }

    /** The flag of a unit; 0 for one that sets none. */
    template <typename Unit> constexpr int operator[](Unit unit) const
    {
        return isAscii(unit) ? m_flags[static_cast<unsigned char>(unit)] : 0;
    }

private:
    uint16_t m_flags[128] = {};
};

constexpr FlagTable
    flagCharacters({{'-', FLAG_MINUS}, {'+', FLAG_PLUS}, {' ', FLAG_SPACE}, {'#', FLAG_HASH}, {'0', FLAG_ZERO}});
constexpr FlagTable modifiers({{'h', FLAG_h}, {'l', FLAG_l}, {'L', FLAG_L}, {'!', FLAG_BANG}});

constexpr int tooLarge = -1;

/** Takes a run of digits, perhaps empty: its value, or tooLarge where an int does not hold it. */
template <typename Unit> int takeNumber(const Unit *&cursor)
{
    constexpr uint64_t beyondInt = uint64_t{INT_MAX} + 1;
    uint64_t value = 0;
    for (unsigned digit = kelto::digitOf(*cursor); digit < 10; digit = kelto::digitOf(*++cursor))
        if (value < beyondInt)
            value = value * 10 + digit;
    return value < beyondInt ? static_cast<int>(value) : tooLarge;
}

/** Takes a width, or a precision behind its '.': '*', a number, or nothing. Nothing has the value `ifMissing`. */
template <typename Unit> bool takeWidthOrPrecision(const Unit *&cursor, int ifMissing, int &value)
{
    value = ifMissing;
    if (*cursor == '*')
    {
        ++cursor;
        value = KT_FROM_ARGUMENTS;
        return true;
    }
    if (!kelto::isDigit(*cursor))
        return true;
    value = takeNumber(cursor);
    return value != tooLarge;
}

template <typename Unit> int takeFlags(const Unit *&cursor)
{
    int flags = 0;
    while (const int flag = flagCharacters[*cursor])
    {
        flags |= flag;
        ++cursor;
    }
    return flags;
}

/** Takes flags, width and precision; false where a number is too large. */
template <typename Unit> bool takeOptions(const Unit *&cursor, int &flags, int &width, int &precision)
{
    flags = takeFlags(cursor);
    if (!takeWidthOrPrecision(cursor, KT_ABSENT, width))
        return false;
    if (*cursor != '.')
        return true;
    ++cursor;
    return takeWidthOrPrecision(cursor, 0, precision);
}

template <typename Unit> int takeModifier(const Unit *&cursor)
{
    const int flag = modifiers[*cursor];
    cursor += flag != 0 ? 1 : 0;
    return flag;
}

template <typename Unit> kelto::ConversionName<Unit> takeName(const Unit *&cursor)
{
    const Unit *const begin = cursor;
    while (*cursor != 0 && *cursor != '[' && isAscii(*cursor) && cursor != begin + kelto::maxNameLength)
        ++cursor;
    return {begin, static_cast<size_t>(cursor - begin)};
}

/** Takes "[number]"; 0, and the reason in `fault`, when it is malformed. */
template <typename Unit> int takePosition(const Unit *&cursor, KTRule &fault)
{
    if (*cursor != '[')
    {
        fault = *cursor == 0 ? KT_RULE_POSITION_MISSING : KT_RULE_NAME_TOO_LONG;
        if (!isAscii(*cursor))
            fault = KT_RULE_NAME_NOT_ASCII;
        return 0;
    }
    ++cursor;
    const int position = takeNumber(cursor);
    if (position > 0 && *cursor == ']')
    {
        ++cursor;
        return position;
    }
    fault = position == tooLarge ? KT_RULE_NUMBER_TOO_LARGE : KT_RULE_POSITION_MALFORMED;
    return 0;
}

template <typename Unit>
kelto::FoundConversion resolveName(const kelto::ConversionName<Unit> &name, int flags, formTable &table)
{
    // The markers of an encoded region share the record that ends the list: it takes no arguments, and since it is not
    // null, a marker does not look like the end of a parameter array.
    if (name.length == 1 && (name.begin[0] == 'N' || name.begin[0] == 'O'))
        return {kelto::terminatingRecord(), name.begin[0] == 'N' ? CONV_N : CONV_O, 0};
    return kelto::findConversion(name, flags, table);
}

/** Where a refused conversion specification ends: behind its ']', or else before the next white space or '%'. */
template <typename Unit> const Unit *guessEnd(const Unit *percent)
{
    const Unit *next = percent + 1;
    while (flagCharacters[*next] != 0)
        ++next;
    for (; *next != 0 && *next != '%' && *next != ' ' && *next != '\t' && *next != '\r' && *next != '\n'; ++next)
        if (*next == ']')
            return next + 1;
    return next;
}

template <typename Unit> kelto::ConversionSpec<Unit> malformed(KTRule fault)
{
    return {0, fault, {CONV_UNKNOWN, 0, 0, 0, 0, nullptr}, nullptr};
}

} // namespace

namespace kelto
{

template <typename Unit> ConversionSpec<Unit> parseSpecification(const Unit *percent, formTable &table) noexcept
{
    const Unit *cursor = percent + 1;
    int flags = 0;
    int width = KT_ABSENT;
    int precision = KT_ABSENT;
    // Flags, digits, '*' and '.' are all below 'A': where a letter follows the '%', none of them is there.
    if (*cursor < 'A' && !takeOptions(cursor, flags, width, precision))
        return malformed<Unit>(KT_RULE_NUMBER_TOO_LARGE);
    flags |= takeModifier(cursor);
    const ConversionName<Unit> name = takeName(cursor);
    KTRule fault = KT_RULE_NONE;
    const int position = takePosition(cursor, fault);
    if (position == 0)
        return malformed<Unit>(fault);
    const FoundConversion found = resolveName(name, flags, table);
    return {position, fault, {found.type, width, precision, flags | found.addedFlags, 0, found.formatter}, cursor};
}

template ConversionSpec<UCS2> parseSpecification(const UCS2 *, formTable &) noexcept;
template ConversionSpec<char> parseSpecification(const char *, formTable &) noexcept;

template <typename Unit> SpecFault<Unit> explainFault(const Unit *percent, const ConversionSpec<Unit> &spec) noexcept
{
    const KTRule rule = spec.position != 0 ? KT_RULE_UNKNOWN_CONVERSION : spec.fault;
    const Unit *const end = guessEnd(percent);
    // A name may run on through the text as far as the '[' of the next conversion.
    const bool hasBracket = std::find(percent, end, '[') != end;
    return {hasBracket || rule == KT_RULE_NUMBER_TOO_LARGE ? rule : KT_RULE_POSITION_MISSING, end};
}

template SpecFault<UCS2> explainFault(const UCS2 *, const ConversionSpec<UCS2> &) noexcept;
template SpecFault<char> explainFault(const char *, const ConversionSpec<char> &) noexcept;

// The string was accepted, so the first bracket is the position's, and its digits fit.
template <typename Unit> int takeAcceptedPosition(const Unit *&cursor) noexcept
{
    const Unit *next = cursor;
    while (*next != '[' && *next != 0)
        ++next;
    unsigned position = 0;
    if (*next != 0)
        for (++next; kelto::isDigit(*next); ++next)
            position = position * 10 + kelto::digitOf(*next);
    cursor = *next != 0 ? next + 1 : next;
    return static_cast<int>(position);
}

template int takeAcceptedPosition(const UCS2 *&) noexcept;
template int takeAcceptedPosition(const char *&) noexcept;

} // namespace kelto

int parseConvSpec(const UCS2 **cursor, formTable *table, Flag_t *type, int *width, int *precision, int *flags,
                  KTFormatter **formatter)
{
    const auto spec = kelto::parseSpecification(*cursor, kelto::tableOrBuiltIn(table));
    if (spec.position == 0)
        return 0;
    *type = spec.record.type;
    *width = spec.record.width;
    *precision = spec.record.precision;
    *flags = spec.record.flags;
    *formatter = spec.record.formatter;
    *cursor = spec.end;
    return spec.position;
}

int getConvSpecOrder(const UCS2 **cursor)
{
    return kelto::takeAcceptedPosition(*cursor);
}
