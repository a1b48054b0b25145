/** Starts the program kelto-po, which reads and writes PO files (tools/po/), under limits of memory and time. */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_PO_PROGRAM_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_PO_PROGRAM_H

#include <string>
#include <string_view>

namespace tool::bilingual
{

/**
 * What the program makes of an input, within limits of memory and time; a Failure where there is none, or it fails.
 * @param mode  "read" or "write".
 */
std::string runPo(const char *mode, std::string_view input);

} // namespace tool::bilingual

#endif
