/** How much of a reference a translation has: one finding in place of one for each missing message. */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_COMPLETENESS_H
#define KELTO_TOOLS_CHECK_RULES_FILES_COMPLETENESS_H

#include "check/reading/parsed_file.h"

namespace tool::check
{

/**
 * Takes findings of missing messages away. One finding takes their place where the share of messages that are there and
 * have a text is too small.
 * @param percent  from 1 to 100.
 */
void requireShare(Findings &findings, const ParsedFile &parsed, const ParsedFile &reference, unsigned percent);

} // namespace tool::check

#endif
