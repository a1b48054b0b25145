/**
 * White space around a text and in it, which a translation keeps; around placeholders, where its writing has blanks.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_MARKS_WHITE_SPACE_H
#define KELTO_TOOLS_CHECK_RULES_MARKS_WHITE_SPACE_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares a message with its original, which it has. */
void compareWhiteSpace(Subject &subject);

} // namespace tool::check

#endif
