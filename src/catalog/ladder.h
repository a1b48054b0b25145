/**
 * The ladder: one language after the other, then the text in the source, then the last resort. Each rung has its own
 * language, with that language's conversions and formats; the first whose text can be used for a call gives it.
 */
#ifndef KELTO_CATALOG_LADDER_H
#define KELTO_CATALOG_LADDER_H

#include "catalog/catalog.h"

namespace kelto
{

/**
 * Writes a message.
 * @param request  with all members of this version, and with arguments where it counts some.
 * @param size     in: the capacity of out; out: the units of the text, the terminator not counted.
 * @return 0; KT_ERR_BUFFER_TOO_SMALL with as much as fits; KT_ERR_CONVERSION_FAILED where the program stopped the call.
 */
template <typename Unit>
int writeMessage(const KTCatalog &catalog, const KTCatalogRequest &request, size_t *size, Unit *out) noexcept;

} // namespace kelto

#endif
