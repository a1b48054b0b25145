/**
 * Chinese, Japanese and Korean texts in the place of each other, and both forms of Chinese: their characters tell.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CHARACTERS_EAST_ASIAN_H
#define KELTO_TOOLS_CHECK_RULES_CHARACTERS_EAST_ASIAN_H

#include "check/rules/subject.h"

namespace tool::check
{

/**
 * Finds a text that is in another of these languages than the file's.
 * @param language  with its country, "zh-TW".
 * @return whether there is one.
 */
bool findOtherEastAsian(Subject &subject, std::string_view language);

} // namespace tool::check

#endif
