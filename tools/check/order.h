/**
 * The order of what a sentence is filled with: arguments of one kind that are exchanged, which no type tells, are found
 * by the marks and words around them; numbers by their order in the reference.
 */
#ifndef KELTO_TOOLS_CHECK_ORDER_H
#define KELTO_TOOLS_CHECK_ORDER_H

#include "check/subject.h"

namespace tool::check
{

/** Compares a message with its original, which it has. */
void compareOrder(Subject &subject);

} // namespace tool::check

#endif
