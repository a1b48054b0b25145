/** Translations that were made from another text than their original has now. */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_OUTDATED_H
#define KELTO_TOOLS_CHECK_RULES_FILES_OUTDATED_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares the digest that a message has of its source, if it has one, with that of its original. */
void compareAge(Subject &subject);

} // namespace tool::check

#endif
