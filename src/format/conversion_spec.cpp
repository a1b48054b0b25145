#include "format/conversion_spec.h"

#include "format/form_table.h"

#include <climits>
#include <cstdint>

namespace
{

/** A character of the syntax and the flag that it sets. */
struct FlagCharacter
{
    UCS2 character;
    int flag;
};

/** Rows of them, spread out by character: one access for a unit instead of a search. */
class FlagTable
{
public:
    template <size_t N> constexpr explicit FlagTable(const FlagCharacter (&rows)[N])
    {
        for (const FlagCharacter &row : rows)
            m_flags[row.character] = static_cast<uint16_t>(row.flag);
    }

    /** The flag of a character; 0 for one that sets none. */
    constexpr int operator[](UCS2 character) const { return character < 128 ? m_flags[character] : 0; }

private:
    uint16_t m_flags[128] = {};
};

constexpr FlagTable
    flagCharacters({{u'-', FLAG_MINUS}, {u'+', FLAG_PLUS}, {u' ', FLAG_SPACE}, {u'#', FLAG_HASH}, {u'0', FLAG_ZERO}});
constexpr FlagTable modifiers({{u'h', FLAG_h}, {u'l', FLAG_l}, {u'L', FLAG_L}, {u'!', FLAG_BANG}});

bool isDigit(UCS2 unit)
{
    return unit >= u'0' && unit <= u'9';
}

constexpr int tooLarge = -1;

/** Takes a run of digits, perhaps empty: its value, or tooLarge where an int does not hold it. */
int takeNumber(const UCS2 *&cursor)
{
    int64_t value = 0;
    for (; isDigit(*cursor); ++cursor)
        if (value <= INT_MAX)
            value = value * 10 + (*cursor - u'0');
    return value <= INT_MAX ? static_cast<int>(value) : tooLarge;
}

/** Takes a width, or a precision behind its '.': '*', a number, or nothing, which counts as `ifMissing`. */
bool takeWidthOrPrecision(const UCS2 *&cursor, int ifMissing, int &value)
{
    value = ifMissing;
    if (*cursor == u'*')
    {
        ++cursor;
        value = KT_FROM_ARGUMENTS;
        return true;
    }
    if (!isDigit(*cursor))
        return true;
    value = takeNumber(cursor);
    return value != tooLarge;
}

int takeFlags(const UCS2 *&cursor)
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
bool takeOptions(const UCS2 *&cursor, int &flags, int &width, int &precision)
{
    flags = takeFlags(cursor);
    if (!takeWidthOrPrecision(cursor, KT_ABSENT, width))
        return false;
    if (*cursor != u'.')
        return true;
    ++cursor;
    return takeWidthOrPrecision(cursor, 0, precision);
}

int takeModifier(const UCS2 *&cursor)
{
    const int flag = modifiers[*cursor];
    cursor += flag != 0 ? 1 : 0;
    return flag;
}

kelto::ConversionName takeName(const UCS2 *&cursor)
{
    const UCS2 *const begin = cursor;
    while (*cursor != 0 && *cursor != u'[' && *cursor <= 127 && cursor != begin + kelto::maxNameLength)
        ++cursor;
    return {begin, static_cast<size_t>(cursor - begin)};
}

/** Takes "[number]"; 0 when it is malformed. */
int takePosition(const UCS2 *&cursor)
{
    if (*cursor != u'[')
        return 0;
    ++cursor;
    const int position = takeNumber(cursor);
    if (position == tooLarge || *cursor != u']')
        return 0;
    ++cursor;
    return position;
}

kelto::Conversion resolveName(const kelto::ConversionName &name, int flags, formTable &table)
{
    // The markers of an encoded region share the record that ends the list: it takes no arguments, and since it is not
    // null, a marker does not look like the end of a parameter array.
    if (name.length == 1 && (name.begin[0] == u'N' || name.begin[0] == u'O'))
        return {name.begin[0] == u'N' ? CONV_N : CONV_O, kelto::terminatingRecord(), 0};
    return kelto::findConversion(name, flags, table);
}

constexpr kelto::ConversionSpec malformed = {0, {CONV_UNKNOWN, 0, 0, 0, 0, nullptr}, nullptr};

} // namespace

namespace kelto
{

ConversionSpec parseSpecification(const UCS2 *percent, formTable &table) noexcept
{
    const UCS2 *cursor = percent + 1;
    int flags = 0;
    int width = KT_ABSENT;
    int precision = KT_ABSENT;
    // Flags, digits, '*' and '.' are all below 'A': where a letter follows the '%', there is nothing to take.
    if (*cursor < u'A' && !takeOptions(cursor, flags, width, precision))
        return malformed;
    flags |= takeModifier(cursor);
    const ConversionName name = takeName(cursor);
    const int position = takePosition(cursor);
    if (position == 0)
        return malformed;
    const Conversion conversion = resolveName(name, flags, table);
    return {
        position, {conversion.type, width, precision, flags | conversion.addedFlags, 0, conversion.formatter}, cursor};
}

} // namespace kelto

int parseConvSpec(const UCS2 **cursor, formTable *table, Flag_t *type, int *width, int *precision, int *flags,
                  KTFormatter **formatter)
{
    const kelto::ConversionSpec spec = kelto::parseSpecification(*cursor, kelto::tableOrBuiltIn(table));
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

// The string was accepted, so the first bracket is the position's, and its digits fit.
int getConvSpecOrder(const UCS2 **cursor)
{
    const UCS2 *next = *cursor;
    while (*next != u'[' && *next != 0)
        ++next;
    unsigned position = 0;
    if (*next != 0)
        for (++next; isDigit(*next); ++next)
            position = position * 10 + (*next - u'0');
    *cursor = *next != 0 ? next + 1 : next;
    return static_cast<int>(position);
}
