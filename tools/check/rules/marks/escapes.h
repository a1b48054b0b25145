/** Backslashes in a message, which begin an escape, or stand there by mistake. */
#ifndef KELTO_TOOLS_CHECK_RULES_MARKS_ESCAPES_H
#define KELTO_TOOLS_CHECK_RULES_MARKS_ESCAPES_H

#include "check/rules/subject.h"

namespace tool::check
{

void checkEscapes(Subject &subject);

} // namespace tool::check

#endif
