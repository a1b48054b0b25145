/** From a bilingual catalog to a PO file: the number of a message is the context of its entry. */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_PO_WRITER_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_PO_WRITER_H

#include "bilingual/entry.h"

#include <string>

namespace tool::bilingual
{

std::string poOf(const Bilingual &catalog, formTable *table);

} // namespace tool::bilingual

#endif
