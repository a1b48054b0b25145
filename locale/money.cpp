// "money": a decimal text and the code of a currency. An amount is never rounded unless a precision asks for it: it has
// the decimals of its currency, and more where the text has more.

#include "conversions.h"
#include "language.h"

#include <algorithm>
#include <iterator>
#include <unicode/ucurr.h>

namespace kelto::locale
{

namespace
{

constexpr size_t codeLength = 3;
constexpr std::string_view digitCharacters = "0123456789";

/** A decimal text without its point and the zeros that say nothing. */
class Amount
{
public:
    /**
     * @return 0; KT_ERR_INVALID_PARAMETER for a text that is no decimal number, or one of more digits than are taken.
     */
    int read(std::string_view text, int leastDecimals) noexcept
    {
        const bool isNegative = !text.empty() && text.front() == '-';
        if (!text.empty() && (text.front() == '-' || text.front() == '+'))
            text.remove_prefix(1);
        const size_t point = std::min(text.find('.'), text.size());
        std::string_view whole = text.substr(0, point);
        std::string_view decimals = point < text.size() ? text.substr(point + 1) : "";
        const bool isNumber = whole.find_first_not_of(digitCharacters) == std::string_view::npos &&
                              decimals.find_first_not_of(digitCharacters) == std::string_view::npos;
        if (!isNumber || whole.empty() || (point < text.size() && decimals.empty()))
            return KT_ERR_INVALID_PARAMETER;
        whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size() - 1));
        const auto least = static_cast<size_t>(leastDecimals);
        while (decimals.size() > least && decimals.back() == '0')
            decimals.remove_suffix(1);
        if (whole.size() > maxDecimals || decimals.size() > maxDecimals)
            return KT_ERR_INVALID_PARAMETER;
        char *end = m_digits + whole.copy(m_digits, whole.size());
        end += decimals.copy(end, decimals.size());
        while (decimals.size() + m_added < least)
            end[m_added++] = '0';
        m_decimal = decimalOf(isNegative, static_cast<int>(decimals.size() + m_added),
                              {m_digits, whole.size() + decimals.size() + m_added});
        return 0;
    }

    const Decimal &decimal() const noexcept { return m_decimal; }

private:
    char m_digits[2 * maxDecimals + 1];
    size_t m_added = 0; // zeros that the text did not have
    Decimal m_decimal = {};
};

/** Looks a currency up. */
int lookUp(const UChar *code, int &decimals)
{
    UErrorCode status = U_ZERO_ERROR;
    if (ucurr_getNumericCode(code) != 0)
    {
        decimals = ucurr_getDefaultFractionDigits(code, &status);
        return resultOf(status);
    }
    // Without its data, or without memory, ICU knows none at all.
    if (ucurr_getNumericCode(u"EUR") != 0)
        return KT_ERR_INVALID_PARAMETER;
    return askForMemory(true) != 0 ? KT_ERR_NO_MEMORY : KT_ERR_CONVERSION_FAILED;
}

} // namespace

int Currencies::decimalsOf(std::string_view code, int &decimals) noexcept
{
    UChar units[codeLength + 1] = {};
    uint32_t asked = 0;
    if (code.size() != codeLength)
        return KT_ERR_INVALID_PARAMETER;
    for (size_t i = 0; i < codeLength; ++i)
    {
        if (code[i] < 'A' || code[i] > 'Z')
            return KT_ERR_INVALID_PARAMETER;
        units[i] = static_cast<UChar>(code[i]);
        asked = asked << 8 | static_cast<uint32_t>(code[i]);
    }
    std::atomic<uint32_t> *place = m_known;
    for (; place != std::end(m_known); ++place)
    {
        const uint32_t known = place->load(std::memory_order_relaxed);
        if (known == 0)
            break;
        decimals = static_cast<int>(known & 0xFF);
        if (known >> 8 == asked)
            return 0;
    }
    const int result = lookUp(units, decimals);
    if (result == 0 && place != std::end(m_known))
        place->store(asked << 8 | static_cast<uint32_t>(decimals), std::memory_order_relaxed);
    return result;
}

int writeMoney(KTLLanguage &language, const Kind & /*kind*/, const Spec &spec, const Value *values, Output &output)
{
    NumberKey key(moneyNumber);
    key.isLong = spec.has(FLAG_HASH);
    int decimals = 0;
    Amount amount;
    if (const int result = language.currencies.decimalsOf(values[1].text, decimals))
        return result;
    if (const int result = amount.read(values[0].text, decimals))
        return result;
    if (spec.precision > maxDecimals)
        return KT_ERR_INVALID_PARAMETER;
    key.decimals = static_cast<int16_t>(spec.precision >= 0 ? spec.precision : amount.decimal().decimals);
    key.what[values[1].text.copy(key.what, codeLength)] = '\0';
    return writeExact(language, key, amount.decimal(), spec, output, spec.has(FLAG_ZERO) && !spec.has(FLAG_MINUS));
}

} // namespace kelto::locale
