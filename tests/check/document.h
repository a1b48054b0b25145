/** Message files as the tests of the checker write them. */
#ifndef KELTO_TESTS_CHECK_DOCUMENT_H
#define KELTO_TESTS_CHECK_DOCUMENT_H

#include "check/texts/utf8.h"

#include <string>

/** A file whose body holds these lines, of which the first is line 2. */
inline std::string document(const std::string &body)
{
    return "<xliff><file source-language=\"de\" product-name=\"S\" product-version=\"1\"><header/><body>\n" + body +
           "\n</body></file></xliff>\n";
}

/** One message, number 1, whose text begins in line 2, column 1. */
inline std::string unit(const std::string &text)
{
    return document("<trans-unit id='1'><source>\n" + text + "</source></trans-unit>");
}

/** With its byte order mark. */
inline std::string inUtf16(const std::string &text, bool isBig)
{
    std::string bytes = isBig ? "\xFE\xFF" : "\xFF\xFE";
    for (size_t at = 0; at < text.size();)
    {
        const char32_t character = tool::check::takeUtf8(text, at);
        const auto put = [&](char32_t unit) {
            const char high = static_cast<char>(unit >> 8U);
            const char low = static_cast<char>(unit);
            bytes += isBig ? high : low;
            bytes += isBig ? low : high;
        };
        if (character > 0xFFFF)
            put(0xD7C0 + (character >> 10U));
        put(character > 0xFFFF ? 0xDC00 + (character & 0x3FFU) : character);
    }
    return bytes;
}

/** In ISO-8859-1; empty where that lacks a character. */
inline std::string inLatin1(const std::string &text)
{
    std::string bytes;
    for (size_t at = 0; at < text.size();)
    {
        const char32_t character = tool::check::takeUtf8(text, at);
        if (character > 0xFF)
            return "";
        bytes += static_cast<char>(character);
    }
    return bytes;
}

#endif
