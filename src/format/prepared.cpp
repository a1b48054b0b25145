#include "format/prepared.h"

#include "format/arguments.h"
#include "format/form_table.h"
#include "format/format_output.h"
#include "format/format_string.h"
#include "format/typed_argument.h"
#include "lifecycle/global_state.h"

#include <cstring>

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
    {formatIP, KT_ARG_UTF8, Writer::address},
};

// By the function in the record and not by its address in the list: private copies and tables of the caller's may hold
// the built-in conversions too. One that is given other arguments than it knows is called like any other.
Writer writerOf(const KTFormatter &formatter)
{
    for (const OwnFormatter &own : ownFormatters)
        if (formatter.format == own.format)
            return formatter.argTypes[0] == own.argument && formatter.argTypes[1] == KT_ARG_END ? own.writer
                                                                                                : Writer::called;
    return Writer::called;
}

template <typename T> T *take(char *&at, size_t count)
{
    auto *const taken = reinterpret_cast<T *>(at);
    at += count * sizeof(T);
    return taken;
}

/** Lays a checked format out as a block. */
class Preparation
{
public:
    kelto::FormatVerdict run(const char *format, size_t length, formTable *table)
    {
        kelto::FormatVerdict verdict = kelto::checkFormat(format, length, table, m_many, m_places, &m_few);
        if (verdict.result != 0)
            return verdict;
        if (m_many != nullptr)
            m_parameters = m_many.get();
        m_slotCount = kelto::numberSlots(m_parameters, false);
        verdict.result = build(format, length, table);
        return verdict;
    }

    KTPreparedFormat *release() { return reinterpret_cast<KTPreparedFormat *>(m_block.release()); }

private:
    int build(const char *format, size_t length, formTable *table)
    {
        const size_t stepCount = countSteps();
        const TextSizes sizes = sizesOf(format, length);
        m_block = kelto::allocate<char>(glbResHandle, sizeof(KTPreparedFormat) + stepCount * sizeof(PreparedStep) +
                                                          m_slotCount * sizeof(KTSlot) + sizes.units * sizeof(UCS2) +
                                                          sizes.bytes);
        if (m_block == nullptr)
            return KT_ERR_NO_MEMORY;
        char *at = m_block.get();
        auto *const prepared = take<KTPreparedFormat>(at, 1);
        auto *const steps = take<PreparedStep>(at, stepCount);
        auto *const slots = take<KTSlot>(at, m_slotCount);
        auto *const units = take<UCS2>(at, sizes.units);
        *prepared = {table, static_cast<uint32_t>(stepCount), static_cast<uint32_t>(m_slotCount), steps, slots, units,
                     at};
        listSlots(slots);
        fill(format, length, steps, kelto::FormatOutput<UCS2>(units, &sizes.units),
             kelto::FormatOutput<char>(at, &sizes.bytes));
        return 0;
    }

    /** One for each conversion that is no marker, and one for the text behind them. */
    size_t countSteps() const
    {
        size_t count = 1;
        for (const KTParameter *parameter = m_parameters; parameter->formatter != nullptr; ++parameter)
            count += kelto::isMarker(*parameter) ? 0 : 1;
        return count;
    }

    /** Room for literal text, which is no longer than the whole format. */
    struct TextSizes
    {
        size_t units, bytes;
    };

    static TextSizes sizesOf(const char *format, size_t length)
    {
        if (kelto::isAllAscii(format, length))
            return {length + 1, length + 1};
        TextSizes sizes = {1, 1};
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
        {
            const KTParameter &parameter = m_parameters[position - 1];
            if (kelto::isMarker(parameter))
                continue;
            if (parameter.width == KT_FROM_ARGUMENTS)
                *slot++ = {KT_SLOT_INT32, position, KT_SLOT_WIDTH};
            if (parameter.precision == KT_FROM_ARGUMENTS)
                *slot++ = {KT_SLOT_INT32, position, KT_SLOT_PRECISION};
            for (const int *type = parameter.formatter->argTypes; *type != KT_ARG_END; ++type)
                if (kelto::takesSlot(*type))
                    *slot++ = {kelto::slotCodeOf(*type, parameter.flags), position, KT_SLOT_VALUE};
        }
    }

    /** Fills in the steps, the literal text of each in both encodings. */
    void fill(const char *format, size_t length, PreparedStep *steps, kelto::FormatOutput<UCS2> units,
              kelto::FormatOutput<char> bytes)
    {
        PreparedStep *step = steps;
        size_t unitsDone = 0;
        size_t bytesDone = 0;
        const auto endStep = [&](const KTParameter *parameter) {
            step->literalUnits = units.length() - unitsDone;
            step->literalBytes = bytes.length() - bytesDone;
            unitsDone = units.length();
            bytesDone = bytes.length();
            step->formatter = parameter != nullptr ? parameter->formatter : nullptr;
            step->writer = parameter != nullptr ? writerOf(*parameter->formatter) : Writer::none;
            if (parameter != nullptr)
            {
                step->layout = {parameter->width, parameter->precision, parameter->flags};
                step->firstSlot = static_cast<uint32_t>(parameter->argIndex);
            }
            ++step;
        };
        kelto::walkFormat(
            format, length, m_places,
            [&](const char *text, size_t count) {
                const kelto::UTF8Text piece = {text, count, UINT64_MAX};
                units.write(kelto::Ending::open, piece);
                bytes.write(kelto::Ending::open, piece);
            },
            [&](const kelto::PercentPlace<char> &place) {
                const KTParameter &parameter = m_parameters[static_cast<size_t>(place.position) - 1];
                if (!kelto::isMarker(parameter))
                    endStep(&parameter);
                return true;
            });
        endStep(nullptr);
    }

    kelto::PercentPlaces<char> m_places;
    kelto::FewParameters m_few;
    kelto::TagBlock<KTParameter> m_many;
    KTParameter *m_parameters = m_few.records; // or those in m_many
    size_t m_slotCount = 0;
    kelto::TagBlock<char> m_block;
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
    const FormatVerdict verdict = preparation.run(format, length, table);
    prepared.reset(preparation.release());
    return verdict;
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
    if (prepared != nullptr)
        ZEL_free(prepared);
}

size_t KTPreparedSlots(const KTPreparedFormat *prepared, const KTSlot **slots)
{
    if (slots != nullptr)
        *slots = prepared != nullptr ? prepared->slots : nullptr;
    return prepared != nullptr ? prepared->slotCount : 0;
}
