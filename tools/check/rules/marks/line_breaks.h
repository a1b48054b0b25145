/** Line breaks and tabs in a text: a translation has those of its original, and a "/n" is none. */
#ifndef KELTO_TOOLS_CHECK_RULES_MARKS_LINE_BREAKS_H
#define KELTO_TOOLS_CHECK_RULES_MARKS_LINE_BREAKS_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Whether "/n" or "/t" stands where the original has "\n" or "\t". */
bool hasMistypedBreak(const Subject &subject);

/** Compares a message with its original, which it has. */
void compareLineBreaks(Subject &subject);

/** "/n" in place of "\n", where there is no original to tell it by. */
void checkSlashes(Subject &subject);

} // namespace tool::check

#endif
