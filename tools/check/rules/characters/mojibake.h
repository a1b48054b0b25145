/**
 * Texts that were UTF-8 once and were then read as another charset: "GrÃ¶ÃŸe" for "Größe". Each character of such a
 * text is what the other charset makes of a byte, and the bytes are UTF-8 again; that some of these are also how
 * people write (a word in capital letters that ends in "Ã", and an ellipsis) is told apart here.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_CHARACTERS_MOJIBAKE_H
#define KELTO_TOOLS_CHECK_RULES_CHARACTERS_MOJIBAKE_H

#include "check/texts/source_text.h"

#include <optional>
#include <string>
#include <string_view>

namespace tool::check
{

struct Misreading
{
    Range place;         // in the text
    std::string meant;   // what stands there, in UTF-8
    const char *charset; // by which it was read
};

/** The first part of a text that was read as another charset. */
std::optional<Misreading> findMisreading(std::string_view utf8Text);

/** Whether bytes are UTF-8 that goes beyond ASCII; where that begins. */
std::optional<size_t> beyondAscii(std::string_view bytes);

} // namespace tool::check

#endif
