// KTNextConversion(): a walk over the conversions of a text, whether the text as a whole is a format or not.

#include "kelto.h"

#include "format/arguments/typed_argument.h"
#include "format/grammar/conversion_spec.h"
#include "format/tables/form_table.h"

#include <cstring>

namespace
{

/** The next '%' that is not one of a "%%"; null where there is none. */
const char *findSpecification(const char *from)
{
    const char *percent = std::strchr(from, '%');
    while (percent != nullptr && percent[1] == '%')
        percent = std::strchr(percent + 2, '%');
    return percent;
}

void setPlace(KTConversion &conversion, const char *format, const char *begin, const char *end)
{
    conversion.offset = static_cast<size_t>(begin - format);
    conversion.length = static_cast<size_t>(end - begin);
}

} // namespace

bool KTNextConversion(const char *format, formTable *table, KTConversion *conversion)
{
    if (format == nullptr || conversion == nullptr || conversion->structSize < sizeof *conversion)
        return false;
    const char *const percent = findSpecification(format + conversion->offset + conversion->length);
    if (percent == nullptr)
        return false;
    const auto spec = kelto::parseSpecification(percent, kelto::tableOrBuiltIn(table));
    const KTParameter &record = spec.record;
    conversion->slotCount = 0;
    if (spec.position == 0 || record.type == CONV_UNKNOWN)
    {
        const auto fault = kelto::explainFault(percent, spec);
        setPlace(*conversion, format, percent, fault.end);
        conversion->rule = fault.rule;
        conversion->position = fault.rule == KT_RULE_UNKNOWN_CONVERSION ? static_cast<unsigned>(spec.position) : 0;
        conversion->type = CONV_UNKNOWN;
        conversion->width = conversion->precision = KT_ABSENT;
        conversion->flags = 0;
        conversion->formatter = nullptr;
        return true;
    }
    setPlace(*conversion, format, percent, spec.end);
    conversion->rule = KT_RULE_NONE;
    conversion->position = static_cast<unsigned>(spec.position);
    conversion->type = record.type;
    conversion->width = record.width;
    conversion->precision = record.precision;
    conversion->flags = record.flags;
    conversion->formatter = kelto::isMarker(record) ? nullptr : record.formatter;
    kelto::listSlots(record, conversion->position, [conversion](const KTSlot &slot) {
        if (conversion->slotList != nullptr && conversion->slotCount < conversion->slotRoom)
            conversion->slotList[conversion->slotCount] = slot;
        ++conversion->slotCount;
    });
    return true;
}
