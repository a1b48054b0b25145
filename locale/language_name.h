/**
 * The name of a language as ICU takes it, made of what a program has: a BCP 47 tag or a POSIX name. The rules that are
 * used are found here too, since ICU itself would write a language that it does not know as the process's locale has
 * it.
 */
#ifndef KELTO_LOCALE_LANGUAGE_NAME_H
#define KELTO_LOCALE_LANGUAGE_NAME_H

#include <unicode/uloc.h>

namespace kelto::locale
{

/** The longest name that is looked at. */
constexpr size_t maxNameLength = ULOC_FULLNAME_CAPACITY - 1;

struct LanguageName
{
    char icu[ULOC_FULLNAME_CAPACITY]; /**< for ICU's functions; "root" for an unknown language */
    char tag[ULOC_FULLNAME_CAPACITY]; /**< of the rules, in BCP 47; "root" for those of the root */

    /** @param name  at most maxNameLength bytes. @return 0, or the result of a failure that is not the name's. */
    int make(const char *name) noexcept;
};

} // namespace kelto::locale

#endif
