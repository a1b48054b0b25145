/**
 * Pseudo-localised texts: readable to who knows the original, and strange enough that a look at the program shows which
 * texts are not translated, cut off, put together, or shown in a font without accents or in one direction only.
 */
#ifndef KELTO_TOOLS_PSEUDO_PSEUDO_TEXT_H
#define KELTO_TOOLS_PSEUDO_PSEUDO_TEXT_H

#include "bilingual/message_parts.h"

#include <string>

namespace tool::pseudo
{

enum class Style
{
    accents,  // letters with accents
    direction // letters as they are, in runs that read from right to left
};

/**
 * The message with brackets around what stands between the white space at its ends, and longer; its conversions are as
 * they were. One without a character to be seen stays as it is.
 * @param percent  by how much of its words' characters it gets longer.
 */
std::string pseudoOf(const bilingual::Parts &original, Style style, unsigned percent);

} // namespace tool::pseudo

#endif
