#include "format/arguments/typed_argument.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>

namespace
{

/** A kind of slot: its name for people, and the arguments that it takes. */
struct SlotKind
{
    const char *name;
    uint32_t type;       // of an argument; 0 for integers, which are compared by value
    int64_t least;       // of integers
    uint64_t most;       // of integers
    uint32_t sameSize;   // the signed type whose negative values count bit for bit in an unsigned slot
    uint32_t signedCode; // the slot's own code, or of an unsigned integer the one of the signed one
};

// By KTSlotCode.
constexpr SlotKind slotKinds[] = {
    {"nothing", 0, 0, 0, 0, 0},
    {"a 16-bit integer", 0, INT16_MIN, INT16_MAX, 0, KT_SLOT_INT16},
    {"a 16-bit integer", 0, 0, UINT16_MAX, 0, KT_SLOT_INT16},
    {"a 32-bit integer", 0, INT32_MIN, INT32_MAX, 0, KT_SLOT_INT32},
    {"a 32-bit integer", 0, 0, UINT32_MAX, KT_ARGUMENT_INT, KT_SLOT_INT32},
    {"a 64-bit integer", 0, INT64_MIN, INT64_MAX, 0, KT_SLOT_INT64},
    {"a 64-bit integer", 0, 0, UINT64_MAX, KT_ARGUMENT_INT64, KT_SLOT_INT64},
    {"an 8-bit character", KT_ARGUMENT_CHAR, 0, UINT8_MAX, 0, KT_SLOT_CHAR},
    {"a UCS-2 unit", KT_ARGUMENT_UNIT, 0, UINT16_MAX, 0, KT_SLOT_UNIT},
    {"a double", KT_ARGUMENT_DOUBLE, 0, 0, 0, KT_SLOT_DOUBLE},
    {"a long double", KT_ARGUMENT_LONG_DOUBLE, 0, 0, 0, KT_SLOT_LONG_DOUBLE},
    {"a UTF-8 string", KT_ARGUMENT_UTF8, 0, 0, 0, KT_SLOT_UTF8},
    {"a UCS-2 string", KT_ARGUMENT_UCS2, 0, 0, 0, KT_SLOT_UCS2},
    {"a pointer", KT_ARGUMENT_POINTER, 0, 0, 0, KT_SLOT_POINTER},
};

/** The code of a slot, and which it has under a flag; the first of the two flags wins. */
struct SlotCodes
{
    uint32_t usual;
    int flag;
    uint32_t flagged;
    int lesserFlag;
    uint32_t lesserFlagged;
};

// By KTArgumentCode; only codes that take a slot are looked up.
constexpr SlotCodes slotCodes[] = {
    {},
    {KT_SLOT_CHAR, FLAG_l, KT_SLOT_UNIT, 0, 0},
    {KT_SLOT_UTF8, 0, 0, 0, 0},
    {KT_SLOT_UCS2, 0, 0, 0, 0},
    {KT_SLOT_INT32, FLAG_h, KT_SLOT_INT16, FLAG_BANG, KT_SLOT_INT64},
    {KT_SLOT_UINT32, FLAG_h, KT_SLOT_UINT16, FLAG_BANG, KT_SLOT_UINT64},
    {KT_SLOT_DOUBLE, FLAG_L, KT_SLOT_LONG_DOUBLE, 0, 0},
    {KT_SLOT_POINTER, 0, 0, 0, 0},
};
static_assert(std::size(slotCodes) == KT_ARG_POINTER + 1);

const SlotKind &kindOf(uint32_t slotCode)
{
    return slotKinds[slotCode < std::size(slotKinds) ? slotCode : 0];
}

bool isAcceptedInteger(const KTArgument &argument, const SlotKind &slot)
{
    if (argument.length != 0)
        return false;
    const int64_t asSigned = argument.value.i;
    switch (argument.type)
    {
    case KT_ARGUMENT_INT:
        if (asSigned < INT32_MIN || asSigned > INT32_MAX)
            return false;
        [[fallthrough]];
    case KT_ARGUMENT_INT64:
        if (asSigned < 0)
            return slot.least < 0 ? asSigned >= slot.least : argument.type == slot.sameSize;
        break;
    case KT_ARGUMENT_UINT:
        if (argument.value.u > UINT32_MAX)
            return false;
        break;
    case KT_ARGUMENT_UINT64:
        break;
    default:
        return false;
    }
    return argument.value.u <= slot.most;
}

size_t lengthOf(const char *text, uint32_t length)
{
    return length == UINT32_MAX ? std::strlen(text) : strnlen(text, length);
}

size_t lengthOf(const UCS2 *text, uint32_t length)
{
    return length == UINT32_MAX ? KTUCS2strlen(text)
                                : static_cast<size_t>(std::find(text, text + length, u'\0') - text);
}

template <typename Unit> kelto::ArgumentText<Unit> textOf(const KTArgument &argument, const Unit *empty)
{
    const auto *const text = static_cast<const Unit *>(argument.value.p);
    return text != nullptr ? kelto::ArgumentText<Unit>{text, lengthOf(text, argument.length)}
                           : kelto::ArgumentText<Unit>{empty, 0};
}

} // namespace

