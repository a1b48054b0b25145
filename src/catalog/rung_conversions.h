/**
 * The conversions of one rung of the ladder: those of its language, with the program's own in front. A table of the
 * program's stands in front by copies of its heads, since it is chained to one place only; the records are its own.
 */
#ifndef KELTO_CATALOG_RUNG_CONVERSIONS_H
#define KELTO_CATALOG_RUNG_CONVERSIONS_H

#include "kelto.h"
#include "strconv/heap_block.h"

namespace kelto
{

class RungConversions
{
public:
    /** Asks for the conversions of a language; without memory for the copies the program's own are all. */
    void set(const KTCatalogOptions &options, const char *language) noexcept;

    /** The table; null for the built-in ones. */
    formTable *table() const noexcept { return m_table; }

private:
    HeapBlock<formTable> m_copies;
    formTable *m_table = nullptr;
};

} // namespace kelto

#endif
