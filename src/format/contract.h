/**
 * What parser, driver and formatters agree on beyond the public records: the argument-type codes of a conversion, the
 * values that stand for "absent" and "taken from the arguments", what a marker is, how long a name can be. Everything
 * else of the contract is in kelto.h, chapter "Extending".
 */
#ifndef KELTO_FORMAT_CONTRACT_H
#define KELTO_FORMAT_CONTRACT_H

#include "kelto.h"

#include <cstddef>

namespace kelto
{

/** The codes in KTFormatter::argTypes; those above pointerSized take no argument. */
enum ArgumentType : int
{
    endOfTypes = 0,
    singleCharacter = 1,
    utf8Text = 2,
    ucs2Text = 3,
    signedInteger = 4,
    unsignedInteger = 5,
    floatingPoint = 6,
    pointerSized = 7
};

/** Whether an argument-type code takes a slot. */
constexpr bool takesSlot(int argumentType) noexcept
{
    return argumentType >= singleCharacter && argumentType <= pointerSized;
}

/** A width or precision that the format string does not give, and one that stands in the arguments ('*'). */
constexpr int absent = -1;
constexpr int fromArguments = -2;

/** Whether a specification opens or closes an encoded region: it has a position, but writes nothing and takes no slot. */
constexpr bool isMarker(const KTParameter &parameter) noexcept
{
    return parameter.type == CONV_N || parameter.type == CONV_O;
}

/** The longest name that a conversion can have. */
constexpr size_t maxNameLength = 19;

} // namespace kelto

#endif
