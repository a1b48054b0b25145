#include "format/selector.h"

#include "plural/shown_number.h"

#include <climits>
#include <cstring>
#include <iterator>

namespace
{

using kelto::Selector;
using kelto::SelectorKind;
using kelto::SelectorReading;

/** The characters of a text from one place to another. */
struct Span
{
    const char *begin, *end;
};

struct SelectorName
{
    const char *name;
    size_t length;
    SelectorKind kind;
};

constexpr SelectorName selectorNames[] = {
    {"plural", 6, SelectorKind::plural}, {"ordinal", 7, SelectorKind::ordinal}, {"select", 6, SelectorKind::select}};

const SelectorName *findName(const Span &name)
{
    const auto length = static_cast<size_t>(name.end - name.begin);
    for (const SelectorName &known : selectorNames)
        if (length == known.length && std::memcmp(name.begin, known.name, length) == 0)
            return &known;
    return nullptr;
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

constexpr uint64_t tooLarge = uint64_t{INT_MAX} + 1;

/** Takes a run of decimal digits; tooLarge or more where it is no number of 32 bits. */
uint64_t takeNumber(const char *&cursor)
{
    uint64_t number = 0;
    for (; isDigit(*cursor); ++cursor)
        number = number < tooLarge ? number * 10 + static_cast<uint64_t>(*cursor - '0') : number;
    return number;
}

/** One conversion specification that may be a selector, taken apart. */
struct Parts
{
    bool isPlain;   // it has no more than a selector has, and all of that
    bool hasDigits; // a precision
    uint64_t row, digits, argument;
    const SelectorName *name; // null for every other conversion
    const char *end;          // behind it, or behind the name
};

/** Passes what stands before the name, as the parser of formats does. */
void takeLayout(const char *&cursor, Parts &parts)
{
    const char *const flags = cursor;
    cursor += std::strspn(cursor, "-+ #0");
    const char *const width = cursor;
    parts.row = takeNumber(cursor);
    const bool isRowOfNumbers = flags == width && cursor != width;
    const bool isRowZero = flags + 1 == width && *flags == '0' && cursor == width;
    parts.isPlain = isRowOfNumbers || isRowZero;
    cursor += *cursor == '*' && cursor == width ? 1 : 0;
    parts.hasDigits = *cursor == '.';
    if (parts.hasDigits)
    {
        const char *const precision = ++cursor;
        parts.digits = takeNumber(cursor);
        if (*cursor == '*' && cursor == precision)
        {
            parts.isPlain = false;
            ++cursor;
        }
    }
    if (*cursor == 'h' || *cursor == 'l' || *cursor == 'L' || *cursor == '!')
    {
        parts.isPlain = false;
        ++cursor;
    }
}

/** Takes the conversion specification behind a '%' apart; one of another name only as far as the name. */
Parts takeParts(const char *cursor)
{
    Parts parts = {};
    takeLayout(cursor, parts);
    const Span name = {cursor, cursor + std::strcspn(cursor, "[")};
    parts.name = findName(name);
    parts.end = name.end;
    if (parts.name == nullptr || *name.end != '[')
        parts.isPlain = false;
    else
    {
        const char *const position = parts.end + 1;
        parts.end = position;
        parts.argument = takeNumber(parts.end);
        parts.isPlain = parts.isPlain && parts.end != position && *parts.end == ']' && parts.argument != 0;
        parts.end += *parts.end == ']' ? 1 : 0;
    }
    return parts;
}

SelectorReading faulty(KTRule rule, const char *message, const Span &place)
{
    return {false, rule, static_cast<size_t>(place.begin - message), static_cast<size_t>(place.end - place.begin), {}};
}

/** What a message is that has a conversion with the name of a selector. */
SelectorReading judge(const Parts &parts, const char *message, const Span &place)
{
    const bool isAlone = place.begin == message && *place.end == '\0';
    const bool mayHaveDigits = parts.name->kind != SelectorKind::select;
    if (!isAlone || !parts.isPlain || (parts.hasDigits && !mayHaveDigits))
        return faulty(KT_RULE_SELECTOR_ALONE, message, place);
    if (parts.row >= tooLarge || parts.digits >= tooLarge || parts.argument >= tooLarge)
        return faulty(KT_RULE_NUMBER_TOO_LARGE, message, place);
    return {true,
            KT_RULE_NONE,
            0,
            static_cast<size_t>(place.end - place.begin),
            {parts.name->kind, static_cast<uint32_t>(parts.row), static_cast<uint32_t>(parts.argument),
             static_cast<int>(parts.digits)}};
}

} // namespace

namespace kelto
{

SelectorReading readSelector(const char *message) noexcept
{
    for (const char *percent = std::strchr(message, '%'); percent != nullptr;)
    {
        const char *next = percent + 2;
        if (percent[1] != '%')
        {
            const Parts parts = takeParts(percent + 1);
            if (parts.name != nullptr)
                return judge(parts, message, {percent, parts.end});
            next = parts.end;
        }
        percent = std::strchr(next, '%');
    }
    return {};
}

bool selectsBy(const Selector &selector, uint32_t slotCode) noexcept
{
    const bool isReal = slotCode == KT_SLOT_DOUBLE || slotCode == KT_SLOT_LONG_DOUBLE;
    return (slotCode >= KT_SLOT_INT16 && slotCode <= KT_SLOT_UINT64) ||
           (isReal && selector.kind == SelectorKind::plural);
}

int findWantedPlaces(const Selector &selector, LanguageRules rules, const KTArgument *arguments, size_t count,
                     WantedPlaces &wanted) noexcept
{
    ShownNumber number;
    if (selector.argument > count)
        return KT_ERR_INVALID_PARAMETER;
    const KTArgument &argument = arguments[selector.argument - 1];
    if (!number.read(argument, selector.digits) || (selector.kind != SelectorKind::plural && !isInteger(argument)))
        return KT_ERR_INVALID_PARAMETER;
    const auto want = [&wanted](unsigned place) { wanted.places[wanted.count++] = static_cast<uint8_t>(place); };
    const uint64_t integer = number.operands.i.value;
    if (selector.kind == SelectorKind::select)
    {
        if (!number.isNegative && integer < selector.rowLength())
            want(static_cast<unsigned>(integer));
        want(0);
        return 0;
    }
    if (number.isFinite)
    {
        if (selector.digits == 0 && integer <= 1 && (integer == 0 || !number.isNegative))
            want(KT_VARIANT_EXACTLY_0 + static_cast<unsigned>(integer));
        want(static_cast<unsigned>(
            categoryOf(selector.kind == SelectorKind::ordinal ? rules.ordinal : rules.cardinal, number.operands)));
    }
    want(KT_VARIANT_OTHER);
    return 0;
}

} // namespace kelto
