/**
 * Texts whose charset has a byte for each letter, and that were read in another such charset: "gr³n" for "grün". They
 * are known by letters that the language lacks, and by signs and capital letters within words.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CHARACTERS_ONE_BYTE_CHARSETS_H
#define KELTO_TOOLS_CHECK_RULES_CHARACTERS_ONE_BYTE_CHARSETS_H

#include "check/rules/subject.h"

namespace tool::check
{

/** @return whether this text, or one that checkDamage() has found, was read in a wrong charset. */
bool findOtherCharset(Subject &subject, std::string_view language);

} // namespace tool::check

#endif
