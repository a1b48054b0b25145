/** The white space around a text and in it. */
#ifndef KELTO_TOOLS_CHECK_TEXTS_BLANKS_H
#define KELTO_TOOLS_CHECK_TEXTS_BLANKS_H

#include "check/texts/source_text.h"

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

} // namespace tool::check

#endif
