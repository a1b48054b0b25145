/**
 * From a bilingual file to a message file: which of its translations are finished, what the checker says of them, and
 * the message file that they make.
 */
#ifndef KELTO_TOOLS_BILINGUAL_IMPORT_H
#define KELTO_TOOLS_BILINGUAL_IMPORT_H

#include "bilingual/entry.h"
#include "bilingual/source_file.h"
#include "check/checks.h"

#include <string>
#include <vector>

namespace tool::bilingual
{

struct ImportOptions
{
    formTable *table = nullptr;
    bool takesFuzzy = false;
    std::string language; // in place of the file's
};

struct Counts
{
    size_t messages = 0; // of the reference, those with a text
    size_t finished = 0; // translations that are taken; the fuzzy ones too where they are
    size_t fuzzy = 0;
    size_t missing = 0;
};

/** What came out of a bilingual file. */
struct Imported
{
    std::vector<check::Diagnostic> diagnostics;
    MessageDocument document; // without what was refused
    Counts counts;
    bool isWhole = true; // the file was read to its end
};

/**
 * Checks the translations of a file, and makes a message file of those that are finished and right.
 * @param reference  of the same messages; its source is indexed.
 */
Imported import(BilingualFile file, const SourceFile &source, const check::Reference &reference,
                const check::Levels &levels, const ImportOptions &options);

} // namespace tool::bilingual

#endif
