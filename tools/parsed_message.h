/**
 * A message read as a format string: its conversions in the order of their positions, each with the text that it is
 * written as.
 */
#ifndef KELTO_TOOLS_PARSED_MESSAGE_H
#define KELTO_TOOLS_PARSED_MESSAGE_H

#include "kelto.h"

#include <string>
#include <vector>

namespace tool
{

struct Conversion
{
    KTParameter parameter;
    std::u16string written; // as "%-5d[2]"

    bool isMarker() const { return parameter.type == CONV_N || parameter.type == CONV_O; }
    bool takesWidth() const { return parameter.width == fromArguments; }
    bool takesPrecision() const { return parameter.precision == fromArguments; }

private:
    static constexpr int fromArguments = -2;
};

/** Throws a Failure that shows the fault where the text, UTF-8, is no format string. */
std::vector<Conversion> parseMessage(const std::string &text);

} // namespace tool

#endif
