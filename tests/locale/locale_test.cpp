// The add-on beside ICU's own functions, in every locale; and what it makes of bad input, of threads, and of memory
// that runs out.

#include "format/started_test.h"
#include "kelto-locale.h"
#include "support/formatting.h"
#include "support/heap_faults.h"
#include "support/literals.h"
#include "support/page.h"
#if KELTO_HAS_TOOLS
#include "library/language_conversions.h"
#endif

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <memory>
#include <thread>
#include <unicode/uclean.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unumberformatter.h>

namespace
{

constexpr const char *zone = "Europe/Warsaw";

class Locale : public StartedTest
{
protected:
    void TearDown() override
    {
        KTLForgetLanguages();
        StartedTest::TearDown();
    }
};

struct Close
{
    void operator()(KTLLanguage *language) const { KTLCloseLanguage(language); }
};
using Language = std::unique_ptr<KTLLanguage, Close>;

Language open(const char *locale, const char *timeZone = zone)
{
    KTLLanguage *language = nullptr;
    EXPECT_EQ(KTLOpenLanguage(locale, timeZone, &language), 0) << locale;
    return Language(language);
}

std::string formatIn(const Language &language, const std::string &format, const std::string &arguments,
                     bool tag = false)
{
    Arguments values(arguments);
    return formatted(format, values, {tag, KTLFormTable(language.get()), nullptr});
}

struct
{
    KTPreparedFormat *prepared = nullptr;
    int result = 0;
    size_t size = 0;
    std::string text;
} last;

/** Formats once, into UTF-8. */
const std::string &formatOnce(const Language &language, const char *format, const std::vector<KTArgument> &arguments)
{
    char out[400];
    last.size = sizeof out;
    last.result = KTPrepareFormat(format, KTLFormTable(language.get()), &last.prepared);
    if (last.result == 0)
        last.result =
            KTFormatPreparedUTF8(last.prepared, 0, nullptr, &last.size, out, arguments.data(), arguments.size());
    KTFreePrepared(last.prepared);
    return last.text = last.result == 0 ? std::string(out, last.size) : KTResultName(last.result);
}

/** What ICU itself writes. */
class Icu
{
public:
    explicit Icu(const char *locale) : m_number(open(u"", locale)), m_decimal(open(u".00", locale))
    {
        m_number.get_deleter() = m_decimal.get_deleter() = unumf_close;
        for (const UDateFormatStyle style : {UDAT_SHORT, UDAT_MEDIUM, UDAT_LONG, UDAT_FULL})
            m_dates.emplace_back(udat_open(UDAT_NONE, style, locale, u"Europe/Warsaw", -1, nullptr, 0, &m_status),
                                 udat_close);
        EXPECT_TRUE(U_SUCCESS(m_status)) << locale;
    }

    std::string number(const std::string &digits) { return number(m_number.get(), digits); }
    std::string decimal(const std::string &digits) { return number(m_decimal.get(), digits); }

    std::string date(double seconds, size_t style)
    {
        UChar text[200];
        const int32_t length = udat_format(m_dates[style].get(), seconds * 1000, text, 200, nullptr, &m_status);
        return toUTF8({text, static_cast<size_t>(length)});
    }

private:
    using Formatter = std::unique_ptr<UNumberFormatter, decltype(&unumf_close)>;

    Formatter open(std::u16string_view skeleton, const char *locale)
    {
        return {unumf_openForSkeletonAndLocale(skeleton.data(), -1, locale, &m_status), unumf_close};
    }

    std::string number(const UNumberFormatter *formatter, const std::string &digits)
    {
        UChar text[200];
        const std::unique_ptr<UFormattedNumber, decltype(&unumf_closeResult)> result(unumf_openResult(&m_status),
                                                                                     unumf_closeResult);
        unumf_formatDecimal(formatter, digits.c_str(), -1, result.get(), &m_status);
        const int32_t length = unumf_resultToString(result.get(), text, 200, &m_status);
        return toUTF8({text, static_cast<size_t>(length)});
    }

