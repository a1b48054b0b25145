#include "format/grammar/format_string.h"

#include "format/format_limits.h"
#include "format/grammar/conversion_spec.h"
#include "format/grammar/find_percent.h"
#include "format/tables/form_table.h"
#include "lifecycle/global_state.h"
#include "strconv/utf8_text.h"

#include <algorithm>
#include <cstring>
#include <utility>

// The check goes from '%' to '%' once and stores the record of each conversion specification at its position. Then as
// many positions as there are conversion specifications must have a record, from 1 on: a repetition or a gap leaves one
// without. Only a format that is refused is walked over again, for the reason.

namespace
{

constexpr size_t growthStep = 10;

// An array of this size grows by half at least, so that a string of any length is checked in linear time.
constexpr size_t linearGrowthLimit = 100;

/** Makes records empty: the rest of an empty record is never read. */
template <size_t... index> void makeEmpty(KTParameter *records, std::index_sequence<index...> /*all*/)
{
    ((records[index].formatter = nullptr), ...);
}

/** The array behind a format string: one record per position, and always an empty one behind the highest. */
class ParameterArray
{
public:
    /** Begins in the room of the caller's, if there is any. */
    explicit ParameterArray(kelto::FewParameters *few)
    {
        if (few == nullptr)
            return;
        m_records = few->records;
        m_capacity = kelto::FewParameters::count;
        makeEmpty(m_records, std::make_index_sequence<kelto::FewParameters::count + 1>());
    }

    /** Stores a record at its position; false when memory ran out, and the array is then gone. */
    bool store(size_t position, const KTParameter &record)
    {
        if (position > m_capacity && !growTo(position))
            return false;
        // Member by member: they were written a moment ago, and a copy of the whole would have to wait for them.
        m_records[position - 1] = {record.type, record.width, record.precision, record.flags, 0, record.formatter};
        return true;
    }

    /**
     * The lowest of the positions 1 to n that has no record, n being how many were stored; 0 when all have one. A gap
     * or a repetition leaves one of them empty, at the latest the one behind the highest, so the loop stays inside the
     * array.
     */
    size_t firstMissing(size_t n) const
    {
        const KTParameter *const end = m_records + n;
        for (const KTParameter *record = m_records; record != end; ++record)
            if (record->formatter == nullptr)
                return static_cast<size_t>(record - m_records) + 1;
        return 0;
    }

    /** Stores a record again: false where its position has one by now. */
    bool storeFirst(size_t position, const KTParameter &record)
    {
        const bool isFirst = m_records[position - 1].formatter == nullptr;
        m_records[position - 1] = record;
        return isFirst;
    }

    /** Forgets the records, of which there is one at least. */
    void clear() { std::memset(static_cast<void *>(m_records), 0, m_capacity * sizeof(KTParameter)); }

    kelto::TagBlock<KTParameter> release() { return std::move(m_block); }

private:
    bool growTo(size_t position)
    {
        size_t capacity = inSteps(position);
        if (m_capacity >= linearGrowthLimit)
            capacity = std::max(capacity, inSteps(m_capacity + m_capacity / 2));
        auto grown = kelto::allocateZeroed<KTParameter>(glbResHandle, capacity + 1);
        if (grown != nullptr && m_capacity > 0)
            std::memcpy(grown.get(), m_records, m_capacity * sizeof(KTParameter));
        m_block = std::move(grown);
        m_records = m_block.get();
        m_capacity = m_records != nullptr ? capacity : 0;
        return m_records != nullptr;
    }

    static size_t inSteps(size_t capacity) { return (capacity + growthStep - 1) / growthStep * growthStep; }

