/**
 * A bilingual catalog as a value, whatever file it stands in: an entry per message, with the text of the reference and
 * its translation. Entries are known by their numbers; nothing is ever matched by text.
 */
#ifndef KELTO_TOOLS_BILINGUAL_ENTRY_H
#define KELTO_TOOLS_BILINGUAL_ENTRY_H

#include "bilingual/message_document.h"
#include "check/reading/parsed_file.h"
#include "library/selector.h"

#include <climits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool::bilingual
{

/** The namespace of our own attributes in files of other programs. */
constexpr const char *ourNamespace = "urn:kelto:translation";

/** The kind of an XLIFF 1.2 unit whose message is gone. */
constexpr const char *obsoleteType = "x-obsolete";

/** Whose notes the hints are, in files that say so. */
constexpr const char *developer = "developer";

/** The same of notes of ours, which are made anew each time. */
constexpr const char *ourselves = "kelto";

enum class State
{
    untranslated,
    fuzzy, // somebody has to look at it again
    finished
};

/** The name of an entry: the number of its message; of a variant, the number of its selector and a label. */
struct Key
{
    int number = 0;
    std::string label; // "few", "=0", or empty

    bool operator==(const Key &other) const { return number == other.number && label == other.label; }
    bool operator<(const Key &other) const
    {
        return number != other.number ? number < other.number : label < other.label;
    }
};

/** The content of a message that stands for one of a row. */
struct Selector
{
    using Kind = tool::Selector::Kind;

    Kind kind;
    int row;
    int digits; // shown behind the mark
    std::string text;

    int places() const { return static_cast<int>(tool::Selector::rowLengthOf(kind)); }

    /** The number of the message at a place; 0 where no message can be. */
    int messageAt(int place) const { return row <= INT_MAX - place ? row + place : 0; }
};

/** "12[few]". */
std::string written(const Key &key);

/** Reads "12", "12[few]", "12.few" and "12.is0"; nothing for any other text. */
std::optional<Key> readKey(std::string_view text);

/** A text as it stands in a bilingual file. */
struct WrittenText
{
    std::string raw; // with its escapes
    std::vector<check::Piece> pieces;
    check::Range tag;       // where it begins
    bool isComplete = true; // all of it was understood
};

/**
 * A finding at a place of a bilingual file.
 * @param message  0 where it concerns the file as a whole.
 */
check::Finding findingAt(check::Range place, check::Rule rule, int message, Phrase text);

struct Entry
{
    Key key;
    std::string name;
    std::string source; // as a program gets it
    std::string target; // the same
    bool hasTarget = false;
    State state = State::untranslated;
    bool isObsolete = false;                   // the reference has no such message any more
    std::optional<std::string> previousSource; // what a fuzzy entry was translated from
    std::vector<Note> hints;                   // of those who wrote the program
    Remarks remarks;                           // of translators

    check::Range place;       // of the entry, where it was read
    size_t line = 0;          // the same in the file that kelto-po read
    int form = -1;            // of a plural entry of a PO file
    std::string plural;       // of the same, the text for more than one
    std::string context;      // where it is no number: of an entry of a program that uses gettext
    std::string format;       // of the same, "c-format", if it has conversions
    bool hasControls = false; // characters that kelto-po could not hand on
    WrittenText written;
    check::Findings findings; // what is wrong with its translation
};

struct Bilingual
{
    std::string sourceLanguage;
    std::string targetLanguage;
    std::string original;              // the name of the reference
    Attributes attributes;             // of the reference's "file"
    std::string header;                // of a PO file
    std::string charset;               // of the same
    std::vector<Entry> entries;        // those of a row together
    std::map<int, Selector> selectors; // of the entries with labels, by their numbers
    bool copiesSource = false;         // writes the source as the target of what nobody has translated
};

/** Findings about entries whose number stands in the file for a second time: one of both would be lost. */
check::Findings repetitionsIn(const Bilingual &catalog);

} // namespace tool::bilingual

#endif
