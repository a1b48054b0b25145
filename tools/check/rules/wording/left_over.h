/**
 * What is left in a translation that was not finished: words of the reference, remarks of the translator; and words,
 * marks and texts that were written twice (but in languages where that is grammar).
 */
#ifndef KELTO_TOOLS_CHECK_RULES_WORDING_LEFT_OVER_H
#define KELTO_TOOLS_CHECK_RULES_WORDING_LEFT_OVER_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares a message with its original, which it has. */
void findLeftOver(Subject &subject);

} // namespace tool::check

#endif
