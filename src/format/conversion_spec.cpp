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

constexpr FlagCharacter flagCharacters[] = {
    {u'-', FLAG_MINUS}, {u'+', FLAG_PLUS}, {u' ', FLAG_SPACE}, {u'#', FLAG_HASH}, {u'0', FLAG_ZERO}};
constexpr FlagCharacter modifiers[] = {{u'h', FLAG_h}, {u'l', FLAG_l}, {u'L', FLAG_L}, {u'!', FLAG_BANG}};

// The markers of an encoded region share the list's last record: it has no function and takes no arguments.
KTFormatter *const markerRecord = &builtInFormList[17];

template <size_t N> int flagOf(UCS2 unit, const FlagCharacter (&characters)[N])
{
    for (const FlagCharacter &row : characters)
        if (row.character == unit)
            return row.flag;
    return 0;
}

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

/** Takes a width, or a precision behind its '.': '*', a number, or nothing, which counts as `otherwise`. */
bool takeField(const UCS2 *&cursor, int otherwise, int &field)
{
    field = otherwise;
    if (*cursor == u'*')
    {
        ++cursor;
        field = kelto::fromArguments;
        return true;
    }
    if (!isDigit(*cursor))
        return true;
    field = takeNumber(cursor);
    return field != tooLarge;
}

int takeFlags(const UCS2 *&cursor)
{
    int flags = 0;
    while (const int flag = flagOf(*cursor, flagCharacters))
    {
        flags |= flag;
        ++cursor;
    }
    return flags;
}

int takeModifier(const UCS2 *&cursor)
{
    const int flag = flagOf(*cursor, modifiers);
    cursor += flag != 0 ? 1 : 0;
    return flag;
}

void takeName(const UCS2 *&cursor, char (&name)[kelto::maxNameLength + 1])
{
    size_t length = 0;
    for (; length < kelto::maxNameLength && *cursor != 0 && *cursor != u'[' && *cursor <= 127; ++cursor)
        name[length++] = static_cast<char>(*cursor);
    name[length] = '\0';
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

kelto::Conversion resolveName(const char *name, int flags, formTable *table)
{
    const bool isOneCharacter = name[0] != '\0' && name[1] == '\0';
    if (isOneCharacter && (name[0] == 'N' || name[0] == 'O'))
        return {name[0] == 'N' ? CONV_N : CONV_O, markerRecord, 0};
    return kelto::findConversion(name, flags, table);
}

constexpr kelto::ConversionSpec malformed = {0, CONV_UNKNOWN, 0, 0, 0, nullptr, nullptr};

} // namespace

namespace kelto
{

ConversionSpec parseSpecification(const UCS2 *percent, formTable *table) noexcept
{
    const UCS2 *cursor = percent + 1;
    ConversionSpec spec = malformed;
    spec.flags = takeFlags(cursor);
    if (!takeField(cursor, absent, spec.width))
        return malformed;
    spec.precision = absent;
    if (*cursor == u'.')
    {
        ++cursor;
        if (!takeField(cursor, 0, spec.precision))
            return malformed;
    }
    spec.flags |= takeModifier(cursor);
    char name[maxNameLength + 1];
    takeName(cursor, name);
    spec.position = takePosition(cursor);
    if (spec.position == 0)
        return malformed;
    spec.end = cursor;

    const Conversion conversion = resolveName(name, spec.flags, table);
    spec.type = conversion.type;
    spec.formatter = conversion.formatter;
    spec.flags |= conversion.addedFlags;
    return spec;
}

} // namespace kelto

int parseConvSpec(const UCS2 **cursor, formTable *table, Flag_t *type, int *width, int *precision, int *flags,
                  KTFormatter **formatter)
{
    const kelto::ConversionSpec spec = kelto::parseSpecification(*cursor, table);
    if (spec.position == 0)
        return 0;
    *type = spec.type;
    *width = spec.width;
    *precision = spec.precision;
    *flags = spec.flags;
    *formatter = spec.formatter;
    *cursor = spec.end;
    return spec.position;
}

int getConvSpecOrder(const UCS2 **cursor)
{
    const UCS2 *bracket = *cursor;
    while (*bracket != u'[' && *bracket != 0)
        ++bracket;
    const int position = takePosition(bracket);
    *cursor = bracket;
    return position;
}
