/**
 * The leading run of ASCII in a text, copied between UTF-8 and UCS-2 sixteen units at a step. Most texts are ASCII from
 * end to end and need no more than this. None of the three functions at the end reads or writes at `limit` or beyond
 * it, nor writes anything behind the run.
 */
#ifndef KELTO_STRCONV_ASCII_RUN_H
#define KELTO_STRCONV_ASCII_RUN_H

#include "kelto.h"

#include <cstring>
#include <type_traits>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace kelto
{

/* The next three widen 16, 8 and 4 bytes. Where one of these is not ASCII they write nothing and return false. */

#ifdef __SSE2__

inline bool widenSixteen(const char *source, UCS2 *destination) noexcept
{
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(source));
    if (_mm_movemask_epi8(bytes) != 0)
        return false;
    auto *const units = reinterpret_cast<__m128i *>(destination);
    _mm_storeu_si128(units, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    _mm_storeu_si128(units + 1, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
    return true;
}

inline bool widenEight(const char *source, UCS2 *destination) noexcept
{
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(source));
    if (_mm_movemask_epi8(bytes) != 0)
        return false;
    _mm_storeu_si128(reinterpret_cast<__m128i *>(destination), _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    return true;
}

inline bool areAscii(uint32_t bytes) noexcept
{
    return (bytes & 0x80808080) == 0;
}

inline bool widenFour(const char *source, UCS2 *destination) noexcept
{
    uint32_t bytes;
    std::memcpy(&bytes, source, sizeof bytes);
    if (!areAscii(bytes))
        return false;
    const __m128i units = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(bytes)), _mm_setzero_si128());
    _mm_storel_epi64(reinterpret_cast<__m128i *>(destination), units);
    return true;
}

/* The next three copy bytes without widening. */

inline bool copySixteen(const char *source, char *destination) noexcept
{
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(source));
    if (_mm_movemask_epi8(bytes) != 0)
        return false;
    _mm_storeu_si128(reinterpret_cast<__m128i *>(destination), bytes);
    return true;
}

inline bool copyEight(const char *source, char *destination) noexcept
{
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(source));
    if (_mm_movemask_epi8(bytes) != 0)
        return false;
    _mm_storel_epi64(reinterpret_cast<__m128i *>(destination), bytes);
    return true;
}

inline bool copyFour(const char *source, char *destination) noexcept
{
    uint32_t bytes;
    std::memcpy(&bytes, source, sizeof bytes);
    if (!areAscii(bytes))
        return false;
    std::memcpy(destination, &bytes, sizeof bytes);
    return true;
}

/* The next three narrow 16, 8 and 4 units to bytes. */

inline bool isAscii(__m128i units) noexcept
{
    const __m128i beyondAscii = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(beyondAscii, _mm_setzero_si128())) == 0xFFFF;
}

inline bool narrowSixteen(const UCS2 *source, char *destination) noexcept
{
    const auto *const units = reinterpret_cast<const __m128i *>(source);
    const __m128i low = _mm_loadu_si128(units);
    const __m128i high = _mm_loadu_si128(units + 1);
    if (!isAscii(_mm_or_si128(low, high)))
        return false;
    _mm_storeu_si128(reinterpret_cast<__m128i *>(destination), _mm_packus_epi16(low, high));
    return true;
}

inline bool narrowEight(const UCS2 *source, char *destination) noexcept
{
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(source));
    if (!isAscii(units))
        return false;
    _mm_storel_epi64(reinterpret_cast<__m128i *>(destination), _mm_packus_epi16(units, units));
    return true;
}

inline bool narrowFour(const UCS2 *source, char *destination) noexcept
{
    const __m128i units = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(source));
    if (!isAscii(units))
        return false;
    const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(units, units));
    std::memcpy(destination, &bytes, sizeof bytes);
    return true;
}

#else // for any other machine the compiler chooses the instructions

