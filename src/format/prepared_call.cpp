#include "format/called_arguments.h"
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
#include "format/variants.h"

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

/** Resolves what a '*' stands for; the argument behind those that were used. */
const KTArgument *takeLayout(const KTArgument *argument, Layout &layout)
{
    if (layout.width == KT_FROM_ARGUMENTS)
        layout.width = static_cast<int>((argument++)->value.i);
    if (layout.precision == KT_FROM_ARGUMENTS)
        layout.precision = static_cast<int>((argument++)->value.i);
    return argument;
}

/** Makes the slots of a formatter and has `append` append what it writes there. */
template <typename Append>
int callFormatter(const KTFormatter &formatter, const KTArgument *values, const Call &call, Append append)
{
    const auto count = static_cast<size_t>(formatter.argCount);
    kelto::CalledArguments arguments;
    if (!arguments.make(values, call.prepared.slots + (values - call.arguments), count))
        return KT_ERR_NO_MEMORY;
    const kelto::RunningSlots running(arguments.slots(), values, count);
    return append([&](const Layout &layout, unsigned long *units, UCS2 *out) {
        return formatter.format(formatter.name, layout.width, layout.precision, layout.flags, call.encoder,
                                call.passThru, arguments.slots(), units, out);
    });
}

/** Calls what a conversion of the caller's own has for UTF-8. */
int callUTF8Format(kelto::FormatOutput<char> &text, const PreparedStep &step, const Layout &layout,
                   const KTArgument *values, const Call &call)
{
    const auto called = [&](const Layout &own, size_t *bytes, char *out) {
        return step.utf8Format(step.formatter->name, own.width, own.precision, own.flags, call.encoder, call.passThru,
                               values, bytes, out);
    };
    return text.appendCalledUTF8(called, layout);
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
        if (step.writer == Writer::character) // which has no precision
            layout.precision = KT_ABSENT;
        return callFormatter(formatter, argument, call,
                             [&](const auto &encoded) { return text.appendEncoded(encoded, layout); });
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

/** Takes the variant in place of the format that selects, where it accepts the arguments. */
[[gnu::noinline]] int chooseAccepted(const KTPreparedFormat *&prepared, const KTArgument *arguments, size_t count)
{
    if (arguments == nullptr && count != 0)
        return KT_ERR_INVALID_PARAMETER;
    int result = 0;
    prepared = kelto::chooseVariant(*prepared, arguments, count, result);
    return result == 0 && !areAccepted(*prepared, arguments, count) ? int{KT_ERR_INVALID_PARAMETER} : result;
}

template <typename Unit>
int formatPrepared(const KTPreparedFormat *prepared, unsigned options, void *passThru, size_t *size, Unit *out,
                   const KTArgument *arguments, size_t count)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (prepared == nullptr || size == nullptr || (out == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    if ((options & ~unsigned{KT_TAG}) != 0)
        return KT_ERR_INVALID_PARAMETER;
    if (!areAccepted(*prepared, arguments, count)) // a format that selects another never accepts any
    {
        if (prepared->variants == nullptr)
            return KT_ERR_INVALID_PARAMETER;
        if (const int result = chooseAccepted(prepared, arguments, count))
            return result;
    }
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
