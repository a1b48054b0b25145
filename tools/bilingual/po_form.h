/** PO files as bilingual catalogs: the number of a message is the context of its entry. */
#ifndef KELTO_TOOLS_BILINGUAL_PO_FORM_H
#define KELTO_TOOLS_BILINGUAL_PO_FORM_H

#include "bilingual/entry.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool::bilingual
{

/** Whether bytes are a PO file rather than an XML document. */
bool isPo(std::string_view bytes);

/** @param language  of the translation, where the header names none. */
BilingualFile readPo(check::SourceText source, const std::string &language = "");

/**
 * Reads the file of a program that uses gettext: its entries are known by context and text, and as they are written;
 * those of plural entries follow each other, a form each.
 */
BilingualFile readGettext(check::SourceText source, const std::string &language = "");

/** Makes of such a file, whose entries have numbers and conversions of ours by now, what readPo() gives. */
BilingualFile withMessages(BilingualFile file);

/** Puts findings in a PO file, which have a line, as such a file has its conversions: they are always typed there. */
void tellInPo(std::vector<check::Diagnostic> &diagnostics);

/** A field of the header, empty where there is none. */
std::string headerField(std::string_view header, std::string_view name);

std::string poOf(const Bilingual &catalog, formTable *table);

} // namespace tool::bilingual

#endif
