#include "format/variants/selector.h"

#include "plural/shown_number.h"
#include "strconv/ascii.h"

#include <climits>
#include <cstring>
#include <utility>

namespace
{

using kelto::Selector;
using kelto::SelectorFault;
using kelto::SelectorKind;

constexpr uint64_t largest = INT_MAX;

/** Takes a number from 1 on; 0 where there is none, or a larger one than 32 bits hold. */
uint32_t takeNumber(const char *&cursor)
{
    constexpr ptrdiff_t mostDigits = 10;
    while (*cursor == '0')
        ++cursor;
    const char *const begin = cursor;
    uint64_t number = 0;
    for (unsigned digit = kelto::digitOf(*cursor); digit < 10; digit = kelto::digitOf(*++cursor))
        number = number * 10 + digit;
    return cursor - begin <= mostDigits && number <= largest ? static_cast<uint32_t>(number) : 0;
}

template <size_t size, size_t... places>
bool isAt(const char *text, const char (&word)[size], std::index_sequence<places...> /*places*/)
{
    return ((text[places] == word[places]) && ...);
}

/** Takes a word, whatever follows it. */
template <size_t size> bool take(const char *&cursor, const char (&word)[size])
{
    const bool isThere = isAt(cursor, word, std::make_index_sequence<size - 1>());
    cursor += isThere ? size - 1 : 0;
    return isThere;
}

bool takeName(const char *&cursor, SelectorKind &kind)
{
    if (take(cursor, "plural["))
        kind = SelectorKind::plural;
    else if (take(cursor, "ordinal["))
        kind = SelectorKind::ordinal;
    else if (take(cursor, "select["))
        kind = SelectorKind::select;
    else
        return false;
    return true;
}

/** Moves past flags, width, precision and modifier of a conversion specification, as the parser of formats does. */
const char *skipLayout(const char *cursor)
{
    cursor += std::strspn(cursor, "-+ #0");
    cursor += *cursor == '*' ? 1 : std::strspn(cursor, "0123456789");
    if (*cursor == '.')
    {
        ++cursor;
        cursor += *cursor == '*' ? 1 : std::strspn(cursor, "0123456789");
    }
    return cursor + (std::strchr("hlL!", *cursor) != nullptr && *cursor != '\0' ? 1 : 0);
}

/** Whether a number in a text, as of a width, is larger than 32 bits hold. */
bool isTooLarge(const char *begin, const char *behind)
{
    uint64_t number = 0;
    for (; begin != behind && number <= largest; ++begin)
        number = kelto::isDigit(*begin) ? number * 10 + kelto::digitOf(*begin) : 0;
    return number > largest;
}

using kelto::WantedPlaces;

constexpr WantedPlaces refused = {KT_ERR_INVALID_PARAMETER, WantedPlaces::end};

WantedPlaces placesOfValue(uint64_t value, unsigned rowLength)
{
    constexpr uint32_t first = 0 | WantedPlaces::end << 8;
    return {0, value < rowLength ? static_cast<uint32_t>(value) | first << 8 : first};
}

/** The places that a number wants, with these integer digits and with `digits` digits behind the mark. */
WantedPlaces placesOfNumber(int category, uint64_t integer, bool isNegative, int digits)
{
    constexpr uint32_t other = KT_VARIANT_OTHER | WantedPlaces::end << 8;
    const uint32_t places = static_cast<uint32_t>(category) | other << 8;
    const bool isExact = integer <= 1 && digits == 0 && (integer == 0 || !isNegative);
    return {0, isExact ? (KT_VARIANT_EXACTLY_0 + static_cast<uint32_t>(integer)) | places << 8 : places};
}

/** The places that a number with a fraction wants. */
[[gnu::noinline]] WantedPlaces placesOfReal(uint8_t rule, const KTArgument &argument, int digits)
{
    kelto::ShownNumber number;
    if (!number.read(argument, digits))
        return refused;
    if (!number.isFinite)
        return placesOfNumber(KT_VARIANT_OTHER, UINT64_MAX, false, digits);
    const int category = kelto::categoryOf(rule, number.i, static_cast<unsigned>(digits), number.f, number.t);
    return placesOfNumber(category, number.i, number.isNegative, digits);
}

} // namespace

namespace kelto
{

bool readSelector(const char *message, Selector &selector) noexcept
{
    if (*message != '%')
        return false;
    const char *cursor = message + 1;
    if (!kelto::isDigit(cursor[0]) || (cursor[0] == '0' && kelto::isDigit(cursor[1]))) // a 0 in front is a flag
        return false;
    const bool isRowZero = *cursor == '0';
    selector.row = takeNumber(cursor);
    if (selector.row == 0 && !isRowZero)
        return false;
    selector.digits = 0;
    const bool hasDigits = *cursor == '.';
    if (hasDigits)
    {
        const char *const begin = ++cursor;
        selector.digits = static_cast<int>(takeNumber(cursor));
        if (isTooLarge(begin, cursor))
            return false;
    }
    if (!takeName(cursor, selector.kind))
        return false;
    selector.argument = takeNumber(cursor);
    const bool isWhole = selector.argument != 0 && cursor[0] == ']' && cursor[1] == '\0';
    return isWhole && !(hasDigits && selector.kind == SelectorKind::select);
}

SelectorFault findSelectorFault(const char *message) noexcept
{
    for (const char *percent = std::strchr(message, '%'); percent != nullptr;)
    {
        const char *next = percent + 1;
        if (*next != '%')
        {
            const char *const name = skipLayout(next);
            const char *behind = name;
            SelectorKind kind;
            const bool hasName = takeName(behind, kind);
            next = name;
            if (hasName)
            {
                behind += std::strspn(behind, "0123456789");
                behind += *behind == ']' ? 1 : 0;
                const KTRule rule = isTooLarge(percent, behind) ? KT_RULE_NUMBER_TOO_LARGE : KT_RULE_SELECTOR_ALONE;
                return {rule, static_cast<size_t>(percent - message), static_cast<size_t>(behind - percent)};
            }
        }
        else
            ++next;
        percent = std::strchr(next, '%');
    }
    return {KT_RULE_NONE, 0, 0};
}

bool selectsBy(const Selector &selector, uint32_t slotCode) noexcept
{
    const bool isReal = slotCode == KT_SLOT_DOUBLE || slotCode == KT_SLOT_LONG_DOUBLE;
    return (slotCode >= KT_SLOT_INT16 && slotCode <= KT_SLOT_UINT64) ||
           (isReal && selector.kind == SelectorKind::plural);
}

WantedPlaces findWantedPlaces(const Selector &selector, LanguageRules rules, const KTArgument *arguments,
                              size_t count) noexcept
{
    if (selector.argument > count)
        return refused;
    const KTArgument &argument = arguments[selector.argument - 1];
    const uint8_t rule = selector.kind == SelectorKind::ordinal ? rules.ordinal : rules.cardinal;
    if (!isInteger(argument))
        return selector.kind == SelectorKind::plural ? placesOfReal(rule, argument, selector.digits) : refused;
    const uint64_t magnitude = magnitudeOf(argument);
    if (selector.kind == SelectorKind::select)
        return placesOfValue(isNegative(argument) ? UINT64_MAX : magnitude, selector.rowLength());
    const int category = categoryOf(rule, magnitude, static_cast<unsigned>(selector.digits), 0, 0);
    return placesOfNumber(category, magnitude, isNegative(argument), selector.digits);
}

} // namespace kelto
