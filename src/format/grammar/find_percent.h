/**
 * The next '%' of a format. Most literal texts are short, so the search takes eight units at a step. After some steps
 * it calls the C library, which is faster in the long run.
 */
#ifndef KELTO_FORMAT_GRAMMAR_FIND_PERCENT_H
#define KELTO_FORMAT_GRAMMAR_FIND_PERCENT_H

#include "kelto.h"

#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace kelto
{

constexpr ptrdiff_t percentStep = 8;

/* The next functions compare eight units: each byte of a unit has a bit, set where the unit is a '%'. */

#ifdef __SSE2__

inline unsigned percentsInStep(const UCS2 *units) noexcept
{
    const __m128i step = _mm_loadu_si128(reinterpret_cast<const __m128i *>(units));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(step, _mm_set1_epi16('%'))));
}

inline unsigned percentsInStep(const char *units) noexcept
{
    const __m128i step = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(units)); // zeros behind it
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(step, _mm_set1_epi8('%'))));
}

#else

template <typename Unit> unsigned percentsInStep(const Unit *units) noexcept
{
    unsigned hits = 0;
    for (ptrdiff_t i = 0; i < percentStep; ++i)
        hits |= static_cast<unsigned>(units[i] == '%') << (static_cast<size_t>(i) * sizeof(Unit));
    return hits;
}

#endif

template <typename Unit> const Unit *firstOf(unsigned hits, const Unit *units) noexcept
{
    return units + static_cast<size_t>(__builtin_ctz(hits)) / sizeof(Unit);
}

/* The first '%' in [from, end), or end. */

inline const char *findFarPercent(const char *from, const char *end) noexcept
{
    const void *const hit = std::memchr(from, '%', static_cast<size_t>(end - from));
    return hit != nullptr ? static_cast<const char *>(hit) : end;
}

// A byte of another unit may look like a '%' too.
inline const UCS2 *findFarPercent(const UCS2 *from, const UCS2 *end) noexcept
{
    while (from != end)
    {
        const auto *const begin = reinterpret_cast<const char *>(from);
        const char *const hit = findFarPercent(begin, reinterpret_cast<const char *>(end));
        from += (hit - begin) / static_cast<ptrdiff_t>(sizeof(UCS2));
        if (from == end || *from == u'%')
            break;
        ++from;
    }
    return from;
}

/** The first '%' in [from, end), or end. @param format  where the text begins, at `from` or before. */
template <typename Unit> const Unit *findPercent(const Unit *format, const Unit *from, const Unit *end) noexcept
{
    constexpr int nearSteps = 8;
    for (int i = 0; end - from >= percentStep; ++i, from += percentStep)
    {
        if (i == nearSteps)
            return findFarPercent(from, end);
        if (const unsigned hits = percentsInStep(from))
            return firstOf(hits, from);
    }
    if (end - format >= percentStep)
    {
        // The last step ends where the text ends. Its units in front of `from` are left out.
        const Unit *const last = end - percentStep;
        const unsigned hits = percentsInStep(last) >> (static_cast<size_t>(from - last) * sizeof(Unit));
        return hits != 0 ? firstOf(hits, from) : end;
    }
    while (from != end && *from != '%')
        ++from;
    return from;
}

} // namespace kelto

#endif
