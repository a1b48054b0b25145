/**
 * Questions of parser, calls and formatters to the records of kelto.h (KTFormatter, KTParameter): which codes take an
 * argument, what a marker is, which record stands for it, how long a name can be.
 */
#ifndef KELTO_FORMAT_CONVERSION_RECORD_H
#define KELTO_FORMAT_CONVERSION_RECORD_H

#include "kelto.h"

#include <cstddef>
#include <iterator>

namespace kelto
{

/** Whether an argument-type code takes a slot. */
constexpr bool takesSlot(int argumentType) noexcept
{
    return argumentType >= KT_ARG_CHARACTER && argumentType <= KT_ARG_POINTER;
}

/** The record of zeros that ends the built-in list. */
inline KTFormatter *terminatingRecord() noexcept
{
    return std::end(builtInFormList) - 1;
}

/**
 * Whether a conversion specification opens or closes an encoded region: it has a position, but writes nothing and takes
 * no slot.
 */
constexpr bool isMarker(const KTParameter &parameter) noexcept
{
    return parameter.type == CONV_N || parameter.type == CONV_O;
}

/** The longest name that a conversion can have. */
constexpr size_t maxNameLength = 19;

} // namespace kelto

#endif
