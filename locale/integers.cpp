// A number is a prefix, digits with separators between their groups, and a suffix. Prefixes and suffixes are what ICU
// writes around the digit of 1, -1 and +1; the digits are those of the numbers 0 to 9; the sizes of the groups are
// counted in a long number, and the length from which on there are groups is the first of 10^n that has any.

#include "integers.h"

#include "conversions.h"
#include "language.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace kelto::locale
{

namespace
{

template <typename Unit> Unit *copy(const Unit *from, size_t count, Unit *out)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = from[i];
    return out + count;
}

} // namespace

template <size_t maxUnits> bool Piece<maxUnits>::set(Units text) noexcept
{
    if (text.length > maxUnits)
        return false;
    std::copy_n(text.begin, text.length, units);
    unitCount = static_cast<uint8_t>(text.length);
    byteCount = static_cast<uint8_t>(toUTF8(text, bytes) - bytes);
    return true;
}

const IntegerRules::Around &IntegerRules::around(bool isNegative, const Spec &spec) const noexcept
{
    if (isNegative)
        return m_negative;
    if (spec.has(FLAG_PLUS))
        return m_plus;
    return spec.has(FLAG_SPACE) ? m_blank : m_positive;
}

// As in "d": '0' wins over '-', and the zeros stand between sign and digits. Digits and separators are written from
// their end on, before it is known how many there are.
template <typename Unit>
[[gnu::always_inline]] inline int IntegerRules::write(uint64_t magnitude, bool isNegative, const Spec &spec,
                                                      Output &output) const noexcept
{
    constexpr size_t mostUnits = maxDigits * (sizeof Digit::bytes + sizeof Separator::bytes);
    Unit text[mostUnits];
    Unit *const end = text + mostUnits;
    Unit *begin = end;
    Unit *out = nullptr;
    const size_t digitLength = m_digits[0].length(out);
    const size_t separatorLength = m_separator.length(out);
    size_t separators = 0;
    size_t untilSeparator = magnitude >= m_groupedFrom ? m_primary : maxDigits;
    do
    {
        if (untilSeparator-- == 0)
        {
            begin -= separatorLength;
            copy(m_separator.data(out), separatorLength, begin);
            untilSeparator = m_secondary - 1;
            ++separators;
        }
        const Unit *const digit = m_digits[magnitude % 10].data(out);
        begin -= digitLength;
        if (digitLength == 1)
            *begin = *digit;
        else
            copy(digit, digitLength, begin);
        magnitude /= 10;
    } while (magnitude != 0);

    const Around &around = this->around(isNegative, spec);
    const auto bodyLength = static_cast<size_t>(end - begin);
    uint64_t missing = 0;
    uint64_t zeros = 0;
    if (spec.width > 0)
    {
        const size_t digits = (bodyLength - separators * separatorLength) / digitLength;
        missing = spec.missing(around.prefix.unitCount + digits * m_digits[0].unitCount +
                               separators * m_separator.unitCount + around.suffix.unitCount);
        if (spec.has(FLAG_ZERO))
            zeros = std::exchange(missing, 0) / m_digits[0].unitCount;
    }
    const uint64_t length =
        missing + around.prefix.length(out) + zeros * digitLength + bodyLength + around.suffix.length(out);
    if (const int result = output.claim(length, out))
        return result;
    const bool isPaddedBehind = spec.has(FLAG_MINUS);
    if (missing > 0 && !isPaddedBehind)
        out = std::fill_n(out, missing, static_cast<Unit>(' '));
    out = copy(around.prefix.data(out), around.prefix.length(out), out);
    for (; zeros > 0; --zeros)
        out = copy(m_digits[0].data(out), digitLength, out);
    out = copy(begin, bodyLength, out);
    out = copy(around.suffix.data(out), around.suffix.length(out), out);
    if (missing > 0 && isPaddedBehind)
        std::fill_n(out, missing, static_cast<Unit>(' '));
    return 0;
}

int IntegerRules::learn(KTLLanguage &language) noexcept
{
    int result = 0;
    m_areKnown = learnDigits(language, result) && learnGroups(language, result);
    constexpr int64_t samples[] = {0,         9,        -1,       12,         999,       1000,
                                   -9999,     10000,    99999,    100000,     1000000,   -12345678,
                                   123456789, 20000000, 34567890, 1234567890, INT64_MAX, INT64_MIN};
    for (const int64_t sample : samples)
        m_areKnown = m_areKnown && matches(language, sample, result);
    return result;
}

