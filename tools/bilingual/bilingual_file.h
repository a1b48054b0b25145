/**
 * A bilingual file as it was read, whatever form it is of: the catalog in it, and where its entries stand. Its readers
 * make one (xliff_reader, po_reader); numbers for the entries of a gettext program are put into it (po_messages,
 * assign); an import compares it with the reference.
 */
#ifndef KELTO_TOOLS_BILINGUAL_BILINGUAL_FILE_H
#define KELTO_TOOLS_BILINGUAL_BILINGUAL_FILE_H

#include "bilingual/entry.h"

#include <utility>
#include <vector>

namespace tool::bilingual
{

/** A bilingual catalog and the file that it was read from. */
struct BilingualFile
{
    Bilingual content;
    check::SourceText source;
    check::Findings findings; // against the file as a whole
    check::Range body;
    check::Range languagePlace;
    bool isWhole = true;
    bool hasColumns = true;                       // else places are lines
    std::vector<std::pair<size_t, size_t>> lines; // of kelto-po's: where an entry begins, and its line in the PO file

    /** The line of the entry that a place is in. */
    size_t lineOf(check::Range place) const;
};

} // namespace tool::bilingual

#endif
