/**
 * One word of the command line as a value of the kind that a conversion takes.
 */
#ifndef KELTO_TOOLS_ARGUMENT_VALUE_H
#define KELTO_TOOLS_ARGUMENT_VALUE_H

#include "kelto.h"

#include <string>
#include <variant>

namespace tool
{

/** A value in the shape that the library reads by pointer. */
using Value = std::variant<char, UCS2, int16_t, int32_t, int64_t, uint16_t, uint32_t, uint64_t, double, long double,
                           std::string, std::u16string>;

/** What the library is given: a text itself, else a pointer to the value. */
void *pointerTo(Value &value);

/** Why a word cannot be read: it "is no whole number". */
struct Unreadable
{
    std::string reason;
};

/** The word as an argument of this kind (KTFormatter::argTypes) under these flags. Throws Unreadable. */
Value readValue(int type, int flags, const std::string &word);

/** The word as the number for a '*'. Throws Unreadable. */
Value readStar(const std::string &word);

} // namespace tool

#endif
