#include "format/arguments/called_arguments.h"

#include "format/arguments/typed_argument.h"
#include "lifecycle/global_state.h"

#include <algorithm>
#include <cstring>

namespace
{

/** Whether a text has to be copied, since it may have no terminator. */
bool isCopied(const KTArgument &argument)
{
    if (argument.type == KT_ARGUMENT_CODE_POINT)
        return true;
    const bool isText = argument.type == KT_ARGUMENT_UTF8 || argument.type == KT_ARGUMENT_UCS2;
    return isText && argument.length != UINT32_MAX && argument.value.p != nullptr;
}

size_t unitSize(const KTArgument &argument)
{
    return argument.type == KT_ARGUMENT_UTF8 ? sizeof(char) : sizeof(UCS2);
}

/** The units of a text, up to its first zero or its length. */
size_t textLength(const KTArgument &argument)
{
    return argument.type == KT_ARGUMENT_UTF8 ? kelto::utf8Of(argument).length : kelto::ucs2Of(argument).length;
}

/** The bytes that the copy of a text takes, rounded up so that UCS-2 may follow; 0 for a text that is not copied. */
size_t copySize(const KTArgument &argument)
{
    return isCopied(argument) ? ((textLength(argument) + 1) * unitSize(argument) + 1) & ~size_t{1} : 0;
}

thread_local const kelto::RunningSlots *innermostSlots = nullptr;

} // namespace

namespace kelto
{

bool CalledArguments::make(const KTArgument *arguments, const KTSlot *slots, size_t count) noexcept
{
    size_t texts = 0;
    for (size_t i = 0; i < count; ++i)
        texts += copySize(arguments[i]);
    const size_t size = count * (sizeof(Cell) + sizeof(void *)) + sizeof(void *) + texts;
    char *at = m_usual;
    if (size > sizeof m_usual)
    {
        m_long = allocate<char>(glbResHandle, size);
        at = m_long.get();
    }
    if (at == nullptr)
        return false;
    auto *const cells = reinterpret_cast<Cell *>(at);
    m_slots = reinterpret_cast<void **>(cells + count);
    m_copy = reinterpret_cast<char *>(m_slots + count + 1);
    m_end = m_copy + texts;
    for (size_t i = 0; i < count; ++i)
    {
        const uint32_t code = slots[i].code;
        const bool isText = code == KT_SLOT_UTF8 || code == KT_SLOT_UCS2;
        m_slots[i] = isText ? textOf(arguments[i]) : valueOf(arguments[i], code, cells[i]);
    }
    m_slots[count] = nullptr;
    return true;
}

void *CalledArguments::valueOf(const KTArgument &argument, uint32_t code, Cell &cell) noexcept
{
    switch (code)
    {
    case KT_SLOT_UNIT:
        cell.unit = unitOf(argument);
        break;
    case KT_SLOT_DOUBLE:
        cell.number = argument.value.d;
        break;
    case KT_SLOT_LONG_DOUBLE:
        cell.longNumber = *static_cast<const long double *>(argument.value.p);
        break;
    case KT_SLOT_POINTER:
        cell.pointer = argument.value.p;
        break;
    default: // the lower bytes come first, so that a smaller integer is found in its place
        cell.integer = argument.value.u;
    }
    return &cell;
}

void *CalledArguments::textOf(const KTArgument &argument) noexcept
{
    static UCS2 empty = 0; // the empty text in either encoding
    if (!isCopied(argument))
        return argument.value.p != nullptr ? const_cast<void *>(argument.value.p) : &empty;
    // A text that has grown since it was measured is cut to the room that is left.
    const size_t unit = unitSize(argument);
    const size_t room = static_cast<size_t>(m_end - m_copy) / unit;
    if (room == 0)
        return &empty;
    KTArgument bounded = argument;
    bounded.length = static_cast<uint32_t>(std::min<size_t>(argument.length, room - 1));
    const size_t bytes = textLength(bounded) * unit;
    const void *const text = argument.type == KT_ARGUMENT_CODE_POINT ? argument.value.units : argument.value.p;
    void *const copy = std::memcpy(m_copy, text, bytes);
    std::memset(m_copy + bytes, 0, unit);
    m_copy += (bytes + unit + 1) & ~size_t{1};
    return copy;
}

RunningSlots::RunningSlots(void **begin, const KTArgument *arguments, size_t count) noexcept
    : m_begin(begin), m_arguments(arguments), m_count(count), m_outer(innermostSlots)
{
    innermostSlots = this;
}

RunningSlots::~RunningSlots()
{
    innermostSlots = m_outer;
}

const void *RunningSlots::pointerOfKind(void *const *slot, uint32_t kind) noexcept
{
    if (innermostSlots == nullptr)
        return nullptr;
    for (size_t i = 0; i < innermostSlots->m_count; ++i)
    {
        const KTArgument &argument = innermostSlots->m_arguments[i];
        if (slot == innermostSlots->m_begin + i)
            return argument.type == KT_ARGUMENT_POINTER && argument.length == kind ? argument.value.p : nullptr;
    }
    return nullptr;
}

} // namespace kelto

const void *KTPointerOfKind(void *const *argSlot, uint32_t kind)
{
    return kelto::RunningSlots::pointerOfKind(argSlot, kind);
}