template <size_t count, typename From, typename To> bool copyIfAscii(const From *source, To *destination) noexcept
{
    std::conditional_t<sizeof(From) == 1, unsigned char, char16_t> units[count];
    std::memcpy(units, source, sizeof units);
    unsigned seen = 0;
    for (const unsigned unit : units)
        seen |= unit;
    if (seen >= 0x80)
        return false;
    for (size_t i = 0; i < count; ++i)
        destination[i] = static_cast<To>(units[i]);
    return true;
}

constexpr auto *widenSixteen = copyIfAscii<16, char, UCS2>, *widenEight = copyIfAscii<8, char, UCS2>,
               *widenFour = copyIfAscii<4, char, UCS2>;
constexpr auto *copySixteen = copyIfAscii<16, char, char>, *copyEight = copyIfAscii<8, char, char>,
               *copyFour = copyIfAscii<4, char, char>;
constexpr auto *narrowSixteen = copyIfAscii<16, UCS2, char>, *narrowEight = copyIfAscii<8, UCS2, char>,
               *narrowFour = copyIfAscii<4, UCS2, char>;

#endif

/**
 * Copies the ASCII at the start of a text in steps of many units. The rest behind the last whole step is copied by one
 * more step, which ends where the text ends and overlaps the step before; where a step meets another character, the
 * units are copied one by one. @return the length of the run.
 */
template <typename From, typename To>
size_t copyAscii(const From *source, size_t limit, To *destination, bool (*sixteen)(const From *, To *),
                 bool (*eight)(const From *, To *), bool (*four)(const From *, To *)) noexcept
{
    size_t run = 0;
    if (limit >= 16)
    {
        while (limit - run >= 16 && sixteen(source + run, destination + run))
            run += 16;
        // All units before the tail are ASCII here; those that overlap are written again, unchanged.
        if (limit - run < 16 && sixteen(source + limit - 16, destination + limit - 16))
            return limit;
    }
    else if (limit >= 8)
    {
        run = eight(source, destination) ? 8 : 0;
        if (run != 0 && eight(source + limit - 8, destination + limit - 8))
            return limit;
    }
    else if (limit >= 4)
    {
        run = four(source, destination) ? 4 : 0;
        if (run != 0 && four(source + limit - 4, destination + limit - 4))
            return limit;
    }
    for (;
         run < limit && static_cast<std::conditional_t<sizeof(From) == 1, unsigned char, char16_t>>(source[run]) < 0x80;
         ++run)
        destination[run] = static_cast<To>(source[run]);
    return run;
}

/** Whether a text holds nothing but ASCII. */
inline bool isAllAscii(const char *text, size_t length) noexcept
{
    const auto eightAt = [](const char *bytes) {
        uint64_t eight;
        std::memcpy(&eight, bytes, sizeof eight);
        return eight;
    };
    constexpr uint64_t highBits = 0x8080808080808080;
    uint64_t seen = 0;
    if (length >= 8)
    {
        seen = eightAt(text + length - 8);
        for (; length > 8; text += 8, length -= 8)
            seen |= eightAt(text);
    }
    else
        for (; length > 0; ++text, --length)
            seen |= static_cast<unsigned char>(*text);
    return (seen & highBits) == 0;
}

/** Widens the ASCII at the start of `limit` bytes. @return the length of the run. */
inline size_t widenAscii(const char *source, size_t limit, UCS2 *destination) noexcept
{
    return copyAscii(source, limit, destination, widenSixteen, widenEight, widenFour);
}

/** Copies the ASCII at the start of `limit` bytes. @return the length of the run. */
inline size_t copyAsciiBytes(const char *source, size_t limit, char *destination) noexcept
{
    return copyAscii(source, limit, destination, copySixteen, copyEight, copyFour);
}

/** Narrows the ASCII at the start of `limit` units. @return the length of the run. */
inline size_t narrowAscii(const UCS2 *source, size_t limit, char *destination) noexcept
{
    return copyAscii(source, limit, destination, narrowSixteen, narrowEight, narrowFour);
}

} // namespace kelto

#endif
