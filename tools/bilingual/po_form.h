/** PO files as bilingual catalogs: the number of a message is the context of its entry. */
#ifndef KELTO_TOOLS_BILINGUAL_PO_FORM_H
#define KELTO_TOOLS_BILINGUAL_PO_FORM_H

#include "bilingual/entry.h"

#include <string>
#include <string_view>

namespace tool::bilingual
{

/** Whether bytes are a PO file rather than an XML document. */
bool isPo(std::string_view bytes);

BilingualFile readPo(check::SourceText source);

std::string poOf(const Bilingual &catalog, formTable *table);

} // namespace tool::bilingual

#endif