bool IntegerRules::learnDigits(KTLLanguage &language, int &result) noexcept
{
    const auto learnAround = [](const IcuNumber &number, Around &around) {
        const Units text = number.text();
        const size_t begin = number.digitsBegin();
        const size_t end = number.digitsEnd();
        return begin < end && around.prefix.set({text.begin, begin}) &&
               around.suffix.set({text.begin + end, text.length - end});
    };
    const auto format = [&](int64_t value, bool isSigned, IcuNumber &number) {
        return (result = language.numbers.formatInteger(language, value, isSigned, number)) == 0;
    };
    for (int64_t digit = 0; digit < 10; ++digit)
    {
        IcuNumber number;
        if (!format(digit, false, number) || !learnAround(number, m_positive))
            return false;
        const size_t begin = number.digitsBegin();
        Digit &learnt = m_digits[digit];
        if (!learnt.set({number.text().begin + begin, number.digitsEnd() - begin}) ||
            learnt.byteCount != m_digits[0].byteCount || learnt.unitCount != m_digits[0].unitCount)
            return false;
    }
    m_blank = m_positive;
    UChar blankPrefix[sizeof m_blank.prefix.units / sizeof(UChar) + 1] = {u' '};
    const std::u16string_view prefix = m_positive.prefix.text();
    prefix.copy(blankPrefix + 1, prefix.size());
    IcuNumber negative;
    IcuNumber plus;
    return m_blank.prefix.set({blankPrefix, prefix.size() + 1}) && format(-1, false, negative) &&
           learnAround(negative, m_negative) && format(1, true, plus) && learnAround(plus, m_plus);
}

/** The lengths of the runs of digits in a number of ASCII-like shape; their number, or 0 for another shape. */
int IntegerRules::groupsOf(std::u16string_view text, int (&runs)[20]) noexcept
{
    const std::u16string_view prefix = m_positive.prefix.text();
    const std::u16string_view suffix = m_positive.suffix.text();
    if (text.size() < prefix.size() + suffix.size())
        return 0;
    text = text.substr(prefix.size(), text.size() - prefix.size() - suffix.size());
    int count = 0;
    bool isInRun = false;
    size_t separatorBegin = 0;
    m_separator.unitCount = m_separator.byteCount = 0;
    for (size_t at = 0; at < text.size();)
    {
        const bool isDigit = std::any_of(std::begin(m_digits), std::end(m_digits), [&](const Digit &digit) {
            return text.substr(at, digit.unitCount) == digit.text();
        });
        if (isDigit && !isInRun)
        {
            if (count > 0)
            {
                const std::u16string_view between = text.substr(separatorBegin, at - separatorBegin);
                if (count > 1 && between != m_separator.text())
                    return 0;
                if (!m_separator.set({between.data(), between.size()}))
                    return 0;
            }
            runs[count++] = 0;
        }
        if (isDigit)
            ++runs[count - 1];
        else if (isInRun)
            separatorBegin = at;
        isInRun = isDigit;
        at += isDigit ? m_digits[0].unitCount : 1;
    }
    return isInRun ? count : 0;
}

bool IntegerRules::learnGroups(KTLLanguage &language, int &result) noexcept
{
    constexpr int64_t longNumber = 111111111111111111; // 18 digits
    IcuNumber number;
    if ((result = language.numbers.formatInteger(language, longNumber, false, number)) != 0)
        return false;
    int runs[maxDigits];
    const int count = groupsOf({number.text().begin, number.text().length}, runs);
    if (count == 0)
        return false;
    if (count == 1)
        return true;
    m_primary = static_cast<size_t>(runs[count - 1]);
    m_secondary = static_cast<size_t>(runs[count - 2]);
    const size_t plainLength = m_positive.prefix.unitCount + m_positive.suffix.unitCount;
    int64_t power = 1;
    for (size_t digits = 1; digits < maxDigits - 1; ++digits, power *= 10)
    {
        IcuNumber probe;
        if ((result = language.numbers.formatInteger(language, power, false, probe)) != 0)
            return false;
        if (probe.text().length == plainLength + digits * m_digits[0].unitCount)
            continue;
        m_groupedFrom = static_cast<uint64_t>(power);
        return digits > m_primary;
    }
    return false;
}

bool IntegerRules::matches(KTLLanguage &language, int64_t value, int &result) const noexcept
{
    IcuNumber number;
    if ((result = language.numbers.formatInteger(language, value, false, number)) != 0)
        return false;
    UCS2 text[200];
    unsigned long size = sizeof text / sizeof *text;
    Output output(&size, text);
    const uint64_t magnitude = value < 0 ? -static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    return write<UCS2>(magnitude, value < 0, {KT_ABSENT, KT_ABSENT, 0, nullptr}, output) == 0 &&
           std::u16string_view(text, size) == std::u16string_view(number.text().begin, number.text().length);
}

int integerRulesOf(KTLLanguage &language, const IntegerRules *&rules) noexcept
{
    return language.integers.get(rules, [&](auto &made) {
        made.reset(new (std::nothrow) IntegerRules);
        return made != nullptr ? made->learn(language) : int{KT_ERR_NO_MEMORY};
    });
}

int writeInteger(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output)
{
    const IntegerRules *rules = nullptr;
    if (const int result = integerRulesOf(language, rules))
        return result;
    const uint64_t value = values[0].integer;
    const bool isNegative = kind.variant == signedNumber && static_cast<int64_t>(value) < 0;
    const uint64_t magnitude = isNegative ? -value : value;
    if (!rules->areKnown())
        return writeIntegerByIcu(language, magnitude, isNegative, spec, output);
    return output.isUTF8() ? rules->write<char>(magnitude, isNegative, spec, output)
                           : rules->write<UCS2>(magnitude, isNegative, spec, output);
}

} // namespace kelto::locale
