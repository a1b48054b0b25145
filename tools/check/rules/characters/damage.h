/**
 * Texts that were damaged on their way through editors and tools: read in a wrong charset, with characters that were
 * lost, escaped twice, or with some that cannot be seen.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CHARACTERS_DAMAGE_H
#define KELTO_TOOLS_CHECK_RULES_CHARACTERS_DAMAGE_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Tells of a file that is UTF-8 and names ISO-8859-1. @return whether it does, which garbles all its texts. */
bool checkEncoding(const ParsedFile &parsed, Findings &findings);

/** @param isGarbled  by the encoding of the file, so that no text is told of for its characters. */
void checkDamage(Subject &subject, bool isGarbled);

} // namespace tool::check

#endif
