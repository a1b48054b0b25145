/**
 * The conversion of variants, "nil": it takes an integer and writes nothing, so that a sentence without its number has
 * every position. It stands in a table of its own, since the built-in table cannot get further names; a program's own
 * "nil" goes first.
 */
#ifndef KELTO_FORMAT_VARIANTS_NIL_CONVERSION_H
#define KELTO_FORMAT_VARIANTS_NIL_CONVERSION_H

#include "kelto.h"

namespace kelto
{

/** The formatter of "nil". */
int formatNil(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
              void **argSlot, unsigned long *sizeInOut, UCS2 *out) noexcept;

/** The table that has "nil" and is chained to the shared built-in table. */
formTable &variantFormTable() noexcept;

/** A table that has "nil" and is chained to another, while both live; the other table itself where that has "nil". */
class WithNil
{
public:
    explicit WithNil(formTable *table) noexcept;
    WithNil(const WithNil &) = delete;
    WithNil &operator=(const WithNil &) = delete;

    formTable *table() noexcept { return m_table; }

private:
    formTable m_front;
    formTable *m_table;
};

} // namespace kelto

#endif
