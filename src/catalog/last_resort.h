/**
 * The last rung: "[store 3: report.txt, 12]", the catalog, the number, the arguments. Where the catalog has an encoder,
 * each argument goes through it, since nobody knows whether its place would have been in an encoded region. It takes no
 * memory but for encoded arguments that are long; where memory is short, a '?' stands in place of the argument.
 */
#ifndef KELTO_CATALOG_LAST_RESORT_H
#define KELTO_CATALOG_LAST_RESORT_H

#include "catalog/catalog.h"

namespace kelto
{

/** @param size  in: the capacity; out: the units of the whole text, whether it fits or not. */
template <typename Unit>
void writeLastResort(const KTCatalog &catalog, const KTCatalogRequest &request, size_t *size, Unit *out) noexcept;

} // namespace kelto

#endif
