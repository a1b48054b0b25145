/**
 * Numbers by ICU: a formatter for each kind, number of decimals, currency and unit that a language has been asked for,
 * made at the first time; and what ICU makes of a number, with the place of its digits.
 *
 * A double is written with the digits that "f" gives it, so that a text and the plural form chosen for it agree: ICU
 * rounds the shortest decimal of a double, "f" the double. ICU is therefore given an exact decimal: usually an integer
 * and where its point is (which is also the fastest), a text where that would be too long.
 */
#ifndef KELTO_LOCALE_NUMBER_FORMATTERS_H
#define KELTO_LOCALE_NUMBER_FORMATTERS_H

#include "icu.h"
#include "output.h"

#include <cstdint>
#include <string_view>
#include <unicode/unumberformatter.h>

struct KTLLanguage;

namespace kelto::locale
{

/** The kinds of number, which are also the variants of their conversions. */
enum NumberKind : uint8_t
{
    plainNumber,
    percentNumber,
    moneyNumber,
    unitNumber
};

/** The variants of the conversions for integers. */
enum
{
    unsignedNumber = 0,
    signedNumber = 1
};

/** The longest name of a unit, and the most decimals, which ICU has a limit for. */
constexpr size_t maxUnitName = 79;
constexpr int maxDecimals = 999;

/** What a formatter of ICU writes. Two are compared often: the first members are so as one number. */
struct NumberKey
{
    NumberKind kind;
    bool isSigned = false;  /**< '+' in front of what is not negative */
    bool isScaled = false;  /**< it is given an integer whose last `decimals` digits stand behind the point */
    bool isTrimmed = false; /**< zeros at the end are left out */
    bool isLong = false;    /**< of a unit its words, of an amount the code of its currency */
    bool unused = false;
    int16_t decimals = 0;
    char what[maxUnitName + 1]; /**< the code or the unit, or nothing */

    explicit NumberKey(NumberKind ofKind = plainNumber) noexcept : kind(ofKind) { what[0] = '\0'; }

    bool operator==(const NumberKey &other) const noexcept;
};

/** A number as ICU wrote it. */
class IcuNumber
{
public:
    IcuNumber() = default;
    ~IcuNumber();
    IcuNumber(const IcuNumber &) = delete;
    IcuNumber &operator=(const IcuNumber &) = delete;

    /** @param fill  calls ICU with the number to be filled and a status. */
    template <typename Fill> int make(const Fill &fill) noexcept
    {
        if (const int result = take())
            return result;
        UErrorCode status = U_ZERO_ERROR;
        fill(m_number, &status);
        if (U_SUCCESS(status))
            readText(status);
        return resultOf(status);
    }

    Units text() const noexcept { return m_text; }

    /** The digits in front of the point, from the first to behind the last, in units. */
    size_t digitsBegin() const noexcept { return digits(true); }
    size_t digitsEnd() const noexcept { return digits(false); }

    /** Gives back what is kept for the next numbers. */
    static void forget() noexcept;

private:
    int take() noexcept;
    void readText(UErrorCode &status) noexcept;
    size_t digits(bool isBegin) const noexcept;

    UFormattedNumber *m_number = nullptr;
    Units m_text = {nullptr, 0};
};

/** The formatters of a language. */
class NumberFormatters
{
public:
    NumberFormatters() = default;
    ~NumberFormatters();
    NumberFormatters(const NumberFormatters &) = delete;
    NumberFormatters &operator=(const NumberFormatters &) = delete;

    /** Formats with the formatter of a key, which is made where there is none. @param fill  as in IcuNumber::make(). */
    template <typename Fill>
    int format(const KTLLanguage &language, const NumberKey &key, IcuNumber &number, const Fill &fill) noexcept
    {
        Entry *entry = find(key);
        std::unique_ptr<Entry> spare;
        if (entry == nullptr)
        {
            if (const int result = make(language, key, spare))
                return result;
            entry = keep(spare.get()) ? spare.release() : spare.get();
        }
        return number.make(
            [&](UFormattedNumber *into, UErrorCode *status) { fill(entry->formatter.get(), into, status); });
    }

    int formatInteger(const KTLLanguage &language, int64_t value, bool isSigned, IcuNumber &number) noexcept;

private:
    struct Entry
    {
        NumberKey key;
        Handle<UNumberFormatter, unumf_close> formatter;
        Entry *next = nullptr;
    };

    /** More are made anew for each use: a translation may ask for a thousand numbers of decimals. */
    static constexpr int maxEntries = 64;

    Entry *find(const NumberKey &key) const noexcept;
    static int make(const KTLLanguage &language, const NumberKey &key, std::unique_ptr<Entry> &entry) noexcept;
    bool keep(Entry *entry) noexcept;

    std::atomic<Entry *> m_first = nullptr;
    std::atomic<int> m_count = 0;
};

/**
 * Currencies that were asked for, which ICU looks up anew each time; of those that have no place it goes on doing so.
 */
class Currencies
{
public:
    /**
     * Tells the decimals that a currency has.
     * @param code  in ISO 4217, as "EUR".
     * @return 0, KT_ERR_INVALID_PARAMETER for what is no currency, or the result of a failure.
     */
    int decimalsOf(std::string_view code, int &decimals) noexcept;

private:
    static constexpr size_t placeCount = 16;
    std::atomic<uint32_t> m_known[placeCount] = {}; // the three letters, and in the last byte the decimals
};

/** An exact decimal number: an integer and where its point is, or, where that has too many digits, all digits. */
struct Decimal
{
    bool isNegative;
    int decimals;            /**< the digits behind the point */
    uint64_t value;          /**< without point and sign, where there are no digits */
    std::string_view digits; /**< ASCII, the point left out; or empty */
};

/** Writes a number with as many decimals as the key says, whose other members are filled in here. */
int writeExact(KTLLanguage &language, NumberKey &key, const Decimal &decimal, const Spec &spec, Output &output,
               bool isZeroPadded);

/** The number that digits are, in `value` where they are few enough. */
Decimal decimalOf(bool isNegative, int decimals, std::string_view digits) noexcept;

/** Infinity, and what is no number. */
int writeNotFinite(KTLLanguage &language, NumberKey &key, double value, const Spec &spec, Output &output);

/** An integer of a language whose rules are not known. */
int writeIntegerByIcu(KTLLanguage &language, uint64_t magnitude, bool isNegative, const Spec &spec, Output &output);

} // namespace kelto::locale

#endif
