/**
 * The attributes of a file and of its messages, beside those of the reference: the product is the same, and other names
 * of messages tell that their numbers were mixed up.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_ATTRIBUTES_H
#define KELTO_TOOLS_CHECK_RULES_FILES_ATTRIBUTES_H

#include "check/rules/subject.h"

namespace tool::check
{

void compareProduct(const ParsedFile &parsed, const ParsedFile &reference, Findings &findings);

/** The names of a message and its original. */
void compareName(Subject &subject);

} // namespace tool::check

#endif
