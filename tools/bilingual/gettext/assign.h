/**
 * Coming from gettext, whose programs know a message by its text: each gets a number, and a text that messages can
 * hold. The template of such a program becomes the reference, and its translations, by the same numbers, what `import`
 * reads.
 */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_ASSIGN_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_ASSIGN_H

#include "bilingual/bilingual_file.h"
#include "bilingual/gettext/numbers_file.h"
#include "check/telling/finding.h"

#include <string>
#include <vector>

namespace tool::bilingual
{

/** What came out of a template. */
struct Assigned
{
    std::vector<check::Diagnostic> diagnostics;
    MessageDocument document; // without what was refused
    size_t messages = 0;      // of the template
};

/**
 * Makes a message file of a template.
 * @param file      as readGettext() gives it.
 * @param numbers   gets those that are new.
 * @param language  of the texts.
 */
Assigned assignNumbers(BilingualFile file, NumbersFile &numbers, const std::string &language, formTable *table,
                       const check::Levels &levels);

/** A translation of the same program, its entries by their numbers, as readPo() gives one. */
BilingualFile withNumbers(BilingualFile file, const NumbersFile &numbers, formTable *table);

} // namespace tool::bilingual

#endif
