/**
 * Markup inside of texts: the tags of HTML and of widgets that show it, whatever kept it from being markup of the file.
 */
#ifndef KELTO_TOOLS_CHECK_MARKUP_H
#define KELTO_TOOLS_CHECK_MARKUP_H

#include "check/subject.h"

namespace tool::check
{

/** Compares a message with its original, which it has. */
void compareMarkup(Subject &subject);

} // namespace tool::check

#endif
