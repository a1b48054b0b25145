#include "format/prepared/prepared_format.h"

#include "format/arguments/argument_slots.h"
#include "format/arguments/typed_argument.h"
#include "format/grammar/format_string.h"
#include "format/prepared/lost_encoding.h"
#include "format/prepared/prepared_variants.h"
#include "format/tables/form_table.h"
#include "format/tables/utf8_formats.h"
#include "format/variants/nil_conversion.h"
#include "lifecycle/global_state.h"
#include "strconv/ascii_run.h"
#include "strconv/utf8_text.h"

#include <algorithm>
#include <cstring>
#include <unicode/utf16.h>

// A format is checked as by any other call. What the check found is then laid out in one block: a step for each
// conversion in the order of the text, which has the length of the literal text before it; the slots in the order of
// passing; and the literal text of all steps in a row, in UCS-2 and in UTF-8.

namespace
{

using kelto::PreparedStep;
using kelto::Writer;

/** A formatter of the library's own, the one argument that it knows, and what it writes. */
struct OwnFormatter
{
    KTFormatFunction format;
    int argument;
    Writer writer;
};

constexpr OwnFormatter ownFormatters[] = {
    {formatUTF8Str, KT_ARG_UTF8, Writer::utf8Text},
    {formatInteger, KT_ARG_SIGNED, Writer::signedInteger},
    {formatUnsigned, KT_ARG_UNSIGNED, Writer::unsignedInteger},
    {formatOctHex, KT_ARG_UNSIGNED, Writer::octHex},
    {formatDouble, KT_ARG_DOUBLE, Writer::floatingPoint},
    {formatChar, KT_ARG_CHARACTER, Writer::character},
    {formatUCS2Str, KT_ARG_UCS2, Writer::ucs2Text},
    {formatDateTime, KT_ARG_UTF8, Writer::dateTime},
    {formatDN, KT_ARG_UCS2, Writer::name},
    {formatEID, KT_ARG_UNSIGNED, Writer::entryId},
    {formatError, KT_ARG_UTF8, Writer::error},
    {formatIP, KT_ARG_UTF8, Writer::nothing},
    {kelto::formatNil, KT_ARG_SIGNED, Writer::nothing},
};

// A formatter is known by the function in its record, not by the address of the record: private copies and tables of
// the caller may hold the built-in conversions too. A record with other arguments than its function knows is called
// like a conversion of the caller.
Writer writerOf(const KTFormatter &formatter)
{
    for (const OwnFormatter &own : ownFormatters)
        if (formatter.format == own.format)
            return formatter.argTypes[0] == own.argument && formatter.argTypes[1] == KT_ARG_END ? own.writer
                                                                                                : Writer::called;
    return Writer::called;
}

bool hasNumbers(const KTParameter &parameter)
{
    return parameter.width != KT_ABSENT || parameter.precision != KT_ABSENT;
}

bool isOpen(const KTParameter &parameter)
{
    return (parameter.flags & FLAG_ENCODE) != 0 ||
           (hasNumbers(parameter) &&
            (parameter.width == KT_FROM_ARGUMENTS || parameter.precision == KT_FROM_ARGUMENTS));
}

bool isBare(const KTParameter &parameter)
{
    constexpr int layoutFlags = FLAG_MINUS | FLAG_PLUS | FLAG_SPACE | FLAG_HASH | FLAG_ZERO;
    return !hasNumbers(parameter) && (parameter.flags & layoutFlags) == 0;
}

template <typename T> T *take(char *&at, size_t count)
{
    auto *const taken = reinterpret_cast<T *>(at);
    at += count * sizeof(T);
    return taken;
}

/** Room for text in both encodings. */
struct TextSizes
{
    size_t units, bytes;
};

/** The literal text of a format as it grows in both encodings. Nothing is written beyond the room. */
class LiteralText
{
public:
    LiteralText(UCS2 *units, char *bytes, const TextSizes &room)
        : m_units(units), m_bytes(bytes), m_unitsLeft(room.units), m_spareBytes(room.bytes - room.units)
    {
    }

    const UCS2 *unitsEnd() const { return m_units; }
    const char *bytesEnd() const { return m_bytes; }

