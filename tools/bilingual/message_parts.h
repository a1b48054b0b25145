/**
 * A message taken apart: its words, which people translate, and its conversions, which they only move. Put together
 * again, the parts are the message to the byte.
 */
#ifndef KELTO_TOOLS_BILINGUAL_MESSAGE_PARTS_H
#define KELTO_TOOLS_BILINGUAL_MESSAGE_PARTS_H

#include "check/texts/digest.h"

#include <string>
#include <string_view>
#include <vector>

struct formTable; // kelto.h

namespace tool::bilingual
{

struct Part
{
    bool isPlaceholder;
    std::string text; // of a placeholder the whole conversion: "%-5d[2]"

    /** "%-5d", and "2" as it is written. */
    std::string_view conversion() const { return std::string_view(text).substr(0, text.rfind('[')); }
    std::string_view position() const
    {
        const size_t begin = text.rfind('[') + 1;
        return std::string_view(text).substr(begin, text.size() - begin - 1);
    }

    bool operator==(const Part &other) const { return isPlaceholder == other.isPlaceholder && text == other.text; }
};
using Parts = std::vector<Part>;

/**
 * The parts of a message, its escapes resolved. Where format calls refuse it, it is one text.
 * @param table  the conversions that are known.
 */
Parts partsOf(const std::string &message, formTable *table);

/**
 * The same, and conversions are taken out of a message that format calls refuse too: what is not understood stays as
 * it is.
 */
Parts roughPartsOf(const std::string &message, formTable *table);

std::string textOf(const Parts &parts);

/** A text as message files write it: backslashes, tabs and line ends as escapes. */
std::string escaped(std::string_view text);

/** The text that an escaped text stands for. */
std::string unescaped(std::string_view text);

using check::digestOf;
using check::sourceDigest;

} // namespace tool::bilingual

#endif
