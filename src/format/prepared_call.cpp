#include "format/conversion_record.h"
#include "format/form_table.h"
#include "format/format_output.h"
#include "format/formatters/date_time.h"
#include "format/formatters/distinguished_name.h"
#include "format/formatters/entry_id_error_ip.h"
#include "format/formatters/floating_point.h"
#include "format/formatters/text.h"
#include "format/prepared.h"
#include "format/typed_argument.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace
{

using kelto::Layout;
using kelto::PreparedStep;
using kelto::Writer;

/** What a call brings besides its text and arguments. */
struct Call
{
    const KTPreparedFormat &prepared;
    const KTArgument *arguments;
    KTEncoder encoder;
    void *passThru;
    int addedFlags;
};

/** The slots of one conversion that is called, and the kinds of the pointers among its arguments. */
struct CalledSlots
{
    void **begin;
    const KTArgument *arguments;
    size_t count;
    const CalledSlots *outer; // of the call in which this one runs, if any
};

// A formatter may itself format something.
thread_local const CalledSlots *runningSlots = nullptr;

class RunningSlots
{
public:
    explicit RunningSlots(const CalledSlots &slots) { runningSlots = &slots; }
    ~RunningSlots() { runningSlots = runningSlots->outer; }
    RunningSlots(const RunningSlots &) = delete;
    RunningSlots &operator=(const RunningSlots &) = delete;
};

/** A value in the size that a formatter reads. */
union Cell
{
    uint64_t integer;
    uint16_t unit;
    double number;
    long double longNumber;
    const void *pointer;
};

/** Whether a text has to be copied for its terminator. */
bool isCopied(const KTArgument &argument)
{
    const bool isText = argument.type == KT_ARGUMENT_UTF8 || argument.type == KT_ARGUMENT_UCS2;
    return isText && argument.length != UINT32_MAX && argument.value.p != nullptr;
}

size_t unitSize(const KTArgument &argument)
{
    return argument.type == KT_ARGUMENT_UTF8 ? sizeof(char) : sizeof(UCS2);
}

/** The units of a text; it may end before the length that was given with it. */
size_t textLength(const KTArgument &argument)
{
    return argument.type == KT_ARGUMENT_UTF8 ? kelto::utf8Of(argument).length : kelto::ucs2Of(argument).length;
}

/** The bytes that a copy takes, the next of which may be UCS-2; 0 for what is not copied. */
size_t copySize(const KTArgument &argument)
{
    return isCopied(argument) ? ((textLength(argument) + 1) * unitSize(argument) + 1) & ~size_t{1} : 0;
}

/** The arguments of one conversion as its function takes them: slots that point to texts, and to cells of values. */
class CalledArguments
{
public:
    /** False when memory ran out: a few arguments and short texts need none. */
    bool make(const KTArgument *arguments, const KTSlot *slots, size_t count)
    {
        size_t texts = 0;
        for (size_t i = 0; i < count; ++i)
            texts += copySize(arguments[i]);
        const size_t size = count * (sizeof(Cell) + sizeof(void *)) + sizeof(void *) + texts;
        char *at = m_usual;
        if (size > sizeof m_usual)
        {
            m_long = kelto::allocate<char>(glbResHandle, size);
            at = m_long.get();
        }
        if (at == nullptr)
            return false;
        auto *const cells = reinterpret_cast<Cell *>(at);
        m_slots = reinterpret_cast<void **>(cells + count);
        m_copy = reinterpret_cast<char *>(m_slots + count + 1);
        m_end = m_copy + texts;
        for (size_t i = 0; i < count; ++i)
            m_slots[i] = slotOf(arguments[i], slots[i].code, cells[i]);
        m_slots[count] = nullptr;
        return true;
    }

    void **slots() const { return m_slots; }

private:
    void *slotOf(const KTArgument &argument, uint32_t code, Cell &cell)
    {
        switch (code)
        {
        case KT_SLOT_UTF8:
        case KT_SLOT_UCS2:
            return textOf(argument);
        case KT_SLOT_UNIT:
            cell.unit = static_cast<uint16_t>(argument.value.u);
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

    void *textOf(const KTArgument &argument)
    {
        static UCS2 empty = 0; // of either encoding
        if (argument.value.p == nullptr)
            return &empty;
        if (!isCopied(argument))
            return const_cast<void *>(argument.value.p);
        // A text that has grown since it was measured is cut to the room that is left.
        const size_t unit = unitSize(argument);
        const size_t room = static_cast<size_t>(m_end - m_copy) / unit;
        if (room == 0)
            return &empty;
        KTArgument bounded = argument;
        bounded.length = static_cast<uint32_t>(std::min<size_t>(argument.length, room - 1));
        const size_t bytes = textLength(bounded) * unit;
        void *const copy = std::memcpy(m_copy, argument.value.p, bytes);
        std::memset(m_copy + bytes, 0, unit);
        m_copy += (bytes + unit + 1) & ~size_t{1};
        return copy;
    }

    alignas(Cell) char m_usual[512];
    kelto::TagBlock<char> m_long;
    void **m_slots = nullptr;
    char *m_copy = nullptr; // where the next copy goes
    char *m_end = nullptr;
};

/** Resolves what a '*' stands for; the argument behind those that were used. */
const KTArgument *takeLayout(const KTArgument *argument, Layout &layout)
{
    if (layout.width == KT_FROM_ARGUMENTS)
        layout.width = static_cast<int>((argument++)->value.i);
    if (layout.precision == KT_FROM_ARGUMENTS)
        layout.precision = static_cast<int>((argument++)->value.i);
    return argument;
}

template <typename Unit>
int callFormatter(kelto::FormatOutput<Unit> &text, const KTFormatter &formatter, const Layout &layout,
                  const KTArgument *values, const Call &call, const Layout &padding = {KT_ABSENT, KT_ABSENT, 0})
{
    const auto count = static_cast<size_t>(formatter.argCount);
    CalledArguments arguments;
    if (!arguments.make(values, call.prepared.slots + (values - call.arguments), count))
        return KT_ERR_NO_MEMORY;
    const CalledSlots slots = {arguments.slots(), values, count, runningSlots};
    const RunningSlots running(slots);
    return text.appendCalled(
        [&](unsigned long *units, UCS2 *out) {
            return formatter.format(formatter.name, layout.width, layout.precision, layout.flags, call.encoder,
                                    call.passThru, slots.begin, units, out);
        },
        padding);
}

template <typename Unit>
int writeUTF8(kelto::FormatOutput<Unit> &text, const Layout &layout, const KTArgument &argument)
{
    const auto value = kelto::utf8Of(argument);
    if (value.length >= INT_MAX)
        return KT_ERR_CONVERSION_INVALID_ARGUMENT;
    // How many units a text has is asked only where padding depends on it.
    const uint64_t units = layout.width > 0 ? kelto::countUnits(value.begin, value.length) : UINT64_MAX;
    return kelto::writeText(text, layout, kelto::UTF8Text{value.begin, value.length, units});
}

template <typename Unit>
int writeDateTime(kelto::FormatOutput<Unit> &text, const char *name, int flags, const KTArgument &argument)
{
    const auto value = kelto::utf8Of(argument);
    // Terminated, since a text with a length of its own need not be; a longer one fails at its last byte.
    char copy[kelto::DateTimeText::maxLength + 2];
    const size_t length = std::min(value.length, sizeof copy - 1);
    std::memcpy(copy, value.begin, length);
    copy[length] = '\0';
    kelto::DateTimeText formatted;
    if (const int result = formatted.make(copy, strnlen(copy, length), name, flags))
        return result;
    return text.write(kelto::Ending::open, formatted.piece());
}

template <typename Unit> int writeError(kelto::FormatOutput<Unit> &text, int flags, const KTArgument &argument)
{
    const auto value = kelto::utf8Of(argument);
    if (value.length >= INT_MAX)
        return KT_ERR_CONVERSION_INVALID_ARGUMENT;
    return kelto::writeError(text, flags, kelto::UTF8Text{value.begin, value.length, UINT64_MAX});
}

template <typename Unit>
int writeName(kelto::FormatOutput<Unit> &text, const char *convName, int flags, const KTArgument &argument)
{
    const auto value = kelto::ucs2Of(argument);
    const kelto::DistinguishedName name(value.begin, value.length);
    return kelto::writeName(text, flags, kelto::NameText(name, kelto::nameKindOf(convName)));
}

bool isEncoded(Writer writer)
{
    return writer == Writer::character || writer == Writer::utf8Text || writer == Writer::ucs2Text;
}

template <typename Unit>
int writeConversion(kelto::FormatOutput<Unit> &text, const PreparedStep &step, const Call &call)
{
    Layout layout = step.layout;
    layout.flags |= call.addedFlags;
    const KTArgument *const argument = takeLayout(call.arguments + step.firstSlot, layout);
    const KTFormatter &formatter = *step.formatter;
    if (call.encoder != nullptr && (layout.flags & FLAG_ENCODE) != 0 && isEncoded(step.writer))
    {
        if constexpr (std::is_same_v<Unit, UCS2>)
            return callFormatter(text, formatter, layout, argument, call);
        return callFormatter(text, formatter, {KT_ABSENT, layout.precision, layout.flags}, argument, call, layout);
    }
    switch (step.writer)
    {
    case Writer::utf8Text:
        return writeUTF8(text, layout, *argument);
    case Writer::signedInteger:
        return kelto::writeSigned(text, layout, argument->value.i);
    case Writer::unsignedInteger:
        return kelto::writeUnsigned(text, layout, kelto::unsignedValue(*argument, layout.flags));
    case Writer::octHex:
        return kelto::writeOctHex(text, layout, *formatter.name, kelto::unsignedValue(*argument, layout.flags));
    case Writer::floatingPoint:
        if ((layout.flags & FLAG_L) != 0)
            return kelto::writeFloatingPoint(text, layout, *static_cast<const long double *>(argument->value.p));
        return kelto::writeFloatingPoint(text, layout, argument->value.d);
    case Writer::character:
        return kelto::writeCharacter(text, layout, static_cast<UCS2>(argument->value.u));
    case Writer::ucs2Text:
    {
        const auto value = kelto::ucs2Of(*argument);
        return kelto::writeText(text, layout, kelto::Text{value.begin, value.length});
    }
    case Writer::dateTime:
        return writeDateTime(text, formatter.name, layout.flags, *argument);
    case Writer::name:
        return writeName(text, formatter.name, layout.flags, *argument);
    case Writer::entryId:
        return kelto::writeEntryId(text, layout.flags, static_cast<uint32_t>(argument->value.u));
    case Writer::error:
        return writeError(text, layout.flags, *argument);
    case Writer::address:
    case Writer::none:
        return 0;
    case Writer::called:
        break;
    }
    return callFormatter(text, formatter, layout, argument, call);
}

const UCS2 *literalsOf(const KTPreparedFormat &prepared, const UCS2 *)
{
    return prepared.units;
}

const char *literalsOf(const KTPreparedFormat &prepared, const char *)
{
    return prepared.bytes;
}

size_t literalLength(const PreparedStep &step, const UCS2 *)
{
    return step.literalUnits;
}

size_t literalLength(const PreparedStep &step, const char *)
{
    return step.literalBytes;
}

template <typename Unit> int writeSteps(const Call &call, size_t *size, Unit *out)
{
    kelto::FormatOutput<Unit> text(out, size);
    const Unit *literal = literalsOf(call.prepared, out);
    const PreparedStep *const end = call.prepared.steps + call.prepared.stepCount;
    for (const PreparedStep *step = call.prepared.steps; step != end; ++step)
    {
        if (const size_t length = literalLength(*step, literal))
        {
            text.appendLiteral(literal, length);
            literal += length;
        }
        if (step->formatter == nullptr)
            continue;
        // As in the calls that prepare nothing: once the text is cut, a failure counts nothing, and is told by the
        // next.
        const int result = writeConversion(text, *step, call);
        if (result != 0 && !text.isTruncated())
            return text.fail(size, result);
    }
    return text.finish(size);
}

bool areAccepted(const KTPreparedFormat &prepared, const KTArgument *arguments, size_t count)
{
    if (count != prepared.slotCount || (arguments == nullptr && count != 0))
        return false;
    for (size_t i = 0; i < count; ++i)
        if (!kelto::isAccepted(arguments[i], prepared.slots[i].code))
            return false;
    return true;
}

template <typename Unit>
int formatPrepared(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, Unit *out,
                   const KTArgument *arguments, size_t count)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (prepared == nullptr || size == nullptr || (out == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    if ((options & ~unsigned{KT_TAG}) != 0 || !areAccepted(*prepared, arguments, count))
        return KT_ERR_INVALID_PARAMETER;
    const Call call = {*prepared, arguments, kelto::findEncoder(prepared->table), passThru,
                       (options & KT_TAG) != 0 ? FLAG_TAG : 0};
    return writeSteps(call, size, out);
}

} // namespace

int KTFormatPrepared(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, UCS2 *out,
                     const KTArgument *arguments, size_t count)
{
    return formatPrepared(prepared, options, passThru, size, out, arguments, count);
}

int KTFormatPreparedUTF8(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, char *out,
                         const KTArgument *arguments, size_t count)
{
    return formatPrepared(prepared, options, passThru, size, out, arguments, count);
}

const void *KTPointerOfKind(void *const *argSlot, uint32_t kind)
{
    if (runningSlots == nullptr)
        return nullptr;
    for (size_t i = 0; i < runningSlots->count; ++i)
    {
        const KTArgument &argument = runningSlots->arguments[i];
        if (argSlot == runningSlots->begin + i)
            return argument.type == KT_ARGUMENT_POINTER && argument.length == kind ? argument.value.p : nullptr;
    }
    return nullptr;
}
