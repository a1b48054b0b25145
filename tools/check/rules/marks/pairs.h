/** Brackets and quotation marks, which stand in pairs where they do in the original. */
#ifndef KELTO_TOOLS_CHECK_RULES_MARKS_PAIRS_H
#define KELTO_TOOLS_CHECK_RULES_MARKS_PAIRS_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares a message, which is not blank, with its original, which it has. */
void comparePairs(Subject &subject);

} // namespace tool::check

#endif
