/**
 * Selector messages, which stand for one message of a row: what a selector says, which messages are in its row, and
 * what they are called. Translators see the messages of a row as "12[few]"; the selector itself is not for them.
 */
#ifndef KELTO_TOOLS_BILINGUAL_SELECTORS_H
#define KELTO_TOOLS_BILINGUAL_SELECTORS_H

#include "bilingual/entry.h"
#include "check/reading/parsed_file.h"
#include "check/texts/formats.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool::bilingual
{

/** Reads "%101plural[1]"; nothing where a message is another one. */
std::optional<Selector> readSelector(const std::string &message);

/** "few", "=0", or "=3" of a "select". */
std::string labelAt(const Selector &selector, int place);
std::optional<int> placeOf(const Selector &selector, const std::string &label);

/** The selectors of a message file and the messages of their rows. */
class Rows
{
public:
    explicit Rows(const check::ParsedFile &parsed);

    bool isEmpty() const { return m_selectors.empty(); }
    const std::map<int, Selector> &selectors() const { return m_selectors; }
    const Selector *find(int number) const;

    /** The name of a message of a row; nothing for any other message. */
    const Key *keyOf(int id) const;

    /** The message at a place of a row; null where there is none, or it is a selector. */
    const check::Message *variant(int number, int place) const;

    /** The one that a translator is shown for a place that the row may not have; null where there is none at all. */
    const check::Message *sourceFor(int number, int place) const;

    const check::Message *message(int id) const;

private:
    std::map<int, const check::Message *> m_messages;
    std::map<int, Selector> m_selectors; // by the number of the message
    std::map<int, Key> m_keys;           // of the messages of rows, by their numbers
};

/** The first whole number that a text takes, which is how many there are of something. */
struct CountArgument
{
    unsigned argument = 0; // from 1 on; 0 where there is none
    int position = 0;
    check::Kind kind = check::Kind::integer32;
};
CountArgument countArgumentOf(const check::Format &format);

/** The places that numbers reach in a language. */
std::vector<int> neededPlaces(const Selector &selector, const std::string &language);

/** "few: 2, 3, 4, 22" for a place of a row; empty where nothing is to be said. */
std::string exampleFor(const Selector &selector, int place, const std::string &language);

/** The messages without selectors, as a ParsedFile of the same bytes. */
check::ParsedFile withoutSelectors(const check::ParsedFile &parsed, const Rows &rows);

} // namespace tool::bilingual

#endif
