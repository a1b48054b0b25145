/**
 * A message file as a value: what it holds for programs (numbers and texts) and for people (names, notes, contexts).
 * It is read with the checker's reader, and written in one form: the same content gives the same bytes.
 */
#ifndef KELTO_TOOLS_BILINGUAL_MESSAGE_DOCUMENT_H
#define KELTO_TOOLS_BILINGUAL_MESSAGE_DOCUMENT_H

#include "bilingual/xml.h"
#include "check/reading/parsed_file.h"

#include <map>
#include <string>
#include <vector>

struct formTable; // kelto.h

namespace tool::bilingual
{

struct Note
{
    Attributes attributes; // "from", "priority"
    std::string text;

    bool operator==(const Note &other) const { return attributes == other.attributes && text == other.text; }
};

struct ContextGroup
{
    Attributes attributes;
    std::vector<Note> contexts;

    bool operator==(const ContextGroup &other) const
    {
        return attributes == other.attributes && contexts == other.contexts;
    }
};

/** The parts of a unit that are meant for people. */
struct Remarks
{
    std::vector<Note> notes;
    std::vector<ContextGroup> contexts;
};

struct MessageUnit
{
    int id = 0;
    std::string label;  // the attribute "id" where the number stands in "ts", as that of a variant does; else empty
    std::string name;   // "resname", or empty
    std::string source; // the digest of the text that it was translated from, or empty
    std::string text;   // as a program gets it
    Remarks remarks;
};

struct MessageDocument
{
    Attributes attributes; // of "file": "source-language", "product-name", "product-version", then the others
    std::vector<MessageUnit> units;
};

/** The attributes and notes of a message file, for which the checker has no use. */
struct FileRemarks
{
    Attributes attributes; // of "file"
    std::map<int, Remarks> units;
    std::map<int, std::string> labels;
    std::map<int, std::string> sources; // the digests of the texts that messages were translated from
};
FileRemarks remarksIn(std::string_view bytes);

/** The value of an attribute of the file; empty where it has none. */
std::string attributeOf(const Attributes &attributes, std::string_view name);

/** The document, whose units are put in the order of their numbers, with its digest. */
std::string messageFileOf(MessageDocument document, formTable *table);

/** Whether a message file was made here and is as it was made; one that is none of ours is as it is meant. */
enum class Origin
{
    foreign,
    untouched,
    edited
};
Origin originOf(std::string_view messageFile);

} // namespace tool::bilingual

#endif
