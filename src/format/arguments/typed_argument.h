/** Typed arguments (KTArgument): whether one is what a format asks for, and its value as a conversion takes it. */
#ifndef KELTO_FORMAT_ARGUMENTS_TYPED_ARGUMENT_H
#define KELTO_FORMAT_ARGUMENTS_TYPED_ARGUMENT_H

#include "format/arguments/slot_value.h"
#include "format/conversion_record.h"

#include <cstddef>

namespace kelto
{

/** The KTSlotCode of an argument code (KTArgumentCode, one that takes a slot) under the flags of its conversion. */
uint32_t slotCodeOf(int argumentCode, int flags) noexcept;

/** Lists the arguments of a conversion in the order of passing: `take(slot)` for each, none for a marker. */
template <typename Take> void listSlots(const KTParameter &conversion, uint32_t position, Take take)
{
    if (isMarker(conversion))
        return;
    if (conversion.width == KT_FROM_ARGUMENTS)
        take(KTSlot{KT_SLOT_INT32, position, KT_SLOT_WIDTH});
    if (conversion.precision == KT_FROM_ARGUMENTS)
        take(KTSlot{KT_SLOT_INT32, position, KT_SLOT_PRECISION});
    for (const int *type = conversion.formatter->argTypes; *type != KT_ARG_END; ++type)
        if (takesSlot(*type))
            take(KTSlot{slotCodeOf(*type, conversion.flags), position, KT_SLOT_VALUE});
}

/** The name of the arguments of a slot for people, as "a 32-bit integer". */
const char *slotName(uint32_t slotCode) noexcept;

/** Whether two slots take the same arguments; whether an integer is signed does not matter. */
bool isSameKind(uint32_t slotCode, uint32_t otherCode) noexcept;

/** Whether an argument is of the type that most arguments of its slot have; isAccepted() accepts others too. */
inline bool isUsual(const KTArgument &argument, uint32_t slotCode) noexcept
{
    if (slotCode == KT_SLOT_UTF8)
        return argument.type == KT_ARGUMENT_UTF8;
    const auto isOfType = [&argument](uint32_t type) { return argument.type == type && argument.length == 0; };
    if (slotCode == KT_SLOT_INT32)
        return isOfType(KT_ARGUMENT_INT) && argument.value.i == static_cast<int32_t>(argument.value.i);
    if (slotCode == KT_SLOT_DOUBLE)
        return isOfType(KT_ARGUMENT_DOUBLE);
    return slotCode == KT_SLOT_UINT32 && isOfType(KT_ARGUMENT_UINT) && argument.value.u <= UINT32_MAX;
}

/** Whether an argument has the kind of the slot, and a value that the slot holds. */
bool isAccepted(const KTArgument &argument, uint32_t slotCode) noexcept;

/** Whether each of the arguments is accepted by its slot. */
bool areAllAccepted(const KTArgument *arguments, const KTSlot *slots, size_t count) noexcept;

/** As areAllAccepted(), without a call where all arguments are usual. */
[[gnu::always_inline]] inline bool areAccepted(const KTArgument *arguments, const KTSlot *slots, size_t count) noexcept
{
    for (; count > 0 && isUsual(*arguments, slots->code); --count)
    {
        ++arguments;
        ++slots;
    }
    return count == 0 || areAllAccepted(arguments, slots, count);
}

/* The values of arguments that were accepted. */

inline uint64_t unsignedValue(const KTArgument &argument, int flags) noexcept
{
    switch (integerSize(flags))
    {
    case IntegerSize::bits16:
        return static_cast<uint16_t>(argument.value.u);
    case IntegerSize::bits64:
        return argument.value.u;
    default:
        return static_cast<uint32_t>(argument.value.u);
    }
}

/** A text of an argument: null is the empty one, and a zero inside ends it. */
template <typename Unit> struct ArgumentText
{
    const Unit *begin;
    size_t length;
};

/** The unit of a character's slot. */
inline UCS2 unitOf(const KTArgument &argument) noexcept
{
    return argument.type == KT_ARGUMENT_CODE_POINT ? argument.value.units[0] : static_cast<UCS2>(argument.value.u);
}

/** The text of an argument in UCS-2; of a code point the units in the argument itself. */
ArgumentText<UCS2> ucs2Of(const KTArgument &argument) noexcept;
ArgumentText<char> utf8Of(const KTArgument &argument) noexcept;

} // namespace kelto

#endif
