/**
 * The names that the environment and the C library give to the locale and its character set, whole, or cut to language
 * and country. The three queries are declared in kelto.h; here a name is changed before ICU sees it, and nowhere else.
 */
#ifndef KELTO_STRCONV_SYSTEM_LOCALE_H
#define KELTO_STRCONV_SYSTEM_LOCALE_H

extern "C" {
#pragma GCC visibility push(default)

/** The name by which ICU knows a character set: "cp932" for "MS932" (exactly so spelt), else `charSet` itself. */
char *mapCharSet(char *charSet);

#pragma GCC visibility pop
}

#endif
