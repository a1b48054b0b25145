#include "format/arguments/argument_slots.h"

#include "format/arguments/slot_value.h"
#include "lifecycle/global_state.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace
{

using kelto::IntegerSize;

/** A cell that holds a copy of a value; null when memory ran out. */
template <typename Value> void *cellOf(Value value)
{
    void *const cell = ZEL_malloc(glbResHandle, sizeof value);
    if (cell != nullptr)
        std::memcpy(cell, &value, sizeof value);
    return cell;
}

/* Each of these takes the next argument from the list into a cell, and returns null where memory ran out. */

void *takeCharacter(va_list *arguments, int flags)
{
    const int value = va_arg(*arguments, int);
    return (flags & FLAG_l) != 0 ? cellOf(static_cast<UCS2>(value)) : cellOf(static_cast<char>(value));
}

void *takeUTF8(va_list *arguments)
{
    const char *text = va_arg(*arguments, const char *);
    if (text == nullptr)
        text = "";
    const size_t size = std::strlen(text) + 1;
    void *const cell = ZEL_malloc(glbResHandle, size);
    if (cell != nullptr)
        std::memcpy(cell, text, size);
    return cell;
}

void *takeUCS2(va_list *arguments)
{
    const UCS2 *text = va_arg(*arguments, const UCS2 *);
    if (text == nullptr)
        text = u"";
    const size_t size = (KTUCS2strlen(text) + 1) * sizeof(UCS2);
    void *const cell = ZEL_malloc(glbResHandle, size);
    if (cell != nullptr)
        std::memcpy(cell, text, size);
    return cell;
}

void *takeInteger(va_list *arguments, int flags)
{
    switch (kelto::integerSize(flags))
    {
    case IntegerSize::bits16:
        return cellOf(static_cast<int16_t>(va_arg(*arguments, int)));
    case IntegerSize::bits64:
        return cellOf(va_arg(*arguments, int64_t));
    default:
        return cellOf(va_arg(*arguments, int32_t));
    }
}

void *takeFloatingPoint(va_list *arguments, int flags)
{
    return (flags & FLAG_L) != 0 ? cellOf(va_arg(*arguments, long double)) : cellOf(va_arg(*arguments, double));
}

void *takeArgument(int type, va_list *arguments, int flags)
{
    switch (type)
    {
    case KT_ARG_CHARACTER:
        return takeCharacter(arguments, flags);
    case KT_ARG_UTF8:
        return takeUTF8(arguments);
    case KT_ARG_UCS2:
        return takeUCS2(arguments);
    case KT_ARG_DOUBLE:
        return takeFloatingPoint(arguments, flags);
    case KT_ARG_POINTER:
        return cellOf(va_arg(*arguments, uint64_t));
    case KT_ARG_SIGNED:
    case KT_ARG_UNSIGNED:
    default:
        return takeInteger(arguments, flags);
    }
}

/** Fills slots one after the other. A slot that cannot be filled is null, which ends the array. */
class SlotWriter
{
public:
    SlotWriter(void **slots, va_list *arguments) : m_slot(slots), m_arguments(arguments) {}

    bool takeConversion(const KTParameter &parameter)
    {
        if (parameter.width == KT_FROM_ARGUMENTS && !take(KT_ARG_SIGNED, 0))
            return false;
        if (parameter.precision == KT_FROM_ARGUMENTS && !take(KT_ARG_SIGNED, 0))
            return false;
        for (const int *type = parameter.formatter->argTypes; *type != KT_ARG_END; ++type)
            if (kelto::takesSlot(*type) && !take(*type, parameter.flags))
                return false;
        return true;
    }

private:
    bool take(int type, int flags)
    {
        *m_slot = takeArgument(type, m_arguments, flags);
        return *m_slot++ != nullptr;
    }

    void **m_slot;
    va_list *m_arguments;
};

} // namespace

namespace kelto
{

ConversionCounts completeParameters(KTParameter *parameters, bool tag) noexcept
{
    if (parameters == nullptr)
        return {0, 0};
    ConversionCounts count = {0, 0};
    int added = tag ? FLAG_TAG : 0;
    for (KTParameter *parameter = parameters; parameter->formatter != nullptr; ++parameter)
    {
        if (isMarker(*parameter))
        {
            added = parameter->type == CONV_N ? added | FLAG_ENCODE : added & ~FLAG_ENCODE;
            continue;
        }
        parameter->argIndex = static_cast<int>(count.slots);
        parameter->flags |= added;
        count.slots += parameter->width == KT_FROM_ARGUMENTS ? 1 : 0;
        count.slots += parameter->precision == KT_FROM_ARGUMENTS ? 1 : 0;
        count.slots += static_cast<size_t>(parameter->formatter->argCount);
        ++count.conversions;
    }
    return count;
}

size_t countPointers(void *const *pointers) noexcept
{
    size_t count = 0;
    while (pointers[count] != nullptr)
        ++count;
    return count;
}

ArgumentCells::~ArgumentCells()
{
    if (m_slots == nullptr)
        return;
    for (void **slot = m_slots.get(); *slot != nullptr; ++slot)
        ZEL_free(*slot);
}

bool ArgumentCells::collect(const KTParameter *parameters, size_t slotCount, va_list *arguments) noexcept
{
    m_slots = allocate<void *>(glbResHandle, slotCount + 1);
    if (m_slots == nullptr)
        return false;
    m_slots[slotCount] = nullptr;
    if (parameters == nullptr)
        return true;
    SlotWriter writer(m_slots.get(), arguments);
    bool isComplete = true;
    for (; isComplete && parameters->formatter != nullptr; ++parameters)
        isComplete = isMarker(*parameters) || writer.takeConversion(*parameters);
    return isComplete;
}

} // namespace kelto