    kelto::TagBlock<KTParameter> m_block;
    KTParameter *m_records = nullptr; // in the block, or the caller's
    size_t m_capacity = 0;            // as many positions have a record by now, behind which stands an empty one
};

constexpr kelto::FormatVerdict accepted = {0, KT_RULE_NONE, 0, 0, 0};
constexpr kelto::FormatVerdict outOfMemory = {KT_ERR_NO_MEMORY, KT_RULE_NONE, 0, 0, 0};

/** The UCS-2 units of a text. */
size_t countUnits(const UCS2 * /*text*/, size_t length)
{
    return length;
}

size_t countUnits(const char *text, size_t length)
{
    return kelto::countUnits(text, length);
}

/** Checks the conversion specifications of one format, the first time for a call, once more for the reason. */
template <typename Unit> class Check
{
public:
    Check(const Unit *format, size_t length, formTable &table, ParameterArray &array)
        : m_format(format), m_length(length), m_table(table), m_array(array)
    {
    }

    kelto::FormatVerdict run(kelto::PercentPlaces<Unit> &places)
    {
        const Unit *const end = m_format + m_length;
        size_t specifications = 0;
        for (const Unit *from = m_format;;)
        {
            const Unit *const percent = kelto::findPercent(m_format, from, end);
            if (percent == end)
                break;
            kelto::PercentPlace<Unit> place = {percent, percent + 2, 0};
            if (percent[1] != '%')
            {
                const auto spec = kelto::parseSpecification(percent, m_table);
                const auto position = static_cast<size_t>(spec.position);
                if (position == 0 || spec.record.type == CONV_UNKNOWN || !isPlausible(position))
                    return refuse(percent, spec);
                if (!m_array.store(position, spec.record))
                    return outOfMemory;
                ++specifications;
                place = {percent, spec.end, spec.position};
            }
            places.note(place);
            from = place.end;
        }
        places.note({end, end, 0});
        const size_t missing = m_array.firstMissing(specifications);
        return missing == 0 ? accepted : refusePositions(missing, specifications);
    }

private:
    bool isPlausible(size_t position)
    {
        if (position <= kelto::alwaysBelieved)
            return true;
        if (m_units == 0)
            m_units = countUnits(m_format, m_length);
        return position <= m_units;
    }

    kelto::FormatVerdict refuse(KTRule rule, const Unit *begin, const Unit *end, size_t position = 0) const
    {
        return {KT_ERR_FORMAT_SYNTAX, rule, static_cast<unsigned>(position), static_cast<size_t>(begin - m_format),
                static_cast<size_t>(end - begin)};
    }

    /** Of one conversion specification by itself. */
    [[gnu::cold]] kelto::FormatVerdict refuse(const Unit *percent, const kelto::ConversionSpec<Unit> &spec) const
    {
        const bool isKnown = spec.position != 0 && spec.record.type != CONV_UNKNOWN;
        if (isKnown)
            return refuse(KT_RULE_NUMBER_TOO_LARGE, percent, spec.end);
        const kelto::SpecFault<Unit> fault = kelto::explainFault(percent, spec);
        return refuse(fault.rule, percent, fault.end);
    }

    /** Of the positions together: the first that is used twice, or else what stands beyond the number of them. */
    [[gnu::cold]] kelto::FormatVerdict refusePositions(size_t missing, size_t specifications)
    {
        kelto::FormatVerdict repeated = accepted;
        kelto::FormatVerdict beyond = accepted;
        m_array.clear();
        kelto::PercentPlaces<Unit> places;
        const auto ignore = [](const Unit *, size_t) {};
        kelto::walkFormat(m_format, m_length, places, ignore, [&](const kelto::PercentPlace<Unit> &place) {
            const auto position = static_cast<size_t>(place.position);
            const bool isFirst = m_array.storeFirst(position, kelto::parseSpecification(place.begin, m_table).record);
            if (!isFirst && repeated.result == 0)
                repeated = refuse(KT_RULE_POSITION_REPEATED, place.begin, place.end, position);
            if (position > specifications && beyond.result == 0)
                beyond = refuse(KT_RULE_POSITION_GAP, place.begin, place.end, missing);
            return true;
        });
        return repeated.result != 0 ? repeated : beyond;
    }

    const Unit *m_format;
    size_t m_length;
    formTable &m_table;
    ParameterArray &m_array;
    size_t m_units = 0; // of the format, once they were asked for
};

} // namespace

namespace kelto
{

template <typename Unit> PercentPlace<Unit> PercentPlaces<Unit>::find(const Unit *from, const Unit *end) noexcept
{
    const Unit *const percent = findPercent(from, from, end);
    if (percent == end)
        return {end, end, 0};
    if (percent[1] == '%')
        return {percent, percent + 2, 0};
    const Unit *behind = percent;
    const int position = takeAcceptedPosition(behind);
    return {percent, behind, position};
}

template class PercentPlaces<UCS2>;
template class PercentPlaces<char>;

template <typename Unit>
FormatVerdict checkFormat(const Unit *format, size_t length, formTable *table, TagBlock<KTParameter> &parameters,
                          PercentPlaces<Unit> &places, FewParameters *few) noexcept
{
    ParameterArray array(few);
    const FormatVerdict verdict = Check<Unit>(format, length, tableOrBuiltIn(table), array).run(places);
    parameters = array.release();
    return verdict;
}

template FormatVerdict checkFormat(const UCS2 *, size_t, formTable *, TagBlock<KTParameter> &, PercentPlaces<UCS2> &,
                                   FewParameters *) noexcept;
template FormatVerdict checkFormat(const char *, size_t, formTable *, TagBlock<KTParameter> &, PercentPlaces<char> &,
                                   FewParameters *) noexcept;

} // namespace kelto

int checkSyntax(const UCS2 *format, formTable *table, KTParameter **parameters)
{
    *parameters = nullptr;
    kelto::TagBlock<KTParameter> checked;
    kelto::PercentPlaces<UCS2> places;
    const int result = kelto::checkFormat(format, KTUCS2strlen(format), table, checked, places).result;
    *parameters = checked.release();
    return result;
}
