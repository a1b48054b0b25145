#include "format/prepared/compare_formats.h"

#include "format/arguments/typed_argument.h"
#include "format/grammar/problem_report.h"
#include "format/prepared/lost_encoding.h"
#include "lifecycle/global_state.h"

#include <algorithm>
#include <cstring>

namespace
{

/** Where a number stands for a width or a precision, it is one argument, and a value another. */
bool isSameArgument(const KTSlot &slot, const KTSlot &other)
{
    return slot.role == other.role && kelto::isSameKind(slot.code, other.code);
}

/** What a person calls the argument of a slot; null behind the last slot. */
const char *argumentName(const KTPreparedFormat &format, uint32_t slot)
{
    if (slot >= format.slotCount)
        return nullptr;
    switch (format.slots[slot].role)
    {
    case KT_SLOT_WIDTH:
        return "a width";
    case KT_SLOT_PRECISION:
        return "a precision";
    default:
        return kelto::slotName(format.slots[slot].code);
    }
}

} // namespace

namespace kelto
{

void findPlace(const char *format, KTProblem &problem) noexcept
{
    PercentPlaces<char> places;
    walkFormat(
        format, std::strlen(format), places, [](const char *, size_t) {},
        [&](const PercentPlace<char> &place) {
            if (static_cast<unsigned>(place.position) != problem.position)
                return true;
            problem.offset = static_cast<size_t>(place.begin - format);
            problem.length = static_cast<size_t>(place.end - place.begin);
            return false;
        });
}

KTProblem compareSlots(const KTPreparedFormat &format, const KTPreparedFormat &reference) noexcept
{
    const uint32_t common = std::min(format.slotCount, reference.slotCount);
    uint32_t i = 0;
    while (i < common && isSameArgument(format.slots[i], reference.slots[i]))
        ++i;
    const auto problem = [&](KTRule rule, const KTPreparedFormat &at) -> KTProblem {
        return {0, rule, i + 1, at.slots[i].position, 0, 0, argumentName(reference, i), argumentName(format, i), 0};
    };
    if (i < common)
        return problem(KT_RULE_ARGUMENT_TYPE, format);
    if (i < reference.slotCount)
        return problem(KT_RULE_ARGUMENT_MISSING, reference);
    if (i < format.slotCount)
        return problem(KT_RULE_ARGUMENT_EXTRA, format);
    return {0, KT_RULE_NONE, 0, 0, 0, 0, nullptr, nullptr, 0};
}

} // namespace kelto

int KTCompareFormats(const char *format, const char *reference, formTable *table, KTProblem *problem)
{
    const kelto::ProblemReport report(problem);
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (format == nullptr || reference == nullptr || !report.isUsable())
        return KT_ERR_INVALID_PARAMETER;
    kelto::PreparedOwner own;
    const kelto::FormatVerdict verdict = kelto::prepareFormat(format, table, own);
    report.set(verdict);
    if (verdict.result != 0)
        return verdict.result;
    kelto::PreparedOwner expected;
    if (const int result = kelto::prepareFormat(reference, table, expected).result)
    {
        report.set(
            {0, result == KT_ERR_FORMAT_SYNTAX ? KT_RULE_REFERENCE : KT_RULE_NONE, 0, 0, 0, 0, nullptr, nullptr, 0});
        return result;
    }
    KTProblem difference = kelto::compareSlots(*own, *expected);
    const uint32_t lost = kelto::findLostEncoding(*own, *expected);
    if (difference.rule == KT_RULE_NONE && lost < expected->slotCount)
        difference = {0, KT_RULE_ENCODING_LOST, lost + 1, own->slots[lost].position, 0, 0, nullptr, nullptr, 0};
    if (difference.rule == KT_RULE_NONE)
        return 0;
    kelto::findPlace(format, difference);
    report.set(difference);
    return KT_ERR_INVALID_PARAMETER;
}
