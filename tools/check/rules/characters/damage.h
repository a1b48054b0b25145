/**
 * Texts that were damaged on their way through editors and tools: read in a wrong charset, with characters that were
 * lost, escaped twice, or with some that cannot be seen.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CHARACTERS_DAMAGE_H
#define KELTO_TOOLS_CHECK_RULES_CHARACTERS_DAMAGE_H

#include "check/rules/subject.h"

namespace tool::check
{

void checkDamage(Subject &subject);

/** Whether the bytes of a file are of the encoding that it names. */
void checkEncoding(const ParsedFile &parsed, Findings &findings);

} // namespace tool::check

#endif
