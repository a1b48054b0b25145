/**
 * The conversions of one rung of the ladder: those of its language, with the program's own in front. A table can be
 * chained to one other only. So the program's tables are copied to be put in front; the copies share the program's
 * records.
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
    /**
     * Asks the program for the conversions of a language. Without memory for the copies only the program's own are
     * used.
     */
    void set(const KTCatalogOptions &options, const char *language) noexcept;

    /** The table; null for the built-in ones. */
    formTable *table() const noexcept { return m_table; }

private:
    HeapBlock<formTable> m_copies;
    formTable *m_table = nullptr;
};

} // namespace kelto

#endif
