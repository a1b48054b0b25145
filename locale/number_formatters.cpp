#include "number_formatters.h"

#include "language.h"

#include <algorithm>
#include <cstring>
#include <unicode/ufieldpositer.h>
#include <unicode/uformattedvalue.h>
#include <unicode/unum.h>
#include <utility>

namespace kelto::locale
{

namespace
{

Pool<UFormattedNumber, unumf_closeResult> spareNumbers;

/** A skeleton, as ICU is told what a formatter writes. */
class Skeleton
{
public:
    explicit Skeleton(const NumberKey &key) noexcept
    {
        appendKind(key);
        appendDecimals(key);
        if (key.isScaled && key.decimals > 0)
        {
            append("scale/0.");
            append('0', key.decimals - 1);
            append("1 ");
        }
        if (key.isSigned)
            append("sign-always ");
    }

    const UChar *units() const noexcept { return m_units; }
    int32_t length() const noexcept { return m_length; }

private:
    void append(std::string_view text) noexcept
    {
        for (const char character : text)
            append(character, 1);
    }

    void append(char character, int count) noexcept
    {
        for (int i = 0; i < count; ++i)
            m_units[m_length++] = static_cast<UChar>(character);
    }

    void appendKind(const NumberKey &key) noexcept
    {
        switch (key.kind)
        {
        case plainNumber:
            break;
        case percentNumber:
            append("percent ");
            break;
        case moneyNumber:
            append("currency/");
            append(key.what);
            append(key.isLong ? " unit-width-iso-code " : " ");
            break;
        case unitNumber:
            append("unit/");
            append(key.what);
            append(key.isLong ? " unit-width-full-name " : " unit-width-short ");
            break;
        }
    }

    void appendDecimals(const NumberKey &key) noexcept
    {
        if (key.decimals == 0)
            return append("precision-integer ");
        append('.', 1);
        append(key.isTrimmed ? '#' : '0', key.decimals);
        append(' ', 1);
    }

