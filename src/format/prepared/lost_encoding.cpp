#include "format/prepared/lost_encoding.h"

#include "format/prepared/prepared_variants.h"

namespace
{

using kelto::PreparedStep;
using kelto::slotIsEncoded;
using kelto::slotIsFree;
using kelto::Writer;

/** The bits of a conversion's values. */
uint8_t encodingOf(const PreparedStep &step)
{
    const bool isInRegion = (step.layout.flags & FLAG_ENCODE) != 0;
    switch (step.writer)
    {
    case Writer::utf8Text:
    case Writer::ucs2Text:
        if (step.layout.precision == 0) // nothing is left of the text
            return 0;
        [[fallthrough]];
    case Writer::character:
    case Writer::called:
        return isInRegion ? slotIsEncoded : slotIsFree;
    case Writer::error: // encoded regions have no effect on these
    case Writer::name:
        return slotIsFree;
    default: // a number or date cannot be anything else
        return 0;
    }
}

/** Calls `take(slot, bits)` for the slots of each conversion, in the order of the text. */
template <typename Take> void forEachSlot(const KTPreparedFormat &format, Take take)
{
    const PreparedStep *const end = format.steps + format.stepCount;
    for (const PreparedStep *step = format.steps; step != end; ++step)
    {
        if (step->formatter == nullptr)
            continue;
        const uint8_t encoding = encodingOf(*step);
        uint32_t slot = step->firstSlot;
        for (const int option : {step->layout.width, step->layout.precision})
            if (option == KT_FROM_ARGUMENTS)
                take(slot++, uint8_t{0});
        for (int i = 0; i < step->formatter->argCount; ++i)
            take(slot++, encoding);
    }
}

} // namespace

namespace kelto
{

void noteEncodings(const KTPreparedFormat &format, uint8_t *encodings) noexcept
{
    forEachSlot(format, [encodings](uint32_t slot, uint8_t encoding) { encodings[slot] = encoding; });
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
    uint32_t first = reference.slotCount;
    if (reference.encodings == nullptr) // as where the reference selects other messages
        return first;
    forEachSlot(format, [&](uint32_t slot, uint8_t encoding) {
        if (slot < first && encoding == slotIsFree && reference.encodings[slot] == slotIsEncoded)
            first = slot;
    });
    return first;
}

} // namespace kelto
