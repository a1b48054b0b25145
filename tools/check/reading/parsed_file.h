/**
 * A message file as the checker reads it: its messages, and where each byte of each stands in the file. The reader
 * takes the library's own steps (src/message/grammar); unlike the loader it goes on behind a fault, so that one run
 * tells all. Where a document type or a huge token makes loading a question of limits, it asks the library.
 */
#ifndef KELTO_TOOLS_CHECK_READING_PARSED_FILE_H
#define KELTO_TOOLS_CHECK_READING_PARSED_FILE_H

#include "check/telling/finding.h"
#include "check/telling/suppressions.h"
#include "check/texts/source_text.h"
#include "library/placeholder_mode.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

/** A part of a message's text that comes from one place. */
struct Piece
{
    enum class Kind : uint8_t
    {
        text,       // the file's own characters
        replaced,   // an entity, a character reference, a line break: as a whole
        placeholder // an "x"
    };

    uint32_t begin; // in the text of the message before its escapes are resolved
    uint32_t end;
    Kind kind;
    uint32_t positionBegin; // of a placeholder: where "[", position and "]" begin
    Range place;
};

struct Message
{
    int id = 0;
    bool isComplete = true; // all of its text was understood
    bool hasPlaceholder = false;
    Range unit;   // the tag "trans-unit"
    Range source; // the tag "source"
    size_t textBegin = 0;
    size_t textEnd = 0;
    size_t firstPiece = 0;
    size_t endPiece = 0;
    std::string name; // the attribute "resname"
    bool hasName = false;
    std::string label;    // the attribute "id" where "ts" is the number, for people
    std::string madeFrom; // the digest of the text that it was translated from, or empty
};

struct Attribute
{
    std::string value;
    Range place; // of its value; of the tag where it is not written there
};

class ParsedFile
{
public:
    /** Reads a file. What does not let it load, and a document type, are findings. */
    ParsedFile(SourceText source, Placeholders placeholders);

    SourceText &source() { return m_source; }
    const SourceText &source() const { return m_source; }

    /**
     * In the order of their numbers, those with the same in the order of the file; without units that have no number.
     */
    const std::vector<Message> &messages() const { return m_messages; }

    /** The tag "body", for what concerns the whole. */
    Range body() const { return m_body; }

    /** The attribute "source-language", empty where it is missing or wrong, and where it stands. */
    const std::string &language() const { return m_language.value; }
    Range languagePlace() const { return m_language.place; }

    /** The attributes "product-name" and "product-version", empty where they are missing. */
    const Attribute &productName() const { return m_productName; }
    const Attribute &productVersion() const { return m_productVersion; }

    /** The faults for which the file is not loaded, its document type, and text that is ignored. */
    const Findings &findings() const { return m_findings; }

    /** The rules that notes of the file switch off, in the order of the file. */
    const std::vector<Suppression> &suppressions() const { return m_suppressions; }

    /** Whether all messages of the file were read, so that one that is not here is missing. */
    bool isWhole() const { return m_isWhole; }

    /** The text of a message before its escapes are resolved; a zero byte follows it. */
    std::string_view rawText(const Message &message) const
    {
        return std::string_view(m_texts).substr(message.textBegin, message.textEnd - message.textBegin);
    }

    /** Where a part of that text stands in the file. */
    Range locate(const Message &message, Range range) const;

    /** Whether that byte of it is text of the file, and not a part of a placeholder. */
    bool isText(const Message &message, size_t offset) const;

    /** The pieces of a message, in the order of its text. */
    struct Pieces
    {
        const Piece *first, *last;

        const Piece *begin() const { return first; }
        const Piece *end() const { return last; }
    };
    Pieces piecesOf(const Message &message) const
    {
        return {m_pieces.data() + message.firstPiece, m_pieces.data() + message.endPiece};
    }

    /** The value of an attribute inside its tag; the whole tag where it is not written there. */
    Range locateAttribute(Range tag, std::string_view name) const;

private:
    friend class Reader;
    friend class ParsedFileBuilder;

    explicit ParsedFile(SourceText source) : m_source(std::move(source)) {}

    const Piece &pieceAt(const Message &message, size_t offset) const;
    size_t locateEdge(const Piece &piece, size_t offset, bool isEnd) const;
    size_t behindExpanded(Range value, size_t utf8Bytes) const;

    SourceText m_source;
    std::vector<Message> m_messages;
    std::vector<Piece> m_pieces;
    std::string m_texts;
    Findings m_findings;
    std::vector<Suppression> m_suppressions;
    Range m_body;
    Attribute m_language;
    Attribute m_productName;
    Attribute m_productVersion;
    bool m_isWhole = true;
};

} // namespace tool::check

#endif