    /** Appends UTF-8, perhaps malformed. */
    void append(const char *text, size_t length)
    {
        for (const char *const end = text + length;;)
        {
            text += appendAscii(text, static_cast<size_t>(end - text));
            if (text == end || !appendCodePoint(kelto::takeCodePoint(text, end)))
                return;
        }
    }

private:
    /** @return the length of the ASCII at the start of the text, as far as there is room. */
    size_t appendAscii(const char *text, size_t length)
    {
        constexpr size_t fewUnits = 4; // for which the steps of an ASCII run do not pay
        const size_t limit = std::min(length, m_unitsLeft);
        size_t run = 0;
        if (limit < fewUnits)
            for (; run < limit && kelto::isAsciiByte(text[run]); ++run)
                m_units[run] = static_cast<unsigned char>(m_bytes[run] = text[run]);
        else
        {
            run = kelto::widenAscii(text, limit, m_units);
            kelto::copyAsciiBytes(text, run, m_bytes);
        }
        advance(run, run);
        return run;
    }

    bool appendCodePoint(UChar32 codePoint)
    {
        const size_t units = U16_LENGTH(codePoint);
        const size_t bytes = kelto::utf8Length(codePoint);
        if (units > m_unitsLeft || bytes - units > m_spareBytes)
            return false;
        size_t at = 0;
        U16_APPEND_UNSAFE(m_units, at, codePoint);
        at = 0;
        U8_APPEND_UNSAFE(m_bytes, at, codePoint);
        advance(units, bytes);
        m_spareBytes -= bytes - units;
        return true;
    }

    void advance(size_t units, size_t bytes)
    {
        m_units += units;
        m_bytes += bytes;
        m_unitsLeft -= units;
    }

    UCS2 *m_units;
    char *m_bytes;
    size_t m_unitsLeft;
    size_t m_spareBytes; // left beyond one byte for each unit
};

/** Lays a checked format out as a block. */
class Preparation
{
public:
    kelto::FormatVerdict run(const char *format, size_t length, formTable *table, kelto::PreparedOwner &prepared)
    {
        kelto::FormatVerdict verdict = kelto::checkFormat(format, length, table, m_many, m_places, &m_few);
        if (verdict.result != 0)
            return verdict;
        if (m_many != nullptr)
            m_parameters = m_many.get();
        m_count = kelto::completeParameters(m_parameters, false);
        prepared.reset(build(format, length, table));
        if (prepared == nullptr)
            verdict.result = KT_ERR_NO_MEMORY;
        return verdict;
    }

private:
    /** Null where memory ran out. */
    KTPreparedFormat *build(const char *format, size_t length, formTable *table) const
    {
        const size_t stepCount = m_count.conversions + 1; // the last for the text behind them
        const TextSizes sizes = sizesOf(format, length);
        char *at = kelto::allocate<char>(glbResHandle, sizeof(KTPreparedFormat) + stepCount * sizeof(PreparedStep) +
                                                           m_count.slots * (sizeof(KTSlot) + sizeof(uint8_t)) +
                                                           sizes.units * sizeof(UCS2) + sizes.bytes)
                       .release();
        if (at == nullptr)
            return nullptr;
        auto *const prepared = take<KTPreparedFormat>(at, 1);
        auto *const steps = take<PreparedStep>(at, stepCount);
        auto *const slots = take<KTSlot>(at, m_count.slots);
        auto *const units = take<UCS2>(at, sizes.units);
        auto *const encodings = reinterpret_cast<uint8_t *>(at + sizes.bytes);
        *prepared = {table,
                     static_cast<uint32_t>(stepCount),
                     static_cast<uint32_t>(m_count.slots),
                     steps,
                     slots,
                     units,
                     at,
                     nullptr,
                     nullptr};
        listSlots(slots);
        if (fill(format, length, steps, LiteralText(units, at, sizes)))
        {
            kelto::noteEncodings(*prepared, encodings);
            prepared->encodings = encodings;
        }
        return prepared;
    }

    /** The sizes of the whole format, which hold its literal text. */
    static TextSizes sizesOf(const char *format, size_t length)
    {
        if (kelto::isAllAscii(format, length))
            return {length, length};
        TextSizes sizes = {0, 0};
        for (const char *const end = format + length; format != end;)
        {
            const UChar32 codePoint = kelto::takeCodePoint(format, end);
            sizes.units += static_cast<size_t>(U16_LENGTH(codePoint));
            sizes.bytes += kelto::utf8Length(codePoint);
        }
        return sizes;
    }

