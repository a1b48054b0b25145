/**
 * A whole format string: literal text, "%%", and specifications whose positions must be exactly 1 to n. checkFormat()
 * turns it into an array of KTParameter in the order of the positions, which is what the driver walks; checkSyntax() is
 * its exported face for a text whose length is not known yet.
 */
#ifndef KELTO_FORMAT_FORMAT_STRING_H
#define KELTO_FORMAT_FORMAT_STRING_H

#include "format/contract.h"

namespace kelto
{

/** The first '%' in [from, end), or end. */
const UCS2 *findPercent(const UCS2 *from, const UCS2 *end) noexcept;

/**
 * checkSyntax() for a text of known length.
 * @param format      zero-terminated; `length` units without the terminator.
 * @param parameters  as in checkSyntax(); the caller frees it with ZEL_free().
 */
int checkFormat(const UCS2 *format, size_t length, formTable *table, KTParameter **parameters) noexcept;

} // namespace kelto

#endif
