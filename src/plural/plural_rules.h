/**
 * The category of a number in a language: how the name of a language leads to its rules, and what the rules say of a
 * number. A name is "pl", "de_AT", "pt-PT" or what an environment has ("pl_PL.UTF-8@euro"), in either case; a language
 * without rules takes "other" for every number. KTPluralCategory() is the face of this for programs.
 */
#ifndef KELTO_PLURAL_PLURAL_RULES_H
#define KELTO_PLURAL_PLURAL_RULES_H

#include "kelto.h"

namespace kelto
{

/** The rules of a language, by their place in the table. */
struct LanguageRules
{
    uint8_t cardinal, ordinal;
};

LanguageRules rulesOf(const char *locale) noexcept;

/** The rules of a language and a country of two letters each; the country may be the empty text. */
LanguageRules rulesOf(const char *language, const char *country) noexcept;

/** The category of a number by a rule: one of KTVariant, KT_VARIANT_ZERO to KT_VARIANT_OTHER. */
int categoryOf(uint8_t rule, uint64_t i, uint64_t v, uint64_t f, uint64_t t) noexcept;

} // namespace kelto

#endif
