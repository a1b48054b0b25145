#include "format/tables/utf8_formats.h"

#include "platform/scoped.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace
{

struct Registration
{
    const KTFormatter *formatter;
    KTUTF8FormatFunction function;
    std::unique_ptr<Registration> next;
};

void *lock = nullptr;

constexpr size_t bucketCount = 256;
std::unique_ptr<Registration> buckets[bucketCount];

/** The place that holds the registration of a record, or the end of its list. */
std::unique_ptr<Registration> &placeOf(const KTFormatter *formatter)
{
    auto *place = &buckets[reinterpret_cast<uintptr_t>(formatter) / sizeof(KTFormatter) % bucketCount];
    while (*place != nullptr && (*place)->formatter != formatter)
        place = &(*place)->next;
    return *place;
}

} // namespace

namespace kelto
{

KTUTF8FormatFunction findUTF8Format(const KTFormatter *formatter) noexcept
{
    const kelto::SpinLockGuard guard(lock);
    const auto &place = placeOf(formatter);
    return place != nullptr ? place->function : nullptr;
}

} // namespace kelto

int KTRegisterUTF8Format(const KTFormatter *formatter, KTUTF8FormatFunction function)
{
    if (formatter == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    // The lock is not held while memory is allocated or freed.
    std::unique_ptr<Registration> spare(
        function != nullptr ? new (std::nothrow) Registration{formatter, function, nullptr} : nullptr);
    if (function != nullptr && spare == nullptr)
        return KT_ERR_NO_MEMORY;
    const kelto::SpinLockGuard guard(lock);
    auto &place = placeOf(formatter);
    if (place != nullptr && function != nullptr)
        place->function = function;
    else if (function != nullptr)
        place = std::move(spare);
    else if (place != nullptr)
    {
        spare = std::move(place);
        place = std::move(spare->next);
    }
    return 0;
}
