/**
 * UTF-8 read code point by code point, malformed text included: what is malformed becomes U+FFFD in the same places,
 * and as often, as in a conversion of the whole text.
 */
#ifndef KELTO_STRCONV_UTF8_TEXT_H
#define KELTO_STRCONV_UTF8_TEXT_H

#include <cstddef>
#include <cstdint>
#include <unicode/utf8.h>

namespace kelto
{

inline bool isAsciiByte(char byte) noexcept
{
    return static_cast<signed char>(byte) >= 0;
}

/** Takes the code point at the cursor, which is before `end`. */
inline UChar32 takeCodePoint(const char *&cursor, const char *end) noexcept
{
    const auto *const bytes = reinterpret_cast<const uint8_t *>(cursor);
    ptrdiff_t taken = 0;
    UChar32 codePoint;
    U8_NEXT_OR_FFFD(bytes, taken, end - cursor, codePoint);
    cursor += taken;
    return codePoint;
}

/** The bytes of a code point that takeCodePoint() gives. */
constexpr size_t utf8Length(UChar32 codePoint) noexcept
{
    if (codePoint <= 0x7F)
        return 1;
    return codePoint <= 0x7FF ? 2 : codePoint <= 0xFFFF ? 3 : 4;
}

/** The UCS-2 units of a text of `length` bytes. */
inline size_t countUnits(const char *text, size_t length) noexcept
{
    size_t units = 0;
    for (const char *const end = text + length; text != end; ++units)
        if (isAsciiByte(*text))
            ++text;
        else
            units += takeCodePoint(text, end) > 0xFFFF ? 1 : 0;
    return units;
}

} // namespace kelto

#endif
