/**
 * What a rule of a language looks at: a number as it is shown, in the operands of CLDR's rules. Numbers are taken in 64
 * bits; of one with more digits each operand keeps its last eighteen, and that it is large, which is all that a rule
 * asks for.
 */
#ifndef KELTO_PLURAL_PLURAL_OPERANDS_H
#define KELTO_PLURAL_PLURAL_OPERANDS_H

#include "kelto.h"

#include <cstdint>

namespace kelto
{

/** One operand. What is no integer, as n is with digits behind the mark, equals none and lies in no range. */
struct PluralOperand
{
    uint64_t value;
    bool isInteger = true;

    constexpr PluralOperand operator%(uint64_t modulus) const { return {value % modulus, isInteger}; }
};

struct PluralOperands
{
    PluralOperand n; /**< the number itself, without its sign */
    PluralOperand i; /**< its integer digits */
    PluralOperand v; /**< how many digits it shows behind the mark */
    PluralOperand f; /**< those digits */
    PluralOperand t; /**< those digits without zeros at their end */
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

/** A language and its rules; of a region that has its own, also the region. */
template <typename Rule> struct PluralLanguage
{
    char code[4];
    char region[3];
    Rule cardinal, ordinal;
};

} // namespace kelto

#endif
