/**
 * From a bilingual file to a message file: which of its translations are finished, what the checker says of them, and
 * the message file that they make.
 */
#ifndef KELTO_TOOLS_BILINGUAL_IMPORT_H
#define KELTO_TOOLS_BILINGUAL_IMPORT_H

#include "bilingual/bilingual_file.h"
#include "bilingual/message_file_entries.h"
#include "check/file_check.h"

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
    size_t refused = 0; // by the checker
};

/** "43 of 45 translated, 2 fuzzy, 0 missing". */
std::string sentenceOf(const Counts &counts);

/** A message that programs do not get. */
struct Unfinished
{
    enum class Kind
    {
        missing,
        fuzzy,
        refused
    };

    Kind kind;
    std::string key; // "12[few]"
    std::string name;
    std::string source;
    std::string target;
    std::string examples;              // of a plural form, the numbers that take it
    std::vector<std::string> findings; // "de.po:12: …", for people
};

/** What came out of a bilingual file. */
struct Imported
{
    std::vector<check::Diagnostic> diagnostics;
    MessageDocument document; // without what was refused
    Counts counts;
    std::vector<Unfinished> unfinished; // in the order of the numbers
    std::string language;               // as the file names it
    bool isWhole = true;                // the file was read to its end
};

/**
 * Checks the translations of a file, and makes a message file of those that are finished and right.
 * @param reference  of the same messages; its source is indexed.
 */
Imported import(BilingualFile file, const RemarkedFile &source, const check::Reference &reference,
                const check::Levels &levels, const ImportOptions &options);

} // namespace tool::bilingual

#endif
