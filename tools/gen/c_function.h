/** A message as a function for C: the types of its parameters, which the compiler compares with arguments. */
#ifndef KELTO_TOOLS_GEN_C_FUNCTION_H
#define KELTO_TOOLS_GEN_C_FUNCTION_H

#include "kelto.h"

#include <optional>
#include <string>
#include <vector>

namespace tool::gen
{

/** The parts of a generated function. */
struct CFunction
{
    std::string name;    // with the prefix that stands for the namespace
    std::string id;      // of the message
    std::string text;    // of the source, as it is
    std::string literal; // likewise, in quotation marks
};

/** The KTSlotCodes that a text takes with the conversions of a table; nothing where no call can format it. */
std::optional<std::vector<uint32_t>> slotCodesOf(const std::string &text, formTable *table);

/** A message that is formatted: its parameters have these names, in the order in which arguments are passed. */
std::string formattingCFunction(const CFunction &function, const std::vector<std::string> &parameters,
                                formTable *table);

/** A message that no call can format. */
std::string fetchingCFunction(const CFunction &function);

} // namespace tool::gen

#endif
