#include "kelto.h"

#include "format/arguments.h"
#include "format/converted_text.h"
#include "format/form_table.h"
#include "format/format_string.h"
#include "lifecycle/state.h"
#include "platform/scoped.h"

#include <algorithm>
#include <cstdarg>

namespace
{

// A call is: convert and check the format (PreparedFormat), number and fill the slots (arguments.h), write the text
// (writeText). Its two forms, a list of arguments and pointers to them, differ in the second step alone.

/** What does not depend on the arguments: where the text goes, and by which encoder. */
struct Output
{
    KTEncoder encoder;
    void *passThru;
    unsigned long *size;
    UCS2 *out;
};

/**
 * The text of a call as it grows: written while it fits, measured to its end in any case. The room counts the terminator,
 * and what is written never exceeds what is counted, so the room at m_next is at least room().
 */
class GrowingText
{
public:
    explicit GrowingText(const Output &output)
        : m_output(output), m_capacity(*output.size), m_next(output.out), m_isTruncated(m_capacity == 0)
    {
    }

    void appendLiteral(const UCS2 *units, size_t count)
    {
        if (!m_isTruncated)
        {
            const unsigned long writable = room() > 0 ? room() - 1 : 0;
            const size_t written = std::min<size_t>(count, writable);
            m_next = std::copy_n(units, written, m_next);
            m_isTruncated = written < count;
        }
        addToTotal(count);
    }

    /** Calls the conversion's formatter; its failure, or 0 also where the text was merely too long. */
    int appendConversion(const KTParameter &parameter, void **slots)
    {
        int width = parameter.width;
        int precision = parameter.precision;
        void **slot = slots + parameter.argIndex;
        const KTFormatter &formatter = *parameter.formatter;
        if (!takeFromSlot(slot, width) || !takeFromSlot(slot, precision))
            return KT_ERR_INVALID_PARAMETER;
        if (formatter.argCount > 0 && *slot == nullptr)
            return KT_ERR_INVALID_PARAMETER;

        unsigned long units = room();
        const unsigned long given = units;
        const int result = formatter.format(formatter.name, width, precision, parameter.flags, m_output.encoder,
                                            m_output.passThru, slot, &units, m_next);
        if (result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
            return result;
        // What claims more than its room counts as not written; nothing at all may be written into no room.
        const bool isWritten = result == 0 && (units == 0 || units < given);
        m_next += isWritten ? units : 0;
        m_isTruncated = m_isTruncated || !isWritten;
        addToTotal(units);
        return 0;
    }

    bool isTruncated() const { return m_isTruncated; }

    int finish()
    {
        terminate(m_next);
        *m_output.size = m_total;
        return m_isTruncated ? KT_ERR_BUFFER_TOO_SMALL : 0;
    }

    int fail(int result)
    {
        terminate(m_output.out);
        *m_output.size = 0;
        return result;
    }

private:
    unsigned long room() const { return m_capacity > m_total ? m_capacity - m_total : 0; }

    void addToTotal(unsigned long units)
    {
        if (__builtin_add_overflow(m_total, units, &m_total))
            m_total = ~0UL;
    }

    void terminate(UCS2 *where) const
    {
        if (m_capacity > 0)
            *where = 0;
    }

    /** Takes a '*' width or precision from its slot, if it is one. */
    static bool takeFromSlot(void **&slot, int &value)
    {
        if (value != KT_FROM_ARGUMENTS)
            return true;
        if (*slot == nullptr)
            return false;
        value = *static_cast<const int *>(*slot++);
        return true;
    }

    Output m_output;
    unsigned long m_capacity;
    unsigned long m_total = 0;
    UCS2 *m_next;
    bool m_isTruncated; // from the start where there is no room at all
};

/** buildBuffer() for a format of known length, whose places may be noted. */
int writeText(const UCS2 *format, size_t length, kelto::PercentPlaces &places, const KTParameter *parameters,
              void **slots, const Output &output)
{
    GrowingText text(output);
    const UCS2 *const end = format + length;
    for (const UCS2 *from = format;;)
    {
        const kelto::PercentPlace place = places.next(from, end);
        const bool isPercentSign = place.position == 0 && place.begin != end;
        if (place.begin != from || isPercentSign)
            text.appendLiteral(from, static_cast<size_t>(place.begin - from) + (isPercentSign ? 1 : 0));
        if (place.begin == end)
            return text.finish();
        from = place.end;
        if (isPercentSign)
            continue;
        const KTParameter &parameter = parameters[place.position - 1];
        if (kelto::isMarker(parameter))
            continue;
        // Once the text is cut, the caller has to come again anyway: go on measuring, this conversion counting nothing;
        // the next call tells what is wrong.
        const int result = text.appendConversion(parameter, slots);
        if (result != 0 && !text.isTruncated())
            return text.fail(result);
    }
}

/** A format string as both drivers need it: in UCS-2, checked, its slots numbered. */
class PreparedFormat
{
public:
    int prepare(const char *format, formTable *table, bool tag)
    {
        if (const int result = m_text.convert(format))
            return result;
        KTParameter *parameters = nullptr;
        const int result = kelto::checkFormat(m_text.units(), m_text.length(), table, &parameters, m_places);
        m_parameters.reset(parameters);
        if (result == 0)
            m_slotCount = kelto::numberSlots(parameters, tag);
        return result;
    }

    const KTParameter *parameters() const { return m_parameters.get(); }
    size_t slotCount() const { return m_slotCount; }

    int write(void **slots, const Output &output)
    {
        return writeText(m_text.units(), m_text.length(), m_places, m_parameters.get(), slots, output);
    }

private:
    kelto::ConvertedText m_text;
    kelto::PercentPlaces m_places;
    kelto::TagBlock<KTParameter> m_parameters;
    size_t m_slotCount = 0;
};

size_t countPointers(void *const *pointers)
{
    size_t count = 0;
    while (pointers[count] != nullptr)
        ++count;
    return count;
}

} // namespace

int buildBuffer(KTParameter *parameters, KTEncoder encoder, void *passThru, unsigned long *size, UCS2 *out,
                const UCS2 *format, void **slots)
{
    kelto::PercentPlaces places;
    return writeText(format, KTUCS2strlen(format), places, parameters, slots, {encoder, passThru, size, out});
}

// Flattened: the steps are many and small, and calling them would cost more than they do.
[[gnu::flatten]] int KTvFormatStringWithPassThru(char * /*reserved*/, bool tag, formTable *table, void *passThru,
                                                 unsigned long *size, UCS2 *out, char *format, va_list arguments)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    PreparedFormat prepared;
    if (const int result = prepared.prepare(format, table, tag))
        return result;
    kelto::ArgumentCells cells;
    if (!cells.collect(prepared.parameters(), prepared.slotCount(), arguments))
        return KT_ERR_NO_MEMORY;
    return prepared.write(cells.slots(), {kelto::findEncoder(table), passThru, size, out});
}

[[gnu::flatten]] int KTvpFormatStringWithPassThru(char * /*reserved*/, bool tag, formTable *table, void *passThru,
                                                  unsigned long *size, UCS2 *out, char *format, void **arguments)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    PreparedFormat prepared;
    if (const int result = prepared.prepare(format, table, tag))
        return result;
    if (countPointers(arguments) != prepared.slotCount())
        return KT_ERR_INVALID_PARAMETER;
    return prepared.write(arguments, {kelto::findEncoder(table), passThru, size, out});
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
