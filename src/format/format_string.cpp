#include "format/format_string.h"

#include "format/conversion_spec.h"
#include "format/form_table.h"
#include "lifecycle/state.h"
#include "platform/scoped.h"

#include <cstring>

namespace
{

// A position is believed up to this, or up to the length of the string that names it: every string that can be correct
// passes, and a short one cannot ask for gigabytes.
constexpr size_t alwaysBelieved = 1000;

constexpr size_t growthStep = 10;
constexpr size_t linearGrowthLimit = 100;

/** The array behind a format string: one record per position, and always an empty one behind the highest. */
class ParameterArray
{
public:
    /** Stores a record at its position; false when memory ran out, and the array is then gone. */
    bool store(size_t position, const KTParameter &record)
    {
        if (position > m_capacity && !growTo(position))
            return false;
        m_records[position - 1] = record;
        return true;
    }

    /**
     * Whether each of the positions 1 to n has a record, n being how many were stored. A gap or a repetition leaves one of
     * them empty, at the latest the one behind the highest, so the loop stays inside the array.
     */
    bool isComplete(size_t n) const
    {
        for (size_t i = 0; i < n; ++i)
            if (m_records[i].formatter == nullptr)
                return false;
        return true;
    }

    KTParameter *release() { return m_records.release(); }

private:
    bool growTo(size_t position)
    {
        size_t capacity = m_capacity;
        while (capacity < position)
            capacity += capacity < linearGrowthLimit ? growthStep : halfInSteps(capacity);
        auto grown = kelto::allocateZeroed<KTParameter>(glbResHandle, capacity + 1);
        if (grown != nullptr && m_capacity > 0)
            std::memcpy(grown.get(), m_records.get(), m_capacity * sizeof(KTParameter));
        m_records = std::move(grown);
        m_capacity = m_records != nullptr ? capacity : 0;
        return m_records != nullptr;
    }

    // Beyond the limit the array grows by half, so that a string of any length is checked in linear time.
    static size_t halfInSteps(size_t capacity) { return (capacity / 2 + growthStep - 1) / growthStep * growthStep; }

    kelto::TagBlock<KTParameter> m_records;
    size_t m_capacity = 0;
};

/** Checks the specifications of a text into an array: 0, or the failure. */
int checkSpecifications(const UCS2 *format, size_t length, formTable &table, ParameterArray &array,
                        kelto::PercentPlaces &places)
{
    const UCS2 *const end = format + length;
    size_t specifications = 0;
    for (const UCS2 *percent = kelto::findPercent(format, end); percent != end;)
    {
        kelto::PercentPlace place = {percent, percent + 2, 0};
        if (percent[1] != u'%')
        {
            const kelto::ConversionSpec spec = kelto::parseSpecification(percent, table);
            const auto position = static_cast<size_t>(spec.position);
            if (position == 0 || spec.record.type == CONV_UNKNOWN || (position > alwaysBelieved && position > length))
                return KT_ERR_FORMAT_SYNTAX;
            if (!array.store(position, spec.record))
                return KT_ERR_NO_MEMORY;
            ++specifications;
            place = {percent, spec.end, spec.position};
        }
        places.note(place);
        percent = kelto::findPercent(place.end, end);
    }
    return array.isComplete(specifications) ? 0 : KT_ERR_FORMAT_SYNTAX;
}

} // namespace

namespace kelto
{

// The C library searches bytes many at a time. A byte of another unit may look like a '%' too, so a hit is checked; the
// first units are looked at one by one, since most literal texts end there.
const UCS2 *findPercent(const UCS2 *from, const UCS2 *end) noexcept
{
    constexpr ptrdiff_t fewUnits = 8;
    for (const UCS2 *const soon = end - from > fewUnits ? from + fewUnits : end; from != soon; ++from)
        if (*from == u'%')
            return from;
    while (from != end)
    {
        const auto *const begin = reinterpret_cast<const char *>(from);
        const auto *const hit =
            static_cast<const char *>(std::memchr(begin, '%', static_cast<size_t>(end - from) * sizeof(UCS2)));
        if (hit == nullptr)
            return end;
        from += static_cast<size_t>(hit - begin) / sizeof(UCS2);
        if (*from == u'%')
            return from;
        ++from;
    }
    return end;
}

PercentPlace PercentPlaces::find(const UCS2 *from, const UCS2 *end) noexcept
{
    const UCS2 *const percent = findPercent(from, end);
    if (percent == end)
        return {end, end, 0};
    if (percent[1] == u'%')
        return {percent, percent + 2, 0};
    const UCS2 *behind = percent;
    const int position = getConvSpecOrder(&behind);
    return {percent, behind, position};
}

int checkFormat(const UCS2 *format, size_t length, formTable *table, KTParameter **parameters,
                PercentPlaces &places) noexcept
{
    ParameterArray array;
    const int result = checkSpecifications(format, length, tableOrBuiltIn(table), array, places);
    *parameters = array.release();
    return result;
}

} // namespace kelto

int checkSyntax(const UCS2 *format, formTable *table, KTParameter **parameters)
{
    *parameters = nullptr;
    kelto::PercentPlaces places;
    return kelto::checkFormat(format, KTUCS2strlen(format), table, parameters, places);
}
