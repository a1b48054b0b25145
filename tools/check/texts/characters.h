/** What single characters are: the questions that several rules ask of them. */
#ifndef KELTO_TOOLS_CHECK_TEXTS_CHARACTERS_H
#define KELTO_TOOLS_CHECK_TEXTS_CHARACTERS_H

#include "check/texts/utf8.h"

#include <string_view>
#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace tool::check
{

constexpr bool isAsciiLetter(char32_t character)
{
    return (character | 0x20U) >= 'a' && (character | 0x20U) <= 'z';
}

constexpr bool isAsciiDigit(char32_t character)
{
    return character >= '0' && character <= '9';
}

constexpr bool isAsciiLetter(char byte)
{
    return isAsciiLetter(char32_t{static_cast<unsigned char>(byte)});
}

constexpr bool isAsciiDigit(char byte)
{
    return isAsciiDigit(char32_t{static_cast<unsigned char>(byte)});
}

inline bool isLetter(char32_t character)
{
    return character < 0x80 ? isAsciiLetter(character) : u_isalpha(static_cast<UChar32>(character)) != 0;
}

inline bool isWhiteSpace(char32_t character)
{
    constexpr std::string_view ascii = " \t\n\v\f\r";
    return character < 0x80 ? ascii.find(static_cast<char>(character)) != std::string_view::npos
                            : u_isUWhiteSpace(static_cast<UChar32>(character)) != 0;
}

constexpr bool isAmong(char32_t character, std::u32string_view characters)
{
    return characters.find(character) != std::u32string_view::npos;
}

constexpr bool isQuotationMark(char32_t character)
{
    return isAmong(character, U"\"'„“”«»‘’‚‹›「」『』");
}

inline UScriptCode scriptOf(char32_t character)
{
    if (character < 0x80)
        return isAsciiLetter(character) ? USCRIPT_LATIN : USCRIPT_COMMON;
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(static_cast<UChar32>(character), &status);
}

/** The code point that ends at an offset; 0 at the beginning. */
constexpr char32_t characterBefore(std::string_view text, size_t end)
{
    if (end == 0)
        return 0;
    size_t at = stepBackUtf8(text, end);
    return takeUtf8(text, at);
}

} // namespace tool::check

#endif
