/**
 * The characters of a text that turn its direction: embeddings and overrides (U+202A, U+202B, U+202D, U+202E), isolates
 * (U+2066 to U+2068), and what closes them (U+202C, U+2069).
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CHARACTERS_DIRECTIONS_H
#define KELTO_TOOLS_CHECK_RULES_CHARACTERS_DIRECTIONS_H

#include "check/rules/subject.h"

namespace tool::check
{

/** Each has to be closed, and stands in the original too; isolates may be added. */
void checkDirections(Subject &subject);

} // namespace tool::check

#endif