    void listSlots(KTSlot *slot) const
    {
        for (uint32_t position = 1; m_parameters[position - 1].formatter != nullptr; ++position)
            kelto::listSlots(m_parameters[position - 1], position, [&slot](const KTSlot &next) { *slot++ = next; });
    }

    /**
     * Fills in the steps, the literal text of each in both encodings. @return whether one lies in an encoded region.
     */
    bool fill(const char *format, size_t length, PreparedStep *steps, LiteralText literals) const
    {
        PreparedStep *step = steps;
        int flags = 0;
        const UCS2 *unitsDone = literals.unitsEnd();
        const char *bytesDone = literals.bytesEnd();
        const auto endStep = [&](const KTParameter *parameter) {
            step->literalUnits = static_cast<size_t>(literals.unitsEnd() - unitsDone);
            step->literalBytes = static_cast<size_t>(literals.bytesEnd() - bytesDone);
            unitsDone = literals.unitsEnd();
            bytesDone = literals.bytesEnd();
            step->formatter = parameter != nullptr ? parameter->formatter : nullptr;
            step->writer = parameter != nullptr ? writerOf(*parameter->formatter) : Writer::none;
            if (step->writer == Writer::called)
                step->utf8Format = kelto::findUTF8Format(parameter->formatter);
            if (parameter != nullptr)
            {
                step->layout = {parameter->width, parameter->precision, parameter->flags};
                step->isOpen = isOpen(*parameter);
                step->isBare = isBare(*parameter);
                step->firstSlot = static_cast<uint32_t>(parameter->argIndex);
                flags |= parameter->flags;
            }
            ++step;
        };
        kelto::walkFormat(
            format, length, m_places, [&](const char *text, size_t count) { literals.append(text, count); },
            [&](const kelto::PercentPlace<char> &place) {
                const KTParameter &parameter = m_parameters[static_cast<size_t>(place.position) - 1];
                if (!kelto::isMarker(parameter))
                    endStep(&parameter);
                return true;
            });
        endStep(nullptr);
        return (flags & FLAG_ENCODE) != 0;
    }

    kelto::PercentPlaces<char> m_places;
    kelto::FewParameters m_few;
    kelto::TagBlock<KTParameter> m_many;
    KTParameter *m_parameters = m_few.records; // or those in m_many
    kelto::ConversionCounts m_count = {0, 0};
};

} // namespace

namespace kelto
{

// Flattened like the format calls.
[[gnu::flatten]] FormatVerdict prepareFormat(const char *format, formTable *table, PreparedOwner &prepared) noexcept
{
    const size_t length = std::strlen(format);
    if (isTooLong(length))
        return {KT_ERR_CONVERSION_INVALID_ARGUMENT, KT_RULE_NONE, 0, 0, 0};
    Preparation preparation;
    return preparation.run(format, length, table, prepared);
}

} // namespace kelto

int KTPrepareFormat(const char *format, formTable *table, KTPreparedFormat **prepared)
{
    if (prepared != nullptr)
        *prepared = nullptr;
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (format == nullptr || prepared == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    kelto::PreparedOwner owner;
    const int result = kelto::prepareFormat(format, table, owner).result;
    *prepared = owner.release();
    return result;
}

void KTFreePrepared(KTPreparedFormat *prepared)
{
    if (prepared == nullptr)
        return;
    if (const kelto::PreparedVariants *const variants = prepared->variants;
        variants != nullptr && variants->owned != nullptr)
    {
        for (uint32_t i = 0; i < variants->ownedCount; ++i)
            ZEL_free(variants->owned[i]);
        ZEL_free(variants->owned);
    }
    ZEL_free(prepared);
}

size_t KTPreparedSlots(const KTPreparedFormat *prepared, const KTSlot **slots)
{
    if (slots != nullptr)
        *slots = prepared != nullptr ? prepared->slots : nullptr;
    if (prepared == nullptr)
        return 0;
    return prepared->variants != nullptr ? prepared->variants->slotCount : prepared->slotCount;
}
