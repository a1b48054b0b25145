/**
 * Denials that a translation has lost: the original says "not" or "never", and no word of the translation may deny
 * anything. Which words deny in a language is known to language_words.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_WORDING_DENIALS_H
#define KELTO_TOOLS_CHECK_RULES_WORDING_DENIALS_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Looks for the denial of the original, which has words as the translation has. */
void compareDenial(Subject &subject);

} // namespace tool::check

#endif
