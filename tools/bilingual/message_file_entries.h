/**
 * Message files on their way into bilingual catalogs: the reference, whose messages are to be translated, and a
 * translation that exists already.
 */
#ifndef KELTO_TOOLS_BILINGUAL_MESSAGE_FILE_ENTRIES_H
#define KELTO_TOOLS_BILINGUAL_MESSAGE_FILE_ENTRIES_H

#include "bilingual/entry.h"
#include "check/file_check.h"
#include "check/reading/parsed_file.h"

#include <optional>
#include <string>

namespace tool::bilingual
{

/** The bytes of a file, under the name that findings give it. */
check::SourceText readSource(const std::string &path);

/** A message file with all that it says. */
struct RemarkedFile
{
    explicit RemarkedFile(check::SourceText source);
    static RemarkedFile read(const std::string &path);

    check::ParsedFile parsed;
    FileRemarks remarks;
};

/**
 * The remarks of a reference on one of its messages.
 * @param number  that of the entry: its selector, whose remarks are about all forms, or the message itself.
 * @param source  the message that is translated.
 */
Remarks hintsFor(const RemarkedFile &reference, int number, int source);

/**
 * The entries of the messages of a reference, in the order of their numbers: none is translated.
 * @param language  the one to translate into, whose forms are wanted; empty where nobody knows it yet.
 */
Bilingual bilingualOf(const RemarkedFile &reference, const std::string &language);

/** The translations that lose something on their way into a bilingual catalog, counted. */
struct Losses
{
    size_t outdated = 0; // translated from another text: now fuzzy
    size_t unknown = 0;  // messages that the reference lacks: now obsolete
};

/** Puts the messages of a translation beside those of the reference. */
Losses addTranslation(Bilingual &catalog, const RemarkedFile &translation);

/** Drops the entries that are empty on both sides: a text that is empty in the reference is empty in every language. */
void dropEmpty(Bilingual &catalog);

/** The notes without the developer's. */
std::vector<Note> notesOfTranslator(const std::vector<Note> &notes, const std::vector<Note> &hints);

} // namespace tool::bilingual

#endif
