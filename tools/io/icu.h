/**
 * ICU where Kelto's interface has no word: converters that count what they replace, and the sets of what a charset can
 * show. Text itself is converted by Kelto; see charset.h.
 */
#ifndef KELTO_TOOLS_ICU_H
#define KELTO_TOOLS_ICU_H

#include <memory>
#include <string>
#include <string_view>
#include <unicode/ucnv.h>
#include <unicode/uset.h>

namespace tool
{

struct CloseConverter
{
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

struct CloseSet
{
    void operator()(USet *set) const { uset_close(set); }
};
using CharacterSet = std::unique_ptr<USet, CloseSet>;

/** The converter that Kelto uses for a charset of this name; null where there is none. */
Converter openConverter(const std::string &charset);

/** The characters that a charset can show. */
CharacterSet charactersOf(UConverter *converter);

/** Whether byte 00 is U+0000 in a charset, and part of no other character. */
bool zeroByteEndsText(const std::string &charset);

/** The loss of a whole text on its way out of a charset. */
struct DecodingLoss
{
    size_t characters = 0; // malformed, or without a meaning in the charset: replaced
    bool asDecoded = true; // decoding the text as one gives what it was compared with
};
DecodingLoss lossOfDecoding(const std::string &charset, std::string_view bytes, std::u16string_view decoded);

/** The loss of a whole text on its way into a charset. */
struct EncodingLoss
{
    size_t characters = 0;   // that the charset cannot show: replaced, or left out
    size_t replacements = 0; // of them, U+FFFD: what an earlier loss may have left
};
EncodingLoss lossOfEncoding(const std::string &charset, std::u16string_view text);

} // namespace tool

#endif
