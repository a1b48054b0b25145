#include "format/prepared/prepared_variants.h"

#include "lifecycle/global_state.h"

namespace kelto
{

PreparedOwner makeVariants(const Selector &selector, LanguageRules rules, uint32_t rowLength) noexcept
{
    struct Head
    {
        KTPreparedFormat format;
        PreparedVariants variants;
    };
    static_assert(sizeof(Head) % alignof(const KTPreparedFormat *) == 0);
    const size_t size = sizeof(Head) + rowLength * sizeof(const KTPreparedFormat *);
    TagBlock<char> block = allocateZeroed<char>(glbResHandle, size);
    if (block == nullptr)
        return nullptr;
    auto *const head = reinterpret_cast<Head *>(block.release());
    auto **const row = reinterpret_cast<const KTPreparedFormat **>(head + 1);
    head->variants = {selector, rules, 0, rowLength, row, nullptr, 0};
    head->format.slotCount = slotsOfVariants;
    head->format.variants = &head->variants;
    return PreparedOwner(&head->format);
}

const KTPreparedFormat *chooseVariant(const KTPreparedFormat &prepared, const KTArgument *arguments, size_t count,
                                      int &result) noexcept
{
    const KTPreparedFormat *format = &prepared;
    while (const PreparedVariants *const variants = format->variants)
    {
        WantedPlaces wanted = findWantedPlaces(variants->selector, variants->rules, arguments, count);
        result = wanted.result;
        if (result != 0)
            return nullptr;
        for (format = nullptr; format == nullptr && !wanted.isEmpty(); wanted.pop())
            if (wanted.front() < variants->rowLength)
                format = variants->row[wanted.front()];
        if (format == nullptr)
        {
            result = KT_ERR_INVALID_MSG_ID;
            return nullptr;
        }
    }
    result = 0;
    return format;
}

} // namespace kelto
