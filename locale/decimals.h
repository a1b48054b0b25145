/**
 * "decimal" and "percent": how many decimals a double has, and its digits, which are those of the library's own "f".
 * Whatever else has a double, as a measure, is written by the same function.
 */
#ifndef KELTO_LOCALE_DECIMALS_H
#define KELTO_LOCALE_DECIMALS_H

#include "number_formatters.h"

namespace kelto::locale
{

/**
 * Writes a double, or with FLAG_L a long double, by the formatter of a key.
 * @param key  its decimals are set here.
 */
int writeDouble(KTLLanguage &language, NumberKey &key, const Spec &spec, const void *number, Output &output);

} // namespace kelto::locale

#endif
