/**
 * The category of a number in a language: how a language's name leads to its rules, and what these say of a number. A
 * name is "pl", "de_AT", "pt-PT" or what an environment has ("pl_PL.UTF-8@euro"), in either case; a language without
 * rules takes "other" for every number. KTPluralCategory() is the face of this for programs.
 */
#ifndef KELTO_PLURAL_PLURAL_RULES_H
#define KELTO_PLURAL_PLURAL_RULES_H

#include "plural/plural_operands.h"

namespace kelto
{

/** The rules of a language, by their place in the table. */
struct LanguageRules
{
    uint8_t cardinal, ordinal;
};

LanguageRules rulesOf(const char *locale) noexcept;

/** One of KTVariant, KT_VARIANT_ZERO to KT_VARIANT_OTHER. */
int categoryOf(uint8_t rule, const PluralOperands &number) noexcept;

} // namespace kelto

#endif
