#include "support/formatting.h"

#include "support/guarded.h"

#include <gtest/gtest.h>

namespace
{

template <typename Unit> struct Outcome
{
    int result;
    unsigned long size;
    std::basic_string<Unit> text; // after success

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
        : m_format(format), m_arguments(arguments), m_options(options), m_typed(arguments.typed())
    {
        m_verdict = KTPrepareFormat(m_format.c_str(), options.table, &m_prepared);
        EXPECT_EQ(KTExplainFormat(m_format.c_str(), options.table, nullptr), m_verdict);
        EXPECT_EQ(KTCompareFormats(m_format.c_str(), m_format.c_str(), options.table, nullptr), m_verdict);
        const KTSlot *slots = nullptr;
        if (m_prepared == nullptr || KTPreparedSlots(m_prepared, &slots) != arguments.count())
            return;
        for (size_t i = 0; i < arguments.count(); ++i) // what the notation does not tell apart
            if (KTArgument &typed = m_typed[i]; slots[i].code == KT_SLOT_UINT16)
                typed = KT_UINT(static_cast<uint16_t>(typed.value.u));
            else if (slots[i].code == KT_SLOT_UNIT)
                typed = KT_UNIT(static_cast<UCS2>(typed.value.u));
            else if (slots[i].code == KT_SLOT_POINTER)
                typed = KT_POINTER(1, typed.value.p);
            else if (typed.value.p == nullptr && slots[i].code == KT_SLOT_UTF8)
                typed = KT_UTF8(nullptr);
    }
    ~Formatting() { KTFreePrepared(m_prepared); }
    Formatting(const Formatting &) = delete;
    Formatting &operator=(const Formatting &) = delete;

    Outcome<UCS2> into(size_t capacity)
    {
        SCOPED_TRACE("\"" + m_format + "\", capacity " + std::to_string(capacity));
        const auto byPointers = call<UCS2>(capacity, [&](unsigned long *size, UCS2 *out) {
            return KTvpFormatStringWithPassThru(nullptr, m_options.tag, m_options.table, m_options.passThru, size, out,
                                                m_format.data(), m_arguments.pointers());
        });
        EXPECT_TRUE(m_verdict == 0 || m_verdict == byPointers.result) << "refused by one and not by the other";
        if (byPointers.result == KT_ERR_INVALID_PARAMETER && byPointers.size == capacity)
            return byPointers; // a wrong number of them, which a list cannot show
        const auto byList = call<UCS2>(capacity, [&](unsigned long *size, UCS2 *out) {
            return m_arguments.withList([&](va_list list) {
                unsigned long none = 0; // a list serves the retry too
                KTvFormatStringWithPassThru(nullptr, m_options.tag, m_options.table, m_options.passThru, &none, nullptr,
                                            m_format.data(), list);
                return KTvFormatStringWithPassThru(nullptr, m_options.tag, m_options.table, m_options.passThru, size,
                                                   out, m_format.data(), list);
            });
        });
        EXPECT_TRUE(byList == byPointers) << byList.result << " by list, " << byPointers.result << " by pointers";
        if (m_verdict != 0)
            return byPointers;
        const auto prepared = call<UCS2>(capacity, [&](unsigned long *size, UCS2 *out) {
            return KTFormatPrepared(m_prepared, m_options.tag ? KT_TAG : 0, m_options.passThru, size, out,
                                    m_typed.data(), m_typed.size());
        });
        EXPECT_TRUE(prepared == byPointers) << prepared.result << " prepared, " << byPointers.result << " by pointers";
        return byPointers;
    }

    /** Whether UTF-8 comes out like this at every capacity. */
    void expectUTF8(const std::string &text)
    {
        for (size_t capacity = 0; capacity <= text.size() + 2; ++capacity)
        {
            SCOPED_TRACE("\"" + m_format + "\" in UTF-8, capacity " + std::to_string(capacity));
            const auto written = call<char>(capacity, [&](unsigned long *size, char *out) {
                return KTFormatPreparedUTF8(m_prepared, m_options.tag ? KT_TAG : 0, m_options.passThru, size, out,
                                            m_typed.data(), m_typed.size());
            });
            const bool fits = capacity > text.size();
            EXPECT_EQ(written.result, fits ? 0 : KT_ERR_BUFFER_TOO_SMALL);
            EXPECT_EQ(written.size, text.size());
            EXPECT_EQ(written.text, fits ? text : "");
        }
    }

private:
    template <typename Unit, typename Call> Outcome<Unit> call(size_t capacity, Call format)
    {
        Guarded<Unit> out(capacity);
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
        return {result, size, {}};
    }

    std::string m_format;
    Arguments &m_arguments;
    FormatOptions m_options;
    KTPreparedFormat *m_prepared = nullptr;
    int m_verdict;
    std::vector<KTArgument> m_typed;
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
    const auto measured = formatting.into(0);
    if (measured.result != KT_ERR_BUFFER_TOO_SMALL)
    {
        EXPECT_EQ(formatting.into(3).size, 3U) << "refused before the output";
        return nameOf(measured.result);
    }
    const unsigned long need = measured.size;
    if (need > longest)
        return nameOf(measured.result) + " with " + std::to_string(need);
    const auto whole = formatting.into(need + 1);
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
        const std::string text = toUTF8(whole.text);
        formatting.expectUTF8(text);
        return text;
    }
    return nameOf(whole.result) + (need > 0 ? " with " + std::to_string(need) : "") +
           (uncut > 1 ? " from " + std::to_string(uncut) + " on" : "");
}
