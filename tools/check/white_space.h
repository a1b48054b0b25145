/**
 * White space around a text and in it, which a translation keeps; around placeholders, where its writing has blanks.
 */
#ifndef KELTO_TOOLS_CHECK_WHITE_SPACE_H
#define KELTO_TOOLS_CHECK_WHITE_SPACE_H

#include "check/subject.h"

#include <optional>
#include <string_view>

namespace tool::check
{

/** The text between the white space that it begins and ends with. */
Range coreOf(std::string_view text);

/** Whether a text is empty, or has nothing but white space. */
bool isBlank(std::string_view text);

/** The first two blanks in a row between words. */
std::optional<Range> doubleBlankIn(std::string_view text);

/** Compares a message with its original, which it has. */
void compareWhiteSpace(Subject &subject);

} // namespace tool::check

#endif
