#include "support/formatting.h"

#include "support/guarded.h"

#include <gtest/gtest.h>

namespace
{

struct Outcome
{
    int result;
    unsigned long size;
    std::u16string text; // after success

    bool operator==(const Outcome &other) const
    {
        return result == other.result && size == other.size && text == other.text;
    }
};

/** One format with its arguments. */
class Formatting
{
public:
    Formatting(const std::string &format, Arguments &arguments, const FormatOptions &options)
        : m_format(format), m_arguments(arguments), m_options(options)
    {
    }

    Outcome into(size_t capacity)
    {
        SCOPED_TRACE("\"" + m_format + "\", capacity " + std::to_string(capacity));
        const Outcome byPointers = call(capacity, [&](unsigned long *size, UCS2 *out) {
            return KTvpFormatStringWithPassThru(nullptr, m_options.tag, m_options.table, m_options.passThru, size, out,
                                                m_format.data(), m_arguments.pointers());
        });
        if (byPointers.result == KT_ERR_INVALID_PARAMETER && byPointers.size == capacity)
            return byPointers; // a wrong number of them, which a list cannot show
        const Outcome byList = call(capacity, [&](unsigned long *size, UCS2 *out) {
            return m_arguments.withList([&](va_list list) {
                unsigned long none = 0; // a list serves the retry too
                KTvFormatStringWithPassThru(nullptr, m_options.tag, m_options.table, m_options.passThru, &none, nullptr,
                                            m_format.data(), list);
                return KTvFormatStringWithPassThru(nullptr, m_options.tag, m_options.table, m_options.passThru, size,
                                                   out, m_format.data(), list);
            });
        });
        EXPECT_TRUE(byList == byPointers) << byList.result << " by list, " << byPointers.result << " by pointers";
        return byPointers;
    }

private:
    template <typename Call> Outcome call(size_t capacity, Call format)
    {
        Guarded<UCS2> out(capacity);
        unsigned long size = capacity;
        const int result = format(&size, out.data());
        if (result == 0)
        {
            EXPECT_TRUE(size < capacity && out[size] == 0) << "a text ends where its size says";
            return {0, size, out.text()};
        }
        if (result == KT_ERR_BUFFER_TOO_SMALL)
            EXPECT_TRUE(capacity == 0 || (size >= capacity && out.isTerminated())) << "cut and terminated";
        else
            EXPECT_TRUE(out.untouched() ? size == capacity : size == 0 && out[0] == 0) << "left alone, or emptied";
        return {result, size, u""};
    }

    std::string m_format;
    Arguments &m_arguments;
    FormatOptions m_options;
};

std::string nameOf(int result)
{
    const char *const name = KTResultName(result);
    return name != nullptr ? name : std::to_string(result);
}

} // namespace

std::string formatted(const std::string &format, Arguments &arguments, const FormatOptions &options)
{
    constexpr unsigned long longest = 5000;
    Formatting formatting(format, arguments, options);
    const Outcome measured = formatting.into(0);
    if (measured.result != KT_ERR_BUFFER_TOO_SMALL)
    {
        EXPECT_EQ(formatting.into(3).size, 3U) << "refused before the output";
        return nameOf(measured.result);
    }
    const unsigned long need = measured.size;
    if (need > longest)
        return nameOf(measured.result) + " with " + std::to_string(need);
    const Outcome whole = formatting.into(need + 1);
    unsigned long capacity = 1;
    while (capacity <= need && formatting.into(capacity) == measured)
        ++capacity;
    const unsigned long uncut = capacity;
    while (capacity < need + 4 && formatting.into(capacity) == whole)
        ++capacity;
    EXPECT_EQ(capacity, need + 4) << "the outcome changes at this capacity";
    if (whole.result == 0)
    {
        EXPECT_EQ(uncut, need + 1) << "written at this capacity, though more was asked for";
        EXPECT_EQ(whole.size, need);
        return toUTF8(whole.text);
    }
    return nameOf(whole.result) + (need > 0 ? " with " + std::to_string(need) : "") +
           (uncut > 1 ? " from " + std::to_string(uncut) + " on" : "");
}
