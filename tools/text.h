/**
 * What the program says, in the language of the user: the texts of its own message files, formatted by the library. The
 * English is compiled in, for where there is no file, or none that fits, or the library does not start. All texts are
 * UTF-8; complain() and printText() put them into the charset of the terminal.
 */
#ifndef KELTO_TOOLS_TEXT_H
#define KELTO_TOOLS_TEXT_H

#include "kelto.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tool
{

/** The texts, by the names that they have in messages/en/kelto.xlf. */
enum class Text : unsigned
{
#define KELTO_TEXT(id, name, english) name = (id),
#include "texts.inc"
#undef KELTO_TEXT
};

/** What a text shows at one of its positions: a text, or a number for "u". */
struct Shown
{
    Shown(std::string words) : text(std::move(words)) {}
    Shown(const char *words) : text(words) {}
    Shown(unsigned value) : number(value), isNumber(true) {}
    Shown(unsigned long value) : number(value), isNumber(true) {}

    std::string text;
    uint64_t number = 0;
    bool isNumber = false;
};

std::string say(Text text, const std::vector<Shown> &values = {});

/** The one for a single thing, else the one for many, whose first value is their number. */
std::string sayCount(Text one, Text many, size_t count, const std::vector<Shown> &values = {});

/** What a result of the library means. */
std::string resultText(int result);

/** What is wrong with a format. */
std::string problemText(const KTProblem &problem);

} // namespace tool

#endif
