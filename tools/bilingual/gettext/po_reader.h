/** From a PO file to a bilingual catalog. */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_PO_READER_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_PO_READER_H

#include "bilingual/bilingual_file.h"

#include <string>
#include <string_view>

namespace tool::bilingual
{

/** Whether bytes are a PO file rather than an XML document. */
bool isPo(std::string_view bytes);

/** @param language  of the translation, where the header names none. */
BilingualFile readPo(check::SourceText source, const std::string &language = "");

/**
 * Reads the file of a program that uses gettext. Its entries are known by context and text, and their texts are as
 * written; those of a plural entry follow each other, a form each.
 */
BilingualFile readGettext(check::SourceText source, const std::string &language = "");

} // namespace tool::bilingual

#endif
