// The calls that take a format string, with its arguments as a list or as pointers.

#include "kelto.h"

#include "format/arguments/argument_slots.h"
#include "format/arguments/ucs2_copy.h"
#include "format/grammar/format_string.h"
#include "format/output/format_output.h"
#include "format/tables/form_table.h"
#include "lifecycle/global_state.h"
#include "platform/scoped.h"

#include <cstdarg>

namespace
{

// A call is: convert and check the format (CheckedFormat), number and fill the slots (argument_slots.h), write the text
// (writeText). Its two forms, a list of arguments and pointers to them, differ in the second step alone.

/** What a call has besides its arguments: where the text goes, and which encoder it uses. */
struct Output
{
    KTEncoder encoder;
    void *passThru;
    unsigned long *size;
    UCS2 *out;
};

/** Takes a '*' width or precision from its slot, if it is one. */
bool takeFromSlot(void **&slot, int &value)
{
    if (value != KT_FROM_ARGUMENTS)
        return true;
    if (*slot == nullptr)
        return false;
    value = *static_cast<const int *>(*slot++);
    return true;
}

/** Calls the conversion's formatter; its failure, or 0 also where the text was merely too long. */
int appendConversion(kelto::FormatOutput<UCS2> &text, const KTParameter &parameter, void **slots, const Output &output)
{
    kelto::Layout layout = {parameter.width, parameter.precision, parameter.flags};
    void **slot = slots + parameter.argIndex;
    const KTFormatter &formatter = *parameter.formatter;
    if (!takeFromSlot(slot, layout.width) || !takeFromSlot(slot, layout.precision))
        return KT_ERR_INVALID_PARAMETER;
    if (formatter.argCount > 0 && *slot == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    const auto call = [&formatter, &output, slot](const kelto::Layout &called, unsigned long *units, UCS2 *out) {
        return formatter.format(formatter.name, called.width, called.precision, called.flags, output.encoder,
                                output.passThru, slot, units, out);
    };
    return text.appendCalledWhole(call, layout);
}

/** buildBuffer() for a format of known length, whose places may be noted. */
int writeText(const UCS2 *format, size_t length, kelto::PercentPlaces<UCS2> &places, const KTParameter *parameters,
              void **slots, const Output &output)
{
    kelto::FormatOutput<UCS2> text(output.out, output.size);
    int result = 0;
    const auto literal = [&](const UCS2 *units, size_t count) { text.appendLiteral(units, count); };
    const auto conversion = [&](const kelto::PercentPlace<UCS2> &place) {
        const KTParameter &parameter = parameters[place.position - 1];
        if (kelto::isMarker(parameter))
            return true;
        // Once the text is cut, the caller has to call again anyway. So the call goes on measuring, and this conversion
        // counts nothing. The next call tells what is wrong.
        result = appendConversion(text, parameter, slots, output);
        return result == 0 || text.isTruncated();
    };
    return kelto::walkFormat(format, length, places, literal, conversion) ? text.finish(output.size)
                                                                          : text.fail(output.size, result);
}

/** A format string as all six calls need it: in UCS-2, checked, its slots numbered. */
class CheckedFormat
{
public:
    int check(const char *format, formTable *table, bool tag)
    {
        if (const int result = m_text.convert(format))
            return result;
        const int result = kelto::checkFormat(m_text.units(), m_text.length(), table, m_parameters, m_places).result;
        if (result == 0)
            m_slotCount = kelto::completeParameters(m_parameters.get(), tag).slots;
        return result;
    }

    const KTParameter *parameters() const { return m_parameters.get(); }
    size_t slotCount() const { return m_slotCount; }

    int write(void **slots, const Output &output)
    {
        return writeText(m_text.units(), m_text.length(), m_places, m_parameters.get(), slots, output);
    }

private:
    kelto::UCS2Copy m_text;
    kelto::PercentPlaces<UCS2> m_places;
    kelto::TagBlock<KTParameter> m_parameters;
    size_t m_slotCount = 0;
};

} // namespace

int buildBuffer(KTParameter *parameters, KTEncoder encoder, void *passThru, unsigned long *size, UCS2 *out,
                const UCS2 *format, void **slots)
{
    kelto::PercentPlaces<UCS2> places;
    return writeText(format, KTUCS2strlen(format), places, parameters, slots, {encoder, passThru, size, out});
}

// Flattened: the steps are many and small, and their calls would cost more than their work.
[[gnu::flatten]] int KTvFormatStringWithPassThru(char * /*reserved*/, bool tag, formTable *table, void *passThru,
                                                 unsigned long *size, UCS2 *out, char *format, va_list arguments)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    CheckedFormat checked;
    if (const int result = checked.check(format, table, tag))
        return result;
    kelto::ArgumentCells cells;
    va_list list;
    va_copy(list, arguments);
    const bool isComplete = cells.collect(checked.parameters(), checked.slotCount(), &list);
    va_end(list);
    if (!isComplete)
        return KT_ERR_NO_MEMORY;
    return checked.write(cells.slots(), {kelto::findEncoder(table), passThru, size, out});
}

[[gnu::flatten]] int KTvpFormatStringWithPassThru(char * /*reserved*/, bool tag, formTable *table, void *passThru,
                                                  unsigned long *size, UCS2 *out, char *format, void **arguments)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    CheckedFormat checked;
    if (const int result = checked.check(format, table, tag))
        return result;
    if (kelto::countPointers(arguments) != checked.slotCount())
        return KT_ERR_INVALID_PARAMETER;
    return checked.write(arguments, {kelto::findEncoder(table), passThru, size, out});
}

int KTvFormatString(char *reserved, bool tag, unsigned long *size, UCS2 *out, char *format, va_list arguments)
{
    return KTvFormatStringWithPassThru(reserved, tag, nullptr, nullptr, size, out, format, arguments);
}

int KTvpFormatString(char *reserved, bool tag, unsigned long *size, UCS2 *out, char *format, void **arguments)
{
    return KTvpFormatStringWithPassThru(reserved, tag, nullptr, nullptr, size, out, format, arguments);
}

int KTFormatString(char *reserved, bool tag, unsigned long *size, UCS2 *out, char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int result = KTvFormatStringWithPassThru(reserved, tag, nullptr, nullptr, size, out, format, arguments);
    va_end(arguments);
    return result;
}

int KTFormatStringWithPassThru(char *reserved, bool tag, formTable *table, void *passThru, unsigned long *size,
                               UCS2 *out, char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int result = KTvFormatStringWithPassThru(reserved, tag, table, passThru, size, out, format, arguments);
    va_end(arguments);
    return result;
}