    UErrorCode m_status = U_ZERO_ERROR;
    Formatter m_number, m_decimal;
    std::vector<std::unique_ptr<UDateFormat, decltype(&udat_close)>> m_dates;
};

TEST_F(Locale, NumbersAndDatesAreThoseOfIcuInEveryLocale)
{
    constexpr int64_t integers[] = {0, -7, 42, 999, 1000, -12345, 100000, 1234567, 9876543210, INT64_MAX, INT64_MIN};
    constexpr double doubles[] = {0, -0.001, 1.005, 29.945, 999.995, -1234.5, 1e6 / 3, 2.675, 4503599627370495.5, 1e22};
    constexpr long moments[] = {0, 951782400, 1795608000, 4107542400, 32503680000};
    ASSERT_GT(uloc_countAvailable(), 500);
    for (int32_t i = 0; i < uloc_countAvailable(); ++i)
    {
        const char *const name = uloc_getAvailable(i);
        const Language language = open(name);
        Icu icu(name);
        for (const int64_t value : integers)
        {
            EXPECT_EQ(formatOnce(language, "%!number[1]", {KT_INT64(value)}), icu.number(std::to_string(value)))
                << name;
            const auto bits = static_cast<uint64_t>(value);
            EXPECT_EQ(formatOnce(language, "%!unumber[1]", {KT_UINT64(bits)}), icu.number(std::to_string(bits)))
                << name;
        }
        for (const double value : doubles)
        {
            char digits[60];
            std::snprintf(digits, sizeof digits, "%.2f", value);
            EXPECT_EQ(formatOnce(language, "%decimal[1]", {KT_DOUBLE(value)}), icu.decimal(digits)) << name;
        }
        for (const long moment : moments)
            for (size_t style = 0; style < 4; ++style)
            {
                const std::string format = "%." + std::to_string(style) + "date[1]", seconds = std::to_string(moment);
                EXPECT_EQ(formatOnce(language, format.c_str(), {KT_UTF8(seconds.c_str())}),
                          icu.date(static_cast<double>(moment), style))
                    << name << ' ' << seconds;
            }
    }
}

// As many digits as can be asked for, of doubles of every size, each by the quick way or the long one.
TEST_F(Locale, DecimalsHaveTheDigitsOfF)
{
    const Language root = open("root");
    uint64_t seed = 88172645463325252;
    for (int i = 0; i < 20000; ++i)
    {
        seed ^= seed << 13, seed ^= seed >> 7, seed ^= seed << 17;
        const int decimals = static_cast<int>(seed % 8);
        double value = static_cast<double>(seed >> 20 & 0xFFFFF) / (seed % 3 == 0 ? 1000 : 1 << seed % 20);
        value = seed % 5 == 0 ? -value : value;
        char format[40], digits[60];
        std::snprintf(format, sizeof format, "%%.%ddecimal[1]", decimals);
        std::snprintf(digits, sizeof digits, "%.*f", decimals, value);
        std::string text = formatOnce(root, format, {KT_DOUBLE(value)});
        text.erase(std::remove(text.begin(), text.end(), ','), text.end());
        ASSERT_EQ(text, digits) << decimals;
    }
}

TEST_F(Locale, FlagsWidthsAndWhatIsNotFinite)
{
    const Language german = open("de"), arabic = open("ar-EG"), thai = open("th_TH.UTF-8"), adlam = open("ff-Adlm");
    const struct
    {
        const Language &language;
        const char *format, *arguments, *text;
    } rows[] = {
        {german, "%8number[1]|%-8number[2]|%+number[3]|% number[4]", "-1234, 1234, 1, 1", "  -1.234|1.234   |+1| 1"},
        {german, "%-08number[1]|%08number[2]", "-12345, 12", "-012.345|00000012"},
        {german, "%hnumber[1]|%hunumber[2]", "(short)-1, (short)-1", "-1|65.535"},
        {german, "%unumber[1]|%!unumber[2]", "-1, 18446744073709551615L", "4.294.967.295|18.446.744.073.709.551.615"},
        {arabic, "%06number[1]|%+number[2]", "-42, 7", "\u061C-٠٠٤٢|\u061C+٧"},
        {adlam, "%05number[1]|%3number[2]", "7, 7", "𞥐𞥗| 𞥗"},
        {german, "%08.1decimal[1]|%-8.1decimal[2]|% .0decimal[3]|%+.0decimal[4]", "-1.25, 1.25, 2.5, 2.5",
         "-00001,2|1,2     | 2|+2"},
        {german, "%decimal[1]|%8decimal[2]|%08decimal[3]", "inf, -inf, nan", "∞|      -∞|     NaN"},
        {german, "%.1Ldecimal[1]|%Lpercent[2]", "29.95L, -infL", "30,0|-∞\u00A0%"},
        {german, "%.0decimal[1]|%.20decimal[2]", "-0.4, 0.1", "-0|0,10000000000000000555"},
        {german, "%12money[1]|%-#12money[2]|%+.0money[3]", "\"-1\", \"EUR\", \"1\", \"USD\", \"2.5\", \"CHF\"",
         "     -1,00\u00A0€|1,00\u00A0USD    |+2\u00A0CHF"},
        {german, "%money[1]|%money[2]|%money[3]",
         "\"007.5\", \"JPY\", \"0.00000\", \"KWD\", \"+12345678901234567890.1234\", \"EUR\"",
         "7,5\u00A0¥|0,000\u00A0KWD|12.345.678.901.234.567.890,1234\u00A0€"},
        {german, "%unit[1]|%.2unit[2]|%#unit[3]", "1.50, \"hour\", 1.50, \"hour\", 1.0, \"kilometer-per-hour\"",
         "1,5 Std.|1,50 Std.|1 Kilometer pro Stunde"},
        {thai, "%.2date[1]|%time[2]", "\"2026-11-25'T23:30:00Z\", \"86399\"", "26 พฤศจิกายน 2569|00:59:59"},
        {german, "%.9date[1]|%.2date[2]", "\"2100-02-28'T23:30:00Z\", \"1500-02-28'T00:00:00Z\"",
         "Montag, 1. März 2100|28. Februar 1500"},
        {german, "%ago[1]|%ago[2]|%ago[3]|%!ago[4]", "-59, 7200, 0, -9223372036854775808L",
         "vor 59 Sekunden|in 2 Stunden|jetzt|vor 292.471.208.677 Jahren"},
        {german, "%and[1]|%or[2]|%and[3]|%12and[4]|%and[5]", "\"a\\nb\\nc\", \"a\\nb\\n\", \"\", \"é\\n😀\", null",
         "a, b und c|a oder b||    é und 😀|"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(formatIn(row.language, row.format, row.arguments), row.text) << row.format;
    EXPECT_EQ(formatIn(german, "%datetime[1]%number[2]", "\"86400\", 1", true),
              formatIn(german, "%DT[1]1", "\"86400\"", true));
}

TEST_F(Locale, ExamplesOfThePageGiveTheTextShown)
{
    const std::vector<Row> rows = rowsUnder(readPage("docs/locale.md"), "| Language | Format | Arguments | Text |");
    EXPECT_GT(rows.size(), 40U);
    for (const Row &row : rows)
        EXPECT_EQ(formatIn(open(row[0].c_str()), row[1], row[2]), row[3]) << row[0] << ' ' << row[1];
}

TEST_F(Locale, LanguagesAreNamedAndFoundAgain)
{
    const struct
    {
        const char *locale, *name;
    } rows[] = {{"pl", "pl"},
                {"pl_PL.UTF-8@euro", "pl-PL"},
                {"pl-XX", "pl"},
                {"sr_RS@latin", "sr-Latn-RS"},
                {"zh-TW", "zh-TW"},
                {"th-TH-u-nu-thai", "th-TH-u-nu-thai"},
                {"xx", "root"},
                {"C.UTF-8", "root"},
                {"POSIX", "root"},
                {"", "root"},
                {"p\xC5l\n", "root"},
                {"root", "root"},
                {"de-u-ca-\xFF", "root"},
                {"ca_ES@valencia", "ca-ES"},
                {"sr_RS@cyrillic", "sr-Cyrl-RS"}};
    for (const auto &row : rows)
    {
        const Language language = open(row.locale, nullptr), again = open(row.locale, nullptr);
        EXPECT_STREQ(KTLLanguageName(language.get()), row.name) << row.locale;
        EXPECT_EQ(language, again);
        EXPECT_NE(formatOnce(language, "%number[1]", {KT_INT(1)}), "") << row.locale;
    }
    EXPECT_EQ(KTLConversions(const_cast<char *>(zone), "pl"), KTLFormTable(open("pl").get()));
    EXPECT_EQ(KTLConversions(const_cast<char *>("none"), "pl"), nullptr);
    EXPECT_EQ(KTLFormTable(nullptr), nullptr);
    EXPECT_EQ(KTLLanguageName(nullptr), nullptr);
    KTLCloseLanguage(nullptr);
}

#if KELTO_HAS_TOOLS
TEST_F(Locale, TheProgramKnowsTheConversionsByNameAndArguments)
{
    const Language root = open("root");
    const KTFormatter *own = KTLFormTable(root.get())->formList, *named = tool::namedConversions()->formList;
    for (; own->name != nullptr && named->name != nullptr; ++own, ++named)
    {
        EXPECT_STREQ(own->name, named->name);
        EXPECT_EQ(own->argCount, named->argCount) << own->name;
        for (int i = 0; i < own->argCount; ++i)
            EXPECT_EQ(own->argTypes[i], named->argTypes[i]) << own->name;
    }
    EXPECT_EQ(own->name, named->name) << "one has more";
}
#endif

TEST_F(Locale, BadInputIsAResult)
{
    const std::string kilobyte(1024, 'a'), edge(156, 'a');
    const struct
    {
        const char *locale, *zone;
        int result;
    } openings[] = {
        {nullptr, zone, KT_ERR_INVALID_PARAMETER},
        {kilobyte.c_str(), zone, KT_ERR_INVALID_PARAMETER},
        {edge.c_str(), zone, 0},
        {"pl", "", KT_ERR_INVALID_PARAMETER},
        {"pl", "Europe/Nowhere", KT_ERR_INVALID_PARAMETER},
        {"pl", kilobyte.c_str(), KT_ERR_INVALID_PARAMETER},
        {"pl", "Etc/Unknown", KT_ERR_INVALID_PARAMETER},
        {"pl", "GMT+02:00", 0},
    };
    for (const auto &row : openings)
    {
        KTLLanguage *language = nullptr;
        EXPECT_EQ(KTLOpenLanguage(row.locale, row.zone, &language), row.result) << row.zone;
        EXPECT_EQ(language != nullptr, row.result == 0);
        KTLCloseLanguage(language);
    }
    EXPECT_EQ(KTLOpenLanguage("pl", zone, nullptr), KT_ERR_INVALID_PARAMETER);
    const Language polish = open("pl");
    const struct
    {
        const char *format, *first, *second;
    } texts[] = {
        {"%money[1]", "", "EUR"},   {"%money[1]", "1e5", "EUR"},    {"%money[1]", ".5", "EUR"},
        {"%money[1]", "1.", "EUR"}, {"%money[1]", "--1", "EUR"},    {"%money[1]", "1 000", "EUR"},
        {"%money[1]", "1", ""},     {"%money[1]", "1", "eur"},      {"%money[1]", "1", "EURO"},
        {"%money[1]", "1", "ABC"},  {"%.1000money[1]", "1", "EUR"},
    };
    for (const auto &row : texts)
        EXPECT_EQ(formatOnce(polish, row.format, {KT_UTF8(row.first), KT_UTF8(row.second)}), "KT_ERR_INVALID_PARAMETER")
            << row.first << ' ' << row.second;
    for (const char *unit : {"", "nothing", "meter scale/100", "METER", "meter-per-", kilobyte.c_str()})
        EXPECT_EQ(formatOnce(polish, "%unit[1]", {KT_DOUBLE(1), KT_UTF8(unit)}), "KT_ERR_INVALID_PARAMETER") << unit;
    for (const char *moment :
         {"1x", "-1", "183882168921601", "99999999999999999999", "2026-02-29'T00:00:00Z", "2026-13-01'T00:00:00Z",
          "2026-01-01'T24:00:00Z", "2026-01-01T00:00:00Z", "2026-01-01'T00:00:00Z.", "2100-02-29'T00:00:00Z"})
        EXPECT_EQ(formatOnce(polish, "%date[1]", {KT_UTF8(moment)}), "KT_ERR_INVALID_PARAMETER") << moment;
    EXPECT_EQ(formatOnce(polish, "%.1000decimal[1]", {KT_DOUBLE(1)}), "KT_ERR_INVALID_PARAMETER");
    EXPECT_EQ(formatOnce(polish, "%and[1]", {KT_UTF8("\xFF\n\xC3")}), "\uFFFD i \uFFFD");
}

TEST_F(Locale, WhatIsTooLongIsMeasured)
{
    const Language polish = open("pl");
    for (const char *format : {"%2000000000number[1]", "%-2000000000ago[1]", "%02000000000number[1]"})
    {
        EXPECT_EQ(formatOnce(polish, format, {KT_INT(5)}), "KT_ERR_BUFFER_TOO_SMALL") << format;
        EXPECT_GE(last.size, 2000000000U) << format;
    }
    EXPECT_EQ(formatOnce(polish, "%02000000000decimal[1]", {KT_DOUBLE(5)}), "KT_ERR_BUFFER_TOO_SMALL");
    EXPECT_EQ(last.size, 2000000000U);
    EXPECT_EQ(formatOnce(polish, "%.999decimal[1]", {KT_DOUBLE(1e308)}), "KT_ERR_BUFFER_TOO_SMALL");
    EXPECT_GT(last.size, 1308U);
    std::string lines;
    for (int i = 0; i < 1000000; ++i)
        lines += "ä\n";
    EXPECT_EQ(formatOnce(polish, "%and[1]", {KT_UTF8(lines.c_str())}), "KT_ERR_BUFFER_TOO_SMALL");
    EXPECT_EQ(last.size, 1000000 * 2 + 999998 * 2 + 3U);
}

int bracket(const void *value, int type, unsigned long *sizeInOut, UCS2 *out)
{
    const std::u16string text = u"[" + std::u16string(static_cast<const UCS2 *>(value)) + u"]";
    EXPECT_EQ(type, KT_ENCODE_UCS2);
    if (text == u"[fail]")
        return -77;
    text.copy(out, std::min<size_t>(*sizeInOut, text.size()));
    *sizeInOut = text.size();
    return 0;
}

TEST_F(Locale, AnEncodedRegionEncodesTheItemsOfLists)
{
    const Language german = open("de");
    formTable encoded = {false, {}, nullptr, bracket, KTLFormTable(german.get())};
    Arguments values("0, 0, \"a\\n\\nb\", 1234, \"ä\"");
    EXPECT_EQ(formatted("%N[1]%and[2]%number[3]%O[4]%or[5]", values = Arguments("\"a\\n\\nb\", 1234, \"ä\""),
                        {false, &encoded, nullptr}),
              "[a], [] und [b]1.234ä");
    EXPECT_EQ(formatted("%N[1]%or[2]", values = Arguments("\"a\\nfail\""), {false, &encoded, nullptr}), "-77");
}

TEST_F(Locale, EightThreadsShareALanguage)
{
    const Language shared = open("de");
    const char *const format = "%number[1] %decimal[2] %money[3] %unit[4] %.3datetime[5] %ago[6] %and[7]";
    const std::vector<KTArgument> arguments = {KT_INT(-1234),         KT_DOUBLE(1.5), KT_UTF8("1"),
                                               KT_UTF8("EUR"),        KT_DOUBLE(2),   KT_UTF8("meter"),
                                               KT_UTF8("1795608000"), KT_INT(-3600),  KT_UTF8("a\nb")};
    KTPreparedFormat *prepared = nullptr;
    ASSERT_EQ(KTPrepareFormat(format, KTLFormTable(shared.get()), &prepared), 0);
    std::string texts[8];
    std::vector<std::thread> threads;
    for (std::string &text : texts)
        threads.emplace_back([&] {
            for (int i = 0; i < 50; ++i)
            {
                char out[400];
                size_t size = sizeof out;
                KTLLanguage *again = nullptr;
                if (KTLOpenLanguage(i % 2 == 0 ? "de" : "fr", zone, &again) == 0 &&
                    KTFormatPreparedUTF8(prepared, 0, nullptr, &size, out, arguments.data(), arguments.size()) == 0)
                    text = std::string(out, size);
                KTLCloseLanguage(again);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    KTFreePrepared(prepared);
    EXPECT_THAT(texts, testing::Each("-1.234 1,50 1,00\u00A0€ 2 m Mittwoch, 25. November 2026 um 13:00:00 "
                                     "Mitteleuropäische Normalzeit vor 1 Stunde a und b"));
}

/** Opens a language and formats by the conversion of a number. */
int openAndFormat(size_t conversion)
{
    static const std::string manyLines(600, '\n');
    const struct
    {
        const char *format;
        std::vector<KTArgument> arguments;
    } rows[] = {
        {"%number[1]", {KT_INT(1234567)}},
        {"%.1decimal[1]", {KT_DOUBLE(1e100)}},
        {"%money[1]", {KT_UTF8("1234.5"), KT_UTF8("EUR")}},
        {"%unit[1]", {KT_DOUBLE(5), KT_UTF8("meter-per-second")}},
        {"%.3datetime[1]", {KT_UTF8("1795608000")}},
        {"%ago[1]", {KT_INT(-86400)}},
        {"%and[1]", {KT_UTF8(manyLines.c_str())}},
    };
    KTLLanguage *language = nullptr;
    const int opened = KTLOpenLanguage("de", zone, &language);
    if (opened == 0)
        formatOnce(Language(language), rows[conversion].format, rows[conversion].arguments);
    return opened != 0 || last.result == KT_ERR_BUFFER_TOO_SMALL ? opened : last.result;
}
constexpr size_t conversionCount = 7;

TEST_F(Locale, EveryAllocationOfTheAddOnMayFail)
{
    if (!HeapFaults::arePossible)
        GTEST_SKIP() << "the sanitizer has a heap of its own";
    for (size_t conversion = 0; conversion < conversionCount; ++conversion)
    {
        unsigned n = 1;
        for (unsigned failures = 1; failures > 0; ++n)
        {
            openAndFormat(conversion); // what ICU keeps stays
            KTLForgetLanguages();
            HeapFaults::arm(n, "/libkelto-locale.");
            const int result = openAndFormat(conversion);
            KTLForgetLanguages();
            failures = HeapFaults::disarm();
            EXPECT_EQ(result, failures > 0 ? KT_ERR_NO_MEMORY : 0) << conversion << ' ' << n;
        }
        EXPECT_GT(n, 3U) << "the language, and at least something of the conversion";
    }
}

bool isIcuRefused = false;

void *takeBlock(const void *, size_t size)
{
    return isIcuRefused ? nullptr : std::malloc(size);
}

void *growBlock(const void *, void *block, size_t size)
{
    return isIcuRefused ? nullptr : std::realloc(block, size);
}

void freeBlock(const void *, void *block)
{
    std::free(block);
}

TEST_F(Locale, IcuWithoutMemoryIsTold)
{
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(nullptr, takeBlock, growBlock, freeBlock, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    for (const bool isWarm : {false, true})
        for (size_t conversion = 0; conversion < conversionCount; ++conversion)
        {
            openAndFormat(conversion);
            if (!isWarm)
                KTLForgetLanguages();
            isIcuRefused = true;
            const int result = openAndFormat(conversion);
            isIcuRefused = false;
            EXPECT_TRUE(result == KT_ERR_NO_MEMORY || (isWarm && result == 0)) << conversion << ' ' << result;
        }
}

} // namespace
