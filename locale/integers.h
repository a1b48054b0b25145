/**
 * How a language writes integers: its digits, signs and groups, learnt from numbers that ICU wrote, and then written by
 * ourselves at a fraction of the cost. What was learnt is compared with ICU's own texts before it is used; a language
 * that writes in another way is left to ICU.
 */
#ifndef KELTO_LOCALE_INTEGERS_H
#define KELTO_LOCALE_INTEGERS_H

#include "icu.h"
#include "output.h"

#include <cstdint>
#include <string_view>

struct KTLLanguage;

namespace kelto::locale
{

/** A short text in both encodings; of an empty one nothing is written. */
template <size_t maxUnits> struct Piece
{
    UChar units[maxUnits];
    char bytes[3 * maxUnits];
    uint8_t unitCount = 0, byteCount = 0;

    /** False for a text that is too long. */
    bool set(Units text) noexcept;

    const UChar *data(const UCS2 *) const noexcept { return units; }
    const char *data(const char *) const noexcept { return bytes; }
    size_t length(const UCS2 *) const noexcept { return unitCount; }
    size_t length(const char *) const noexcept { return byteCount; }
    std::u16string_view text() const noexcept { return {units, unitCount}; }
};

class IntegerRules
{
public:
    /** Learns the rules from ICU. */
    int learn(KTLLanguage &language) noexcept;

    /** Whether the rules are all that there is to it; else ICU is to write. */
    bool areKnown() const noexcept { return m_areKnown; }

    /** @param magnitude  the number without its sign. */
    template <typename Unit>
    int write(uint64_t magnitude, bool isNegative, const Spec &spec, Output &output) const noexcept;

    /** The digit zero. */
    Units zero() const noexcept { return {m_digits[0].units, m_digits[0].unitCount}; }

private:
    using Affix = Piece<16>;
    using Digit = Piece<2>;
    using Separator = Piece<4>;
    static constexpr size_t maxDigits = 20;

    /** What stands around the digits. */
    struct Around
    {
        Affix prefix, suffix;
    };

    bool learnDigits(KTLLanguage &language, int &result) noexcept;
    bool learnGroups(KTLLanguage &language, int &result) noexcept;
    bool matches(KTLLanguage &language, int64_t value, int &result) const noexcept;
    int groupsOf(std::u16string_view text, int (&runs)[20]) noexcept;
    const Around &around(bool isNegative, const Spec &spec) const noexcept;

    Around m_positive, m_negative, m_plus, m_blank;
    Digit m_digits[10];
    Separator m_separator;
    size_t m_primary = maxDigits, m_secondary = 0; // digits in the last group and in those before it
    uint64_t m_groupedFrom = UINT64_MAX;           // the least number that has groups
    bool m_areKnown = false;
};

/** The rules of a language, learnt at the first time. */
int integerRulesOf(KTLLanguage &language, const IntegerRules *&rules) noexcept;

} // namespace kelto::locale

#endif