    UChar m_units[maxDecimals + maxUnitName + 160];
    int32_t m_length = 0;
};

constexpr size_t maxSmallDigits = 18;

/** Writes digits up to `end`, at least so many; where they begin. */
char *writeDigits(uint64_t value, size_t least, char *end)
{
    char *at = end;
    for (; value != 0 || static_cast<size_t>(end - at) < least; value /= 10)
        *--at = static_cast<char>('0' + value % 10);
    return at;
}

/** A decimal as a text for ICU, "-12.50". */
HeapBlock<char> textOf(const Decimal &decimal, int32_t &length)
{
    char few[maxDecimals + 24];
    std::string_view digits = decimal.digits;
    const auto decimals = static_cast<size_t>(decimal.decimals);
    if (digits.empty())
    {
        char *const begin = writeDigits(decimal.value, decimals + 1, std::end(few));
        digits = {begin, static_cast<size_t>(std::end(few) - begin)};
    }
    HeapBlock<char> text = allocate<char>(digits.size() + 2);
    if (text == nullptr)
        return text;
    char *at = text.get();
    if (decimal.isNegative)
        *at++ = '-';
    const size_t whole = digits.size() - decimals;
    at += digits.copy(at, whole);
    *at++ = '.';
    at += digits.substr(whole).copy(at, decimals);
    length = static_cast<int32_t>(at - text.get());
    return text;
}

Units zeroOf(KTLLanguage &language)
{
    const IntegerRules *rules = nullptr;
    const bool isLearnt = integerRulesOf(language, rules) == 0 && rules->zero().length > 0;
    return isLearnt ? rules->zero() : Units{u"0", 1};
}

/** Lays a number out: a blank in front of it where that stands for '+', and padding. */
int writeNumber(KTLLanguage &language, const IcuNumber &number, bool isNegative, const Spec &spec, Output &output,
                bool isZeroPadded)
{
    const Units text = number.text();
    const bool hasBlank = spec.has(FLAG_SPACE) && !spec.has(FLAG_PLUS) && !isNegative;
    if (!hasBlank && !isZeroPadded)
        return output.writePadded(spec, text);
    Line line = {text};
    const uint64_t missing = spec.missing(text.length + (hasBlank ? 1 : 0));
    line.blanksBefore = hasBlank ? 1 : 0;
    if (isZeroPadded && missing > 0)
    {
        const size_t begin = number.digitsBegin();
        line.head = {text.begin, begin};
        line.tail = {text.begin + begin, text.length - begin};
        line.zero = zeroOf(language);
        line.zeros = missing / line.zero.length;
    }
    else
        (spec.has(FLAG_MINUS) ? line.blanksBehind : line.blanksBefore) += missing;
    return output.write(line);
}

} // namespace

bool NumberKey::operator==(const NumberKey &other) const noexcept
{
    uint64_t shape = 0;
    uint64_t otherShape = 0;
    static_assert(offsetof(NumberKey, what) == sizeof shape);
    std::memcpy(&shape, this, sizeof shape);
    std::memcpy(&otherShape, &other, sizeof otherShape);
    return shape == otherShape && (kind < moneyNumber || std::strcmp(what, other.what) == 0);
}

IcuNumber::~IcuNumber()
{
    if (m_number != nullptr)
        spareNumbers.put(m_number);
}

int IcuNumber::take() noexcept
{
    m_number = m_number != nullptr ? m_number : spareNumbers.take();
    if (m_number != nullptr)
        return 0;
    UErrorCode status = U_ZERO_ERROR;
    m_number = unumf_openResult(&status);
    return resultOf(status);
}

void IcuNumber::readText(UErrorCode &status) noexcept
{
    int32_t length = 0;
    const UFormattedValue *const value = unumf_resultAsValue(m_number, &status);
    const UChar *const units = ufmtval_getString(value, &length, &status);
    m_text = {units, static_cast<size_t>(U_SUCCESS(status) ? length : 0)};
}

size_t IcuNumber::digits(bool isBegin) const noexcept
{
    UFieldPosition position = {UNUM_INTEGER_FIELD, 0, 0};
    UErrorCode status = U_ZERO_ERROR;
    if (!unumf_resultNextFieldPosition(m_number, &position, &status))
        return 0;
    return static_cast<size_t>(isBegin ? position.beginIndex : position.endIndex);
}

void IcuNumber::forget() noexcept
{
    spareNumbers.clear();
}

NumberFormatters::~NumberFormatters()
{
    for (Entry *entry = m_first.load(std::memory_order_relaxed); entry != nullptr;)
        delete std::exchange(entry, entry->next);
}

NumberFormatters::Entry *NumberFormatters::find(const NumberKey &key) const noexcept
{
    Entry *entry = m_first.load(std::memory_order_acquire);
    while (entry != nullptr && !(entry->key == key))
        entry = entry->next;
    return entry;
}

int NumberFormatters::make(const KTLLanguage &language, const NumberKey &key, std::unique_ptr<Entry> &entry) noexcept
{
    entry.reset(new (std::nothrow) Entry{key, nullptr, nullptr});
    if (entry == nullptr || askForMemory(true) != 0)
        return KT_ERR_NO_MEMORY;
    const Skeleton skeleton(key);
    UErrorCode status = U_ZERO_ERROR;
    entry->formatter.reset(
        unumf_openForSkeletonAndLocale(skeleton.units(), skeleton.length(), language.name.icu, &status));
    if (status == U_NUMBER_SKELETON_SYNTAX_ERROR)
        return KT_ERR_INVALID_PARAMETER;
    // ICU works out what it needs at the first uses. Now nobody else can see it; later it only reads.
    int result = resultOf(status);
    constexpr int usesUntilAllIsMade = 4;
    for (int use = 0; use < usesUntilAllIsMade && result == 0; ++use)
    {
        IcuNumber number;
        result = number.make([&](UFormattedNumber *into, UErrorCode *failure) {
            unumf_formatInt(entry->formatter.get(), use, into, failure);
        });
    }
    return result;
}

bool NumberFormatters::keep(Entry *entry) noexcept
{
    if (m_count.fetch_add(1, std::memory_order_relaxed) >= maxEntries)
    {
        m_count.fetch_sub(1, std::memory_order_relaxed);
        return false;
    }
    entry->next = m_first.load(std::memory_order_relaxed);
    while (!m_first.compare_exchange_weak(entry->next, entry, std::memory_order_release, std::memory_order_relaxed))
        ;
    return true;
}

int NumberFormatters::formatInteger(const KTLLanguage &language, int64_t value, bool isSigned,
                                    IcuNumber &number) noexcept
{
    NumberKey key;
    key.isSigned = isSigned;
    return format(language, key, number, [&](const UNumberFormatter *formatter, auto *into, auto *status) {
        unumf_formatInt(formatter, value, into, status);
    });
}

Decimal decimalOf(bool isNegative, int decimals, std::string_view digits) noexcept
{
    if (digits.size() > maxSmallDigits)
        return {isNegative, decimals, 0, digits};
    uint64_t value = 0;
    for (const char digit : digits)
        value = value * 10 + static_cast<uint64_t>(digit - '0');
    return {isNegative, decimals, value, {}};
}

int writeExact(KTLLanguage &language, NumberKey &key, const Decimal &decimal, const Spec &spec, Output &output,
               bool isZeroPadded)
{
    // A zero with a sign is none of the integers.
    const bool isSmall = decimal.digits.empty() && decimal.value <= INT64_MAX && decimal.decimals == key.decimals;
    key.isScaled = isSmall && !(decimal.isNegative && decimal.value == 0);
    key.isSigned = spec.has(FLAG_PLUS);
    const auto value = static_cast<int64_t>(decimal.isNegative ? -decimal.value : decimal.value);
    HeapBlock<char> text;
    int32_t length = 0;
    if (!key.isScaled && (askForMemory(true) != 0 || (text = textOf(decimal, length)) == nullptr))
        return KT_ERR_NO_MEMORY;
    IcuNumber number;
    const int result = language.numbers.format(language, key, number,
                                               [&](const UNumberFormatter *formatter, auto *into, auto *status) {
                                                   if (key.isScaled)
                                                       unumf_formatInt(formatter, value, into, status);
                                                   else
                                                       unumf_formatDecimal(formatter, text.get(), length, into, status);
                                               });
    return result != 0 ? result : writeNumber(language, number, decimal.isNegative, spec, output, isZeroPadded);
}

int writeNotFinite(KTLLanguage &language, NumberKey &key, double value, const Spec &spec, Output &output)
{
    key.isSigned = spec.has(FLAG_PLUS);
    IcuNumber number;
    const int result = language.numbers.format(language, key, number,
                                               [&](const UNumberFormatter *formatter, auto *into, auto *status) {
                                                   unumf_formatDouble(formatter, value, into, status);
                                               });
    return result != 0 ? result : writeNumber(language, number, value < 0, spec, output, false);
}

int writeIntegerByIcu(KTLLanguage &language, uint64_t magnitude, bool isNegative, const Spec &spec, Output &output)
{
    NumberKey key;
    return writeExact(language, key, {isNegative, 0, magnitude, {}}, spec, output, spec.has(FLAG_ZERO));
}

} // namespace kelto::locale
