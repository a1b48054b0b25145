#include "format/prepared/prepared_call.h"

#include "format/arguments/called_arguments.h"
#include "format/arguments/typed_argument.h"
#include "format/conversion_record.h"
#include "format/formatters/date_time.h"
#include "format/formatters/distinguished_name.h"
#include "format/formatters/entry_id_error_ip.h"
#include "format/formatters/floating_point.h"
#include "format/formatters/text.h"
#include "format/output/finished_text.h"
#include "format/output/format_output.h"
#include "format/prepared/prepared_variants.h"
#include "format/tables/form_table.h"
#include "format/tables/own_table.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace
{

using kelto::Beginning;
using kelto::Layout;
using kelto::PreparedStep;
using kelto::TypedCall;
using kelto::Writer;

/** What a call brings besides its output. It is passed by value to real calls, so that most calls never store it. */
struct Call
{
    const KTPreparedFormat &prepared;
    const KTArgument *arguments;
    KTEncoder encoder;
    void *passThru;
    unsigned options;
};

/** The flags that options add to each conversion. */
int flagsOf(unsigned options)
{
    return ((options & KT_TAG) != 0 ? FLAG_TAG : 0) | ((options & KT_ENCODE_ALL) != 0 ? FLAG_ENCODE : 0);
}

/** Takes the values of the '*' of a conversion. @return the argument behind them. */
const KTArgument *takeLayout(const KTArgument *argument, Layout &layout)
{
    if (layout.width == KT_FROM_ARGUMENTS)
        layout.width = static_cast<int>((argument++)->value.i);
    if (layout.precision == KT_FROM_ARGUMENTS)
        layout.precision = static_cast<int>((argument++)->value.i);
    return argument;
}

/** Makes the slots of a formatter, and has `append` append its text. The buffers for it live here alone. */
template <typename Append>
[[gnu::noinline]] int callFormatter(const KTFormatter &formatter, const KTArgument *values, Call call, Append append)
{
    const auto count = static_cast<size_t>(formatter.argCount);
    kelto::CalledArguments arguments;
    if (!arguments.make(values, call.prepared.slots + (values - call.arguments), count))
        return KT_ERR_NO_MEMORY;
    const kelto::RunningSlots running(arguments.slots(), values, count);
    const kelto::RunningEncoder encoding(call.encoder, call.prepared.table);
    return append([&](const Layout &layout, unsigned long *units, UCS2 *out) {
        return formatter.format(formatter.name, layout.width, layout.precision, layout.flags, call.encoder,
                                call.passThru, arguments.slots(), units, out);
    });
}

/** Calls the function for UTF-8 of a conversion of the caller. */
int callUTF8Format(kelto::FormatOutput<char> &text, const PreparedStep &step, const Layout &layout,
                   const KTArgument *values, const Call &call)
{
    const kelto::RunningEncoder encoding(call.encoder, call.prepared.table);
    const auto called = [&](const Layout &own, size_t *bytes, char *out) {
        return step.utf8Format(step.formatter->name, own.width, own.precision, own.flags, call.encoder, call.passThru,
                               values, bytes, out);
    };
    return text.appendCalledUTF8(called, layout);
}

template <typename Unit>
[[gnu::always_inline]] inline int writeUTF8(kelto::FormatOutput<Unit> &text, bool isBare, const Layout &layout,
                                            const KTArgument &argument)
{
    const auto value = kelto::utf8Of(argument);
    if (value.length >= INT_MAX)
        return KT_ERR_CONVERSION_INVALID_ARGUMENT;
    if (isBare)
        return text.write(kelto::Ending::open, kelto::UTF8Text{value.begin, value.length, UINT64_MAX});
    // The units of a text are counted only where padding depends on them.
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

/** The slots of a conversion. */
uint32_t slotsOf(const PreparedStep &step)
{
    const auto values = static_cast<uint32_t>(step.formatter->argCount);
    return values + (step.layout.width == KT_FROM_ARGUMENTS ? 1 : 0) +
           (step.layout.precision == KT_FROM_ARGUMENTS ? 1 : 0);
}

/** One conversion of a format, as a format. */
class AloneFormat
{
public:
    AloneFormat(const KTPreparedFormat &prepared, const PreparedStep &step) : m_step(step), m_format(prepared)
    {
        m_step.literalBytes = m_step.literalUnits = 0;
        m_step.firstSlot = 0;
        m_format.steps = &m_step;
        m_format.stepCount = 1;
        m_format.slots += step.firstSlot;
        m_format.slotCount = slotsOf(step);
    }
    AloneFormat(const AloneFormat &) = delete;
    AloneFormat &operator=(const AloneFormat &) = delete;

    /** Takes the conversion out of its encoded region. */
    void leaveUnencoded()
    {
        m_step.layout.flags &= ~FLAG_ENCODE;
        m_format.table = nullptr; // the table is needed for its encoder alone
    }

    const KTPreparedFormat &get() const { return m_format; }

private:
    PreparedStep m_step;
    KTPreparedFormat m_format;
};

/** How the text of a conversion that is encoded as a whole is taken apart. */
struct FinishedParts
{
    bool isEncoded;           /**< whether there is anything in it to be encoded */
    const UCS2 *open, *close; /**< the tags that stay as they are */
    unsigned long most;       /**< its units, where they may be far more than those of the argument */
};

FinishedParts finishedParts(Writer writer, bool isTagged)
{
    constexpr unsigned long few = 1UL << 20;
    switch (writer)
    {
    case Writer::nothing:
        return {false, u"", u"", 0};
    case Writer::dateTime:
    case Writer::entryId:
        return {!isTagged, u"", u"", few}; // digits between tags
    case Writer::error:
        return {true, isTagged ? error_tag_o : u"", isTagged ? error_tag_c : u"", ~0UL};
    case Writer::name:
        return {true, isTagged ? dn_tag_o : u"", isTagged ? dn_tag_c : u"", ~0UL};
    default:
        return {true, u"", u"", few};
    }
}

/** Writes a conversion's finished text through the encoder. */
template <typename Unit>
[[gnu::noinline, gnu::cold]] int writeFinished(kelto::FormatOutput<Unit> &text, const PreparedStep &step,
                                               const FinishedParts &parts, const Call &call)
{
    AloneFormat alone(call.prepared, step);
    alone.leaveUnencoded();
    const unsigned options = *parts.open != 0 ? 0U : call.options & KT_TAG;
    kelto::FinishedText finished;
    const auto write = [&](unsigned long *units, UCS2 *out) {
        return KTFormatPrepared(&alone.get(), options, call.passThru, units, out, call.arguments + step.firstSlot,
                                alone.get().slotCount);
    };
    if (const int made = finished.make(write, parts.most))
        return made;
    const kelto::RunningEncoder encoding(call.encoder, call.prepared.table);
    text.write(kelto::Ending::open, kelto::UCS2Text{parts.open, KTUCS2strlen(parts.open)});
    const int result =
        text.appendCalled([&](const Layout &, unsigned long *units,
                              UCS2 *out) { return call.encoder(finished.units(), KT_ENCODE_UCS2, units, out); },
                          {KT_ABSENT, KT_ABSENT, 0});
    text.write(kelto::Ending::open, kelto::UCS2Text{parts.close, KTUCS2strlen(parts.close)});
    return result;
}

bool isEncodedText(Writer writer)
{
    return writer == Writer::character || writer == Writer::utf8Text || writer == Writer::ucs2Text;
}

/** Writes a value; `layout` is that of the step, as this call wants it. */
template <typename Unit>
[[gnu::always_inline]] inline int writeValue(kelto::FormatOutput<Unit> &text, const PreparedStep &step,
                                             const Layout &layout, const KTArgument *argument, const Call &call)
{
    const KTFormatter &formatter = *step.formatter;
    switch (step.writer)
    {
    case Writer::utf8Text:
        return writeUTF8(text, step.isBare, layout, *argument);
    case Writer::signedInteger:
        return step.isBare ? kelto::writeBare(text, argument->value.i)
                           : kelto::writeSigned(text, layout, argument->value.i);
    case Writer::unsignedInteger:
        return kelto::writeUnsigned(text, layout, kelto::unsignedValue(*argument, layout.flags));
    case Writer::octHex:
        return kelto::writeOctHex(text, layout, *formatter.name, kelto::unsignedValue(*argument, layout.flags));
    case Writer::floatingPoint:
        if ((layout.flags & FLAG_L) != 0)
            return kelto::writeFloatingPoint(text, layout, *static_cast<const long double *>(argument->value.p));
        return kelto::writeFloatingPoint(text, layout, argument->value.d);
    case Writer::character:
        return kelto::writeCharacter(text, layout, kelto::unitOf(*argument));
    case Writer::ucs2Text:
    {
        const auto value = kelto::ucs2Of(*argument);
        return kelto::writeText(text, layout, kelto::UCS2Text{value.begin, value.length});
    }
    case Writer::dateTime:
        return writeDateTime(text, formatter.name, layout.flags, *argument);
    case Writer::name:
        return writeName(text, formatter.name, layout.flags, *argument);
    case Writer::entryId:
        return kelto::writeEntryId(text, layout.flags, static_cast<uint32_t>(argument->value.u));
    case Writer::error:
        return writeError(text, layout.flags, *argument);
    case Writer::nothing:
    case Writer::none:
        return 0;
    case Writer::called:
        if constexpr (std::is_same_v<Unit, char>)
            if (step.utf8Format != nullptr)
                return callUTF8Format(text, step, layout, argument, call);
        break;
    }
    return callFormatter(formatter, argument, call,
                         [&](const auto &called) { return text.appendCalled(called, layout); });
}

/** Writes an open conversion: one whose layout depends on the call. */
template <typename Unit> int writeResolved(kelto::FormatOutput<Unit> &text, const PreparedStep &step, const Call &call)
{
    Layout layout = step.layout;
    layout.flags |= flagsOf(call.options);
    const KTArgument *const argument = takeLayout(call.arguments + step.firstSlot, layout);
    if (call.encoder != nullptr && (layout.flags & FLAG_ENCODE) != 0)
    {
        if (step.writer == Writer::character) // a character has no precision
            layout.precision = KT_ABSENT;
        if (isEncodedText(step.writer))
            return callFormatter(*step.formatter, argument, call,
                                 [&](const auto &encoded) { return text.appendEncoded(encoded, layout); });
        const FinishedParts parts = finishedParts(step.writer, (layout.flags & FLAG_TAG) != 0);
        if ((call.options & KT_ENCODE_ALL) != 0 && parts.isEncoded)
            return writeFinished(text, step, parts, call);
    }
    return writeValue(text, step, layout, argument, call);
}

/** Whether a conversion writes a foreign text, which may run from right to left: "s", "U", "E", the caller's own. */
bool isForeign(const PreparedStep &step)
{
    const bool isText = step.writer == Writer::utf8Text || step.writer == Writer::ucs2Text;
    return (isText && step.layout.precision != 0) || step.writer == Writer::error || step.writer == Writer::called;
}

/* These keep the direction of a text from turning the text around it. */
constexpr UCS2 firstStrongIsolate = 0x2068;
constexpr UCS2 popDirectionalIsolate = 0x2069;

/** Writes a conversion that is open, or that the options of the call concern. */
template <typename Unit>
[[gnu::noinline]] int writeOpen(kelto::FormatOutput<Unit> &text, const PreparedStep &step, Call call)
{
    if ((call.options & KT_ISOLATE) == 0 || !isForeign(step))
        return writeResolved(text, step, call);
    text.write(kelto::Ending::open, kelto::UCS2Text{&firstStrongIsolate, 1});
    const int result = writeResolved(text, step, call);
    text.write(kelto::Ending::open, kelto::UCS2Text{&popDirectionalIsolate, 1});
    return result;
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

[[gnu::always_inline]] inline bool accepts(const KTPreparedFormat &prepared, const KTArgument *arguments, size_t count)
{
    return count == prepared.slotCount && (arguments != nullptr || count == 0) &&
           kelto::areAccepted(arguments, prepared.slots, count);
}

/**
 * The variant in place of the format that selects, where it accepts the arguments.
 * @param result  out: 0; else why there is none, and the variant is of no use.
 */
[[gnu::noinline]] const KTPreparedFormat *chooseAccepted(const KTPreparedFormat &prepared, const KTArgument *arguments,
                                                         size_t count, int &result)
{
    result = KT_ERR_INVALID_PARAMETER;
    if (prepared.variants == nullptr || (arguments == nullptr && count != 0))
        return nullptr;
    const KTPreparedFormat *const variant = kelto::chooseVariant(prepared, arguments, count, result);
    if (result == 0 && !accepts(*variant, arguments, count))
        result = KT_ERR_INVALID_PARAMETER;
    return variant;
}

/** Writes a format, or the variant that it selects, once it is known to take the arguments. */
template <typename Unit>
[[gnu::always_inline]] inline int writeFormat(const KTPreparedFormat *prepared, const TypedCall &typed, size_t *size,
                                              Unit *out, Beginning beginning)
{
    if ((typed.options & ~unsigned{KT_TAG | KT_ENCODE_ALL | KT_ISOLATE}) != 0)
        return KT_ERR_INVALID_PARAMETER;
    if (!accepts(*prepared, typed.arguments, typed.count)) // a format that selects another never accepts any
    {
        int result = 0;
        prepared = chooseAccepted(*prepared, typed.arguments, typed.count, result);
        if (result != 0)
            return result;
    }
    unsigned options = typed.options;
    KTEncoder encoder = nullptr;
    if (prepared->table != nullptr)
    {
        encoder = kelto::findEncoder(prepared->table);
        options |= encoder == kelto::encodeOwn ? kelto::optionsOf(prepared->table) : 0;
    }
    if ((options & KT_ENCODE_ALL) != 0 && encoder == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    const Call call = {*prepared, typed.arguments, encoder, typed.passThru, options};
    kelto::FormatOutput<Unit> text(out, size, beginning);
    const Unit *literal = literalsOf(*prepared, out);
    const PreparedStep *const end = prepared->steps + prepared->stepCount;
    for (const PreparedStep *step = prepared->steps; step != end; ++step)
    {
        if (const size_t length = literalLength(*step, literal))
        {
            text.appendLiteral(literal, length);
            literal += length;
        }
        if (step->formatter == nullptr)
            continue;
        const bool isOpen = step->isOpen || call.options != 0;
        const int result = __builtin_expect(isOpen, false)
                               ? writeOpen(text, *step, call)
                               : writeValue(text, *step, step->layout, call.arguments + step->firstSlot, call);
        // As in the calls that prepare nothing: once the text is cut, a failure counts nothing, and is told by the
        // next. Who keeps the beginning wants to know now.
        if (result != 0 && (!text.isTruncated() || beginning == Beginning::kept))
            return text.fail(size, result);
    }
    return text.finish(size);
}

// The text of most messages is UTF-8: only there each way to write it is compiled by itself.
[[gnu::noinline]] int writeUCS2(const KTPreparedFormat *prepared, const TypedCall &typed, size_t *size, UCS2 *out,
                                Beginning beginning)
{
    return writeFormat(prepared, typed, size, out, beginning);
}

/** Whether a call can be answered, which is usual. */
[[gnu::always_inline]] inline bool isAnswerable(const KTPreparedFormat *prepared, const size_t *size, const void *out)
{
    const bool isOne = kelto::isStarted() && prepared != nullptr && size != nullptr && (out != nullptr || *size == 0);
    return __builtin_expect(isOne, true);
}

/** Why a call cannot be answered. */
[[gnu::noinline, gnu::cold]] int refusal()
{
    return kelto::isStarted() ? KT_ERR_INVALID_PARAMETER : KT_ERR_NOT_INITIALIZED;
}

} // namespace

namespace kelto
{

template <>
int formatWithBeginning(const KTPreparedFormat &prepared, const TypedCall &call, size_t *size, UCS2 *out) noexcept
{
    return writeUCS2(&prepared, call, size, out, Beginning::kept);
}

template <>
int formatWithBeginning(const KTPreparedFormat &prepared, const TypedCall &call, size_t *size, char *out) noexcept
{
    return writeFormat(&prepared, call, size, out, Beginning::kept);
}

bool canWrite(const KTPreparedFormat &prepared, unsigned position, const TypedCall &call) noexcept
{
    const PreparedStep *step = prepared.steps;
    while (step->formatter != nullptr && (slotsOf(*step) == 0 || prepared.slots[step->firstSlot].position != position))
        ++step;
    if (step->formatter == nullptr)
        return true;
    const AloneFormat alone(prepared, *step);
    char few[256];
    size_t size = sizeof few;
    const TypedCall one = {call.options, call.passThru, call.arguments + step->firstSlot, alone.get().slotCount};
    const int result = formatWithBeginning(alone.get(), one, &size, few);
    return result == 0 || result == KT_ERR_BUFFER_TOO_SMALL;
}

} // namespace kelto

int KTFormatPrepared(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, UCS2 *out,
                     const KTArgument *arguments, size_t count)
{
    if (!isAnswerable(prepared, size, out))
        return refusal();
    return writeUCS2(prepared, {options, passThru, arguments, count}, size, out, Beginning::ofNoUse);
}

int KTFormatPreparedUTF8(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, char *out,
                         const KTArgument *arguments, size_t count)
{
    if (!isAnswerable(prepared, size, out))
        return refusal();
    const TypedCall typed = {options, passThru, arguments, count};
    return writeFormat(prepared, typed, size, out, Beginning::ofNoUse);
}
