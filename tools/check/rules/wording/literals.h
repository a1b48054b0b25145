/**
 * Parts of a text that are the same in every language: addresses, options, names of files and variables, numbers and
 * units.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_WORDING_LITERALS_H
#define KELTO_TOOLS_CHECK_RULES_WORDING_LITERALS_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares a message with its original, which it has. */
void compareLiterals(Subject &subject);

} // namespace tool::check

#endif
