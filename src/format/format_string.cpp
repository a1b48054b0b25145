#include "format/format_string.h"

#include "format/conversion_spec.h"
#include "lifecycle/state.h"
#include "platform/scoped.h"

#include <cstring>
#include <emmintrin.h>

namespace
{

// A position is believed up to this, or up to the length of the string that names it: every string that can be correct
// passes, and a short one cannot ask for gigabytes.
constexpr size_t plainPositions = 1000;

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

    /** Whether each of the positions 1 to n has a record; an empty one stands behind the last of them at most. */
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
int collect(const UCS2 *format, size_t length, formTable *table, ParameterArray &array)
{
    const UCS2 *const end = format + length;
    size_t specifications = 0;
    for (const UCS2 *percent = kelto::findPercent(format, end); percent != end;)
    {
        const UCS2 *next = percent + 2;
        if (percent[1] != u'%')
        {
            const kelto::ConversionSpec spec = kelto::parseSpecification(percent, table);
            const auto position = static_cast<size_t>(spec.position);
            if (position == 0 || spec.type == CONV_UNKNOWN || (position > plainPositions && position > length))
                return KT_ERR_FORMAT_SYNTAX;
            if (!array.store(position, {spec.type, spec.width, spec.precision, spec.flags, 0, spec.formatter}))
                return KT_ERR_NO_MEMORY;
            ++specifications;
            next = spec.end;
        }
        percent = kelto::findPercent(next, end);
    }
    return array.isComplete(specifications) ? 0 : KT_ERR_FORMAT_SYNTAX;
}

constexpr size_t unitsPerVector = sizeof(__m128i) / sizeof(UCS2);

/** All bits of the units that are '%'. */
__m128i percentMask(const UCS2 *units)
{
    const __m128i vector = _mm_loadu_si128(reinterpret_cast<const __m128i *>(units));
    return _mm_cmpeq_epi16(vector, _mm_set1_epi16(u'%'));
}

} // namespace

namespace kelto
{

// Literal text is most of a long format: 32 units a step, and the exact place only once a step has one.
const UCS2 *findPercent(const UCS2 *from, const UCS2 *end) noexcept
{
    constexpr size_t step = 4 * unitsPerVector;
    while (static_cast<size_t>(end - from) >= step)
    {
        const __m128i low = _mm_or_si128(percentMask(from), percentMask(from + unitsPerVector));
        const __m128i high =
            _mm_or_si128(percentMask(from + 2 * unitsPerVector), percentMask(from + 3 * unitsPerVector));
        if (_mm_movemask_epi8(_mm_or_si128(low, high)) != 0)
            break;
        from += step;
    }
    while (from != end && *from != u'%')
        ++from;
    return from;
}

int checkFormat(const UCS2 *format, size_t length, formTable *table, KTParameter **parameters) noexcept
{
    ParameterArray array;
    const int result = collect(format, length, table, array);
    *parameters = array.release();
    return result;
}

} // namespace kelto

int checkSyntax(const UCS2 *format, formTable *table, KTParameter **parameters)
{
    *parameters = nullptr;
    return kelto::checkFormat(format, KTUCS2strlen(format), table, parameters);
}
