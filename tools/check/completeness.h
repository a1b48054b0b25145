/** How much of a reference a translation has, in place of a line for each message that it has not. */
#ifndef KELTO_TOOLS_CHECK_COMPLETENESS_H
#define KELTO_TOOLS_CHECK_COMPLETENESS_H

#include "check/catalog.h"

namespace tool::check
{

/**
 * Takes findings of missing messages away; one takes their place where fewer messages than a share of those of the
 * reference are there and have a text.
 * @param percent  from 1 to 100.
 */
void requireShare(Findings &findings, const Catalog &catalog, const Catalog &reference, unsigned percent);

} // namespace tool::check

#endif
