/**
 * What the program says, in the language of the user: the texts of its own message files, formatted by the library. The
 * English is compiled in, for machines, and for where there is no file, or none that fits, or the library does not
 * start. All texts are UTF-8; complain() and printText() put them into the charset of the terminal.
 */
#ifndef KELTO_TOOLS_TEXT_H
#define KELTO_TOOLS_TEXT_H

#include <cstdint>
#include <string>
#include <vector>

struct KTProblem; // kelto.h

namespace tool
{

/** The texts, by the names that they have in messages/en/kelto.xlf. */
enum class Text : unsigned
{
#define KELTO_TEXT(id, name, english) name = (id),
#include "texts.inc"
#undef KELTO_TEXT
};

struct Shown;

/** A text and what it shows, in no language yet: it is put into words when somebody is to read it. */
struct Phrase
{
    Text text{};
    std::vector<Shown> values = {};
};

/** What a text shows at one of its positions: words as they are, a number for "u", or words of the language. */
struct Shown
{
    Shown(std::string asIs) : words(std::move(asIs)) {}
    Shown(const char *asIs) : words(asIs) {}
    Shown(unsigned value) : number(value), isNumber(true) {}
    Shown(unsigned long value) : number(value), isNumber(true) {}
    Shown(Phrase part) : phrase{std::move(part)} {}

    std::string words;
    uint64_t number = 0;
    bool isNumber = false;
    std::vector<Phrase> phrase = {}; // one, or none
};

/** In the language of the user. */
std::string say(const Phrase &phrase);
std::string say(Text text, const std::vector<Shown> &values = {});

/** In English, whoever the user is: what other programs read, and what a build keeps. */
std::string sayInEnglish(const Phrase &phrase);

/** A text that selects the one for a number, which is its first value. */
Phrase counted(Text text, size_t count, const std::vector<Shown> &values = {});

/** The text with this number, under which the library has the same in English; `otherwise` where there is none. */
Shown textNumbered(unsigned number, const char *otherwise, const std::vector<Shown> &values = {});

/** What is said of a fault for which the parser of XML has a number. @param otherwise  what the parser says. */
Shown textOfXmlError(int error, const char *otherwise);

/**
 * A text of the help in the language of the user; it is not formatted. Without a translation it is the English, which
 * stands where the subcommand and its options are declared.
 * @param about  "usage", or a subcommand and what of it: "check --quiet".
 */
std::string helpText(const std::string &about, const std::string &english);

/** What a result of the library means. */
std::string resultText(int result);

/** What is wrong with a format. */
Shown problemShown(const KTProblem &problem);

} // namespace tool

#endif
