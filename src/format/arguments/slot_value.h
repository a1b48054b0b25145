/**
 * The values behind argument slots, in the sizes that the flags name. Slots may be aligned in any way.
 */
#ifndef KELTO_FORMAT_ARGUMENTS_SLOT_VALUE_H
#define KELTO_FORMAT_ARGUMENTS_SLOT_VALUE_H

#include "kelto.h"

#include <cstdint>
#include <cstring>

namespace kelto
{

template <typename Value> Value readSlot(const void *slot) noexcept
{
    Value value;
    std::memcpy(&value, slot, sizeof value);
    return value;
}

enum class IntegerSize
{
    bits16,
    bits32,
    bits64
};

/** The size of an integer. 'h' wins where the name of a conversion brings its own '!'. */
constexpr IntegerSize integerSize(int flags) noexcept
{
    if ((flags & FLAG_h) != 0)
        return IntegerSize::bits16;
    return (flags & FLAG_BANG) != 0 ? IntegerSize::bits64 : IntegerSize::bits32;
}

inline int64_t readSigned(const void *slot, int flags) noexcept
{
    switch (integerSize(flags))
    {
    case IntegerSize::bits16:
        return readSlot<int16_t>(slot);
    case IntegerSize::bits64:
        return readSlot<int64_t>(slot);
    default:
        return readSlot<int32_t>(slot);
    }
}

inline uint64_t readUnsigned(const void *slot, int flags) noexcept
{
    switch (integerSize(flags))
    {
    case IntegerSize::bits16:
        return readSlot<uint16_t>(slot);
    case IntegerSize::bits64:
        return readSlot<uint64_t>(slot);
    default:
        return readSlot<uint32_t>(slot);
    }
}

/** The unit that a "c" shows: an 8-bit character becomes the unit of the same number. */
inline UCS2 readCharacter(const void *slot, int flags) noexcept
{
    return (flags & FLAG_l) != 0 ? readSlot<UCS2>(slot) : readSlot<unsigned char>(slot);
}

} // namespace kelto

#endif
