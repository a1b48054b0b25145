/**
 * The arguments that a message takes, beside those of its original, which a program passes. Conversions are compared by
 * their positions.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CONVERSIONS_ARGUMENTS_H
#define KELTO_TOOLS_CHECK_RULES_CONVERSIONS_ARGUMENTS_H

#include "check/rules/conversions/placeholders.h"
#include "check/rules/subject.h"
#include "check/texts/formats.h"

#include <vector>

namespace tool::check
{

/**
 * @param format    of the message.
 * @param original  accepted.
 * @param broken    the placeholders of the message that are no conversion.
 */
void compareArguments(Subject &subject, formTable *table, const Format &format, const Format &original,
                      const std::vector<BrokenPlaceholder> &broken);

} // namespace tool::check

#endif
