/**
 * A typed argument as the number that a text shows: its magnitude, its sign, and so many digits behind the mark, rounded
 * as "f" rounds them.
 */
#ifndef KELTO_PLURAL_SHOWN_NUMBER_H
#define KELTO_PLURAL_SHOWN_NUMBER_H

#include "plural/plural_operands.h"

namespace kelto
{

/** Whether an argument is an integer of any size. */
constexpr bool isInteger(const KTArgument &argument) noexcept
{
    return argument.type >= KT_ARGUMENT_INT && argument.type <= KT_ARGUMENT_UINT64;
}

struct ShownNumber
{
    PluralOperands operands;
    bool isNegative;
    bool isFinite; /**< else there are no operands */

    /** Reads an argument, shown with `digits` behind the mark; false where it is no number. */
    bool read(const KTArgument &argument, int digits) noexcept
    {
        if (!isInteger(argument))
            return readReal(argument, digits);
        const bool isSigned = argument.type == KT_ARGUMENT_INT || argument.type == KT_ARGUMENT_INT64;
        isNegative = isSigned && argument.value.i < 0;
        isFinite = true;
        const uint64_t magnitude = isNegative ? 0 - argument.value.u : argument.value.u;
        operands = {{magnitude}, {magnitude}, {static_cast<uint64_t>(digits)}, {0}, {0}};
        return true;
    }

private:
    bool readReal(const KTArgument &argument, int digits) noexcept;
    template <typename Real> bool readReal(Real value, int digits) noexcept;
};

} // namespace kelto

#endif
