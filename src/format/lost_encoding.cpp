#include "format/lost_encoding.h"

#include "format/variants.h"

#include <algorithm>

namespace kelto
{

uint8_t encodingOf(const PreparedStep &step) noexcept
{
    const bool isInRegion = (step.layout.flags & FLAG_ENCODE) != 0;
    switch (step.writer)
    {
    case Writer::utf8Text:
    case Writer::ucs2Text:
        if (step.layout.precision == 0) // which leaves nothing of it
            return 0;
        [[fallthrough]];
    case Writer::character:
    case Writer::called:
        return isInRegion ? slotIsEncoded : slotIsFree;
    case Writer::error: // regions end at these
    case Writer::name:
        return slotIsFree;
    default: // numbers and dates are never more than that
        return 0;
    }
}

uint32_t findLostEncoding(const KTPreparedFormat &format, const KTPreparedFormat &reference) noexcept
{
    if (format.variants != nullptr)
    {
        for (uint32_t i = 0; i < format.variants->ownedCount; ++i)
        {
            const KTPreparedFormat &variant = *format.variants->owned[i];
            const uint32_t lost = variant.variants == nullptr ? findLostEncoding(variant, reference) : UINT32_MAX;
            if (lost < reference.slotCount)
                return lost;
        }
        return reference.slotCount;
    }
    if (reference.variants != nullptr)
        return reference.slotCount;
    const uint32_t common = std::min(format.slotCount, reference.slotCount);
    uint32_t i = 0;
    while (i < common && !(reference.encodings[i] == slotIsEncoded && format.encodings[i] == slotIsFree))
        ++i;
    return i < common ? i : reference.slotCount;
}

} // namespace kelto
