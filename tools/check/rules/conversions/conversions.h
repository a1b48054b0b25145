/**
 * A message as a format string, by itself: conversions that are malformed, placeholders that are no conversion,
 * positions that repeat or are left out, conversions that were typed as text, and regions that stay open.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CONVERSIONS_CONVERSIONS_H
#define KELTO_TOOLS_CHECK_RULES_CONVERSIONS_CONVERSIONS_H

#include "check/rules/subject.h"
#include "check/texts/formats.h"

namespace tool::check
{

/**
 * Checks the conversions of a message, and compares their arguments with those of its original.
 * @param originalFormat  null where there is no original, or its format is none.
 */
void checkConversions(Subject &subject, formTable *table, const Format *originalFormat);

} // namespace tool::check

#endif
