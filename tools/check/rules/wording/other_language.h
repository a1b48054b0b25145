/**
 * Texts in another language than the file's, in the same script: their letters and small words tell. Texts of East Asia
 * and texts in a wrong charset have sources of their own.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_WORDING_OTHER_LANGUAGE_H
#define KELTO_TOOLS_CHECK_RULES_WORDING_OTHER_LANGUAGE_H

#include "check/rules/subject.h"

namespace tool::check
{

/**
 * @param subject    with its original or without.
 * @param isGarbled  by the encoding of the file, so that only texts in ASCII are what they were.
 */
void checkLanguageOfText(Subject &subject, bool isGarbled);

} // namespace tool::check

#endif
