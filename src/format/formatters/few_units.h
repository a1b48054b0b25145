/**
 * Units copied and repeated where there are few of them, as in most literal texts, numbers and paddings: a call of the
 * C library would cost more than the work. Two steps of a size do, which begin and end with the units and may overlap.
 */
#ifndef KELTO_FORMAT_FORMATTERS_FEW_UNITS_H
#define KELTO_FORMAT_FORMATTERS_FEW_UNITS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace kelto
{

/** Copies the first and the last bytes of `size`, a step each; both are read before the first is written. */
template <typename Step>
[[gnu::always_inline]] inline void copyBothEnds(const char *from, size_t size, char *to) noexcept
{
    Step first;
    Step last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + size - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + size - sizeof last, &last, sizeof last);
}

/** Copies units, also where the ranges overlap. @return where the copy ends. */
template <typename Unit>
[[gnu::always_inline]] inline Unit *copyUnits(const Unit *units, size_t count, Unit *out) noexcept
{
    const auto *const from = reinterpret_cast<const char *>(units);
    auto *const to = reinterpret_cast<char *>(out);
    const size_t size = count * sizeof(Unit);
    if (size < sizeof(uint32_t))
    {
        if (size >= sizeof(uint16_t))
            copyBothEnds<uint16_t>(from, size, to);
        else if (size > 0)
            *to = *from;
    }
    else if (size < sizeof(uint64_t))
        copyBothEnds<uint32_t>(from, size, to);
    else if (size <= 2 * sizeof(uint64_t))
        copyBothEnds<uint64_t>(from, size, to);
    else
        std::memmove(to, from, size);
    return out + count;
}

/** Writes a unit `count` times. @return where the units end. */
template <typename Unit> [[gnu::always_inline]] inline Unit *fillUnits(Unit *out, uint64_t count, Unit unit) noexcept
{
    constexpr size_t perStep = sizeof(uint64_t) / sizeof(Unit);
    if (count == 0)
        return out;
    if (count > 4 * perStep)
        return std::fill_n(out, count, unit);
    using Number = std::conditional_t<sizeof(Unit) == 1, uint8_t, uint16_t>;
    const uint64_t step = UINT64_MAX / static_cast<Number>(-1) * static_cast<Number>(unit);
    Unit *const end = out + count;
    if (count >= perStep)
    {
        for (; end - out > static_cast<ptrdiff_t>(perStep); out += perStep)
            std::memcpy(out, &step, sizeof step);
        std::memcpy(end - perStep, &step, sizeof step);
        return end;
    }
    if (count >= perStep / 2)
    {
        std::memcpy(out, &step, sizeof step / 2);
        std::memcpy(end - perStep / 2, &step, sizeof step / 2);
        return end;
    }
    *out = out[count / 2] = *(end - 1) = unit; // one to three of them
    return end;
}

} // namespace kelto

#endif
