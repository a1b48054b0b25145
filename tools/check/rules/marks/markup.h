/**
 * Markup inside of texts: tags of HTML, as widgets show it. In the file their brackets are escaped.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_MARKS_MARKUP_H
#define KELTO_TOOLS_CHECK_RULES_MARKS_MARKUP_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Compares a message with its original, which it has. */
void compareMarkup(Subject &subject);

} // namespace tool::check

#endif
