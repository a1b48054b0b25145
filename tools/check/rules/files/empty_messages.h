/** Messages without a text: which of them are a mistake. */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_EMPTY_MESSAGES_H
#define KELTO_TOOLS_CHECK_RULES_FILES_EMPTY_MESSAGES_H

#include "check/rules/subject.h"

namespace tool::check
{

/** An original without a text is meant to have none, and so is its translation. */
void checkEmptiness(Subject &subject);

} // namespace tool::check

#endif
