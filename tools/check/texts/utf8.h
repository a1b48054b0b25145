/** Code points of UTF-8, one by one: what of it is malformed is U+FFFD, a byte at a time. */
#ifndef KELTO_TOOLS_CHECK_TEXTS_UTF8_H
#define KELTO_TOOLS_CHECK_TEXTS_UTF8_H

#include <cstddef>
#include <string_view>

namespace tool::check
{

constexpr bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

/** The bytes that a code point takes. */
constexpr size_t utf8Size(char32_t character)
{
    return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

/** The code point at `at`, which lies in the text and moves behind it. */
constexpr char32_t takeUtf8(std::string_view text, size_t &at)
{
    const auto first = static_cast<unsigned char>(text[at++]);
    if (first < 0x80)
        return first;
    const size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    char32_t character = first & (0x7FU >> size);
    for (size_t i = 0; i < size - 1; ++i)
    {
        if (at + i >= text.size() || !isContinuation(text[at + i]))
            return 0xFFFD;
        character = character << 6U | (static_cast<unsigned char>(text[at + i]) & 0x3FU);
    }
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    if (first < 0xC0 || utf8Size(character) != size || isSurrogate || character > 0x10FFFF)
        return 0xFFFD;
    at += size - 1;
    return character;
}

/** Where the code point begins that ends at `end`, which is not 0. */
constexpr size_t stepBackUtf8(std::string_view text, size_t end)
{
    --end;
    while (end > 0 && isContinuation(text[end]))
        --end;
    return end;
}

} // namespace tool::check

#endif
