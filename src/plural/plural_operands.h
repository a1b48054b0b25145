/**
 * What a rule of a language looks at, in CLDR's letters: of a number as it is shown the integer digits i, how many
 * digits v stand behind the mark, these digits f, and t without the zeros at their end; and the number n itself, which
 * is i where t is 0, and else no integer.
 */
#ifndef KELTO_PLURAL_PLURAL_OPERANDS_H
#define KELTO_PLURAL_PLURAL_OPERANDS_H

#include "kelto.h"

#include <cstdint>

namespace kelto
{

/** One operand. An operand that is no integer equals no number and lies in no range. */
struct PluralOperand
{
    uint64_t value;
    bool isInteger = true;

    constexpr PluralOperand operator%(uint64_t modulus) const { return {value % modulus, isInteger}; }
};

/** Both ends belong to it. */
struct Range
{
    uint64_t first, last;
};

constexpr bool contains(int single, uint64_t value)
{
    return value == static_cast<uint64_t>(single);
}

constexpr bool contains(const Range &range, uint64_t value)
{
    return value - range.first <= range.last - range.first;
}

/** Whether an operand is one of several numbers, or in one of several ranges. */
template <typename... Sets> constexpr bool is(const PluralOperand &operand, const Sets &...sets)
{
    return operand.isInteger && (contains(sets, operand.value) || ...);
}

template <typename... Sets> constexpr bool isNot(const PluralOperand &operand, const Sets &...sets)
{
    return !is(operand, sets...);
}

/** A language and its rules, with a region where that has rules of its own. */
template <typename Rule> struct PluralLanguage
{
    char code[4];
    char region[3];
    Rule cardinal, ordinal;
};

} // namespace kelto

#endif
