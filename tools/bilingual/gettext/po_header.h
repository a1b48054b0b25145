/**
 * The header of a PO file, which is its first entry: its fields, a name and a value in each line; and the fields that a
 * new file gets.
 */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_PO_HEADER_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_PO_HEADER_H

#include "bilingual/entry.h"

#include <string>
#include <string_view>

namespace tool::bilingual
{

/** The value of a field; empty where there is none. */
std::string headerField(std::string_view header, std::string_view name);

/**
 * The header of a catalog. Fields of a translator's program stay. A new header has nothing that depends on the time
 * and on the user: the same catalog gives the same bytes.
 */
std::string headerOf(const Bilingual &catalog);

} // namespace tool::bilingual

#endif
