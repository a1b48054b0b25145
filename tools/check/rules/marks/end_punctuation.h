/** The mark that a text ends with, as a colon or a full stop, and the colon in front of what a field shows. */
#ifndef KELTO_TOOLS_CHECK_RULES_MARKS_END_PUNCTUATION_H
#define KELTO_TOOLS_CHECK_RULES_MARKS_END_PUNCTUATION_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares a message, which is not blank, with its original, which it has. */
void comparePunctuation(Subject &subject);

} // namespace tool::check

#endif
