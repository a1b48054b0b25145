/**
 * The order of arguments and numbers in a sentence. Exchanged arguments of one type are found by the marks and words
 * around them, exchanged numbers by their order in the reference.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CONVERSIONS_ORDER_H
#define KELTO_TOOLS_CHECK_RULES_CONVERSIONS_ORDER_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares a message with its original, which it has. */
void compareOrder(Subject &subject);

} // namespace tool::check

#endif
