/** Writes a bilingual catalog as XLIFF: the same catalog gives the same bytes. */
#ifndef KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_WRITER_H
#define KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_WRITER_H

#include "bilingual/entry.h"

#include <string>

namespace tool::bilingual
{

/** XLIFF 1.2, strict. */
std::string xliff12Of(const Bilingual &catalog, formTable *table);

/** XLIFF 2.0. */
std::string xliff2Of(const Bilingual &catalog, formTable *table);

} // namespace tool::bilingual

#endif
