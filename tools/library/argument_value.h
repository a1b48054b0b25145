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

using Value = std::variant<int64_t, uint64_t, char, UCS2, double, long double, std::string, std::u16string>;

/** The value for a prepared format; it lives as long as the value, in its place. */
KTArgument argumentOf(const Value &value);

/** Why a word cannot be read: it "is no whole number". */
struct Unreadable
{
    std::string reason;
};

/** The word as a value for a slot of this code, one of KTSlotCode. Throws Unreadable. */
Value readValue(uint32_t code, const std::string &word);

} // namespace tool

#endif
