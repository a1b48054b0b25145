#include "output.h"

#include <algorithm>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace
{

using kelto::locale::Line;
using kelto::locale::Units;

constexpr UChar32 replacementCharacter = 0xFFFD;

UChar32 takeCodePoint(Units &text)
{
    UChar32 codePoint = 0;
    size_t taken = 0;
    U16_NEXT(text.begin, taken, text.length, codePoint);
    text = {text.begin + taken, text.length - taken};
    return U_IS_SURROGATE(codePoint) ? replacementCharacter : codePoint;
}

/** Writes eight units at a time while all are ASCII; where they end. */
const UChar *narrowEights(const UChar *at, [[maybe_unused]] const UChar *end, [[maybe_unused]] char *&out)
{
#ifdef __SSE2__
    for (; end - at >= 8; at += 8, out += 8)
    {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i beyond = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(beyond, _mm_setzero_si128())) != 0xFFFF)
            break;
        _mm_storel_epi64(reinterpret_cast<__m128i *>(out), _mm_packus_epi16(units, units));
    }
#endif
    return at;
}

uint64_t lengthOf(Units text, const UCS2 *)
{
    return text.length;
}

uint64_t lengthOf(Units text, const char *)
{
    uint64_t length = 0;
    while (text.length > 0)
    {
        const UChar32 codePoint = takeCodePoint(text);
        length += static_cast<uint64_t>(U8_LENGTH(codePoint)); // a macro, which asks more than once
    }
    return length;
}

UCS2 *copy(Units text, UCS2 *out)
{
    return std::copy_n(text.begin, text.length, out);
}

char *copy(Units text, char *out)
{
    return kelto::locale::toUTF8(text, out);
}

uint64_t mostOf(uint64_t units, const UCS2 *)
{
    return units;
}

uint64_t mostOf(uint64_t units, const char *)
{
    return units * kelto::locale::mostBytesPerUnit;
}

template <typename Unit> Unit *writeParts(const Line &line, Unit *out)
{
    out = std::fill_n(out, line.blanksBefore, static_cast<Unit>(' '));
    out = copy(line.head, out);
    for (uint64_t i = 0; i < line.zeros; ++i)
        out = copy(line.zero, out);
    if (line.tail.length > 0)
        out = copy(line.tail, out);
    return std::fill_n(out, line.blanksBehind, static_cast<Unit>(' '));
}

// How long a text is in UTF-8 is only asked where it might not fit.
template <typename Unit> int writeLine(kelto::locale::Output &output, const Line &line)
{
    Unit *out = nullptr;
    const uint64_t blanks = line.blanksBefore + line.blanksBehind;
    const uint64_t units = line.head.length + line.zeros * line.zero.length + line.tail.length;
    if (Unit *const begin = output.reserve<Unit>(blanks + mostOf(units, out)))
    {
        output.finish(writeParts(line, begin));
        return 0;
    }
    const uint64_t length =
        blanks + lengthOf(line.head, out) + line.zeros * lengthOf(line.zero, out) + lengthOf(line.tail, out);
    const int result = output.claim(length, out);
    if (result == 0)
        writeParts(line, out);
    return result;
}

} // namespace

namespace kelto::locale
{

// Many are ASCII alone; of the others most characters are, and most others have three bytes: the blanks between groups.
char *toUTF8(Units text, char *out) noexcept
{
    const UChar *const end = text.begin + text.length;
    for (const UChar *at = narrowEights(text.begin, end, out); at != end;)
    {
        size_t written = 0;
        if (*at < 0x80)
            *out++ = static_cast<char>(*at++);
        else if (*at > 0x7FF && !U16_IS_SURROGATE(*at))
        {
            const auto codePoint = static_cast<UChar32>(*at++);
            U8_APPEND_UNSAFE(out, written, codePoint);
        }
        else
        {
            Units rest = {at, static_cast<size_t>(end - at)};
            const UChar32 codePoint = takeCodePoint(rest);
            U8_APPEND_UNSAFE(out, written, codePoint);
            at = rest.begin;
        }
        out += written;
    }
    return out;
}

int Output::write(const Line &line) noexcept
{
    return m_isUTF8 ? writeLine<char>(*this, line) : writeLine<UCS2>(*this, line);
}

int Output::writePadded(const Spec &spec, Units text) noexcept
{
    // The usual text, with nothing around it.
    if (spec.width <= 0 && m_isUTF8 && text.length * mostBytesPerUnit < m_room)
    {
        finish(toUTF8(text, place<char>()));
        return 0;
    }
    Line line = {text};
    (spec.has(FLAG_MINUS) ? line.blanksBehind : line.blanksBefore) = spec.missing(text.length);
    return write(line);
}

} // namespace kelto::locale