namespace kelto
{

uint32_t slotCodeOf(int argumentCode, int flags) noexcept
{
    const SlotCodes &codes = slotCodes[argumentCode];
    if ((flags & (codes.flag | codes.lesserFlag)) == 0)
        return codes.usual;
    return (flags & codes.flag) != 0 ? codes.flagged : codes.lesserFlagged;
}

const char *slotName(uint32_t slotCode) noexcept
{
    return kindOf(slotCode).name;
}

bool isSameKind(uint32_t slotCode, uint32_t otherCode) noexcept
{
    return kindOf(slotCode).signedCode == kindOf(otherCode).signedCode;
}

bool isAccepted(const KTArgument &argument, uint32_t slotCode) noexcept
{
    const SlotKind &slot = kindOf(slotCode);
    if (slot.type == 0)
        return isAcceptedInteger(argument, slot);
    if (argument.type == KT_ARGUMENT_CODE_POINT)
        return argument.length == 1 ? slotCode == KT_SLOT_UNIT || slotCode == KT_SLOT_UCS2
                                    : argument.length == 2 && slotCode == KT_SLOT_UCS2;
    if (argument.type != slot.type)
        return false;
    switch (slotCode)
    {
    case KT_SLOT_CHAR:
    case KT_SLOT_UNIT:
        return argument.length == 0 && argument.value.u <= slot.most;
    case KT_SLOT_DOUBLE:
        return argument.length == 0;
    case KT_SLOT_LONG_DOUBLE:
        return argument.length == 0 && argument.value.p != nullptr;
    default:
        return true; // the length is that of the text, or the kind
    }
}

bool areAllAccepted(const KTArgument *arguments, const KTSlot *slots, size_t count) noexcept
{
    for (size_t i = 0; i < count; ++i)
        if (!isAccepted(arguments[i], slots[i].code))
            return false;
    return true;
}

ArgumentText<char> utf8Of(const KTArgument &argument) noexcept
{
    return textOf(argument, "");
}

ArgumentText<UCS2> ucs2Of(const KTArgument &argument) noexcept
{
    if (argument.type == KT_ARGUMENT_CODE_POINT)
        return {argument.value.units, lengthOf(argument.value.units, std::min<uint32_t>(argument.length, 2))};
    return textOf(argument, u"");
}

} // namespace kelto

KTArgument KTSlotArgument(void *const *argSlot, int code, int flags)
{
    switch (code)
    {
    case KT_ARG_CHARACTER:
        return KT_UNIT(kelto::readCharacter(*argSlot, flags));
    case KT_ARG_UTF8:
        return KT_UTF8(static_cast<const char *>(*argSlot));
    case KT_ARG_UCS2:
        return KT_UCS2(static_cast<const UCS2 *>(*argSlot));
    case KT_ARG_SIGNED:
        return KT_INT64(kelto::readSigned(*argSlot, flags));
    case KT_ARG_UNSIGNED:
        return KT_UINT64(kelto::readUnsigned(*argSlot, flags));
    case KT_ARG_DOUBLE:
        return KT_DOUBLE((flags & FLAG_L) != 0 ? static_cast<double>(kelto::readSlot<long double>(*argSlot))
                                               : kelto::readSlot<double>(*argSlot));
    default:
        return {};
    }
}
