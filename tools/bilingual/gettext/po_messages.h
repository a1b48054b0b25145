/**
 * Messages in PO files: conversions of C become ours, the forms of a plural entry become those that the language needs,
 * and findings are told in the words of the file.
 */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_PO_MESSAGES_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_PO_MESSAGES_H

#include "bilingual/bilingual_file.h"

#include <vector>

namespace tool::bilingual
{

/**
 * Makes messages of the texts of a PO file.
 * @param file  its entries have numbers and conversions of ours; those of a plural entry follow each other, a form
 *              each.
 */
BilingualFile withMessages(BilingualFile file);

/** Drops what is found of typed conversions: those of a PO file are never anything else. */
void dropTypedConversions(check::Findings &findings);

/** Tells findings in the words of a PO file: their place is a line, and their conversions are those of C. */
void tellInPo(std::vector<check::Diagnostic> &diagnostics);

} // namespace tool::bilingual

#endif
