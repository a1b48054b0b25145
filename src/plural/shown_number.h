/**
 * A typed argument as the number that a text shows, by which a form is chosen: an integer as it is, a double with a
 * given count of digits behind the mark, rounded as "f" rounds them. The number has 64 bits. Of a longer one the last
 * eighteen digits are kept, and the fact that it is longer; no rule asks for more.
 */
#ifndef KELTO_PLURAL_SHOWN_NUMBER_H
#define KELTO_PLURAL_SHOWN_NUMBER_H

#include "kelto.h"

namespace kelto
{

/** Whether an argument is an integer of any size. */
constexpr bool isInteger(const KTArgument &argument) noexcept
{
    return argument.type >= KT_ARGUMENT_INT && argument.type <= KT_ARGUMENT_UINT64;
}

/** Whether an integer is below 0. */
constexpr bool isNegative(const KTArgument &integer) noexcept
{
    return (integer.type == KT_ARGUMENT_INT || integer.type == KT_ARGUMENT_INT64) && integer.value.i < 0;
}

/** An integer without its sign. */
constexpr uint64_t magnitudeOf(const KTArgument &integer) noexcept
{
    return isNegative(integer) ? 0 - static_cast<uint64_t>(integer.value.i) : static_cast<uint64_t>(integer.value.i);
}

/** A number with a fraction, in the operands of the rules. */
struct ShownNumber
{
    uint64_t i, f, t;
    bool isNegative;
    bool isFinite; /**< else there are no operands */

    /** Reads a double or long double; false where the argument is none. */
    bool read(const KTArgument &argument, int digits) noexcept;

private:
    template <typename Real> bool readReal(Real value, int digits) noexcept;
};

} // namespace kelto

#endif
