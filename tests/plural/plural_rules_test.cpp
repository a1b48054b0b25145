// The rules beside those of ICU, which has the same source, perhaps of another version; and what ICU, which counts in
// doubles, cannot say.

#include "kelto.h"
#include "support/page.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <unicode/ulocdata.h>
#include <unicode/unumberformatter.h>
#include <unicode/upluralrules.h>

namespace
{

const char *const categories[] = {"zero", "one", "two", "few", "many", "other"};

/** The languages whose rules have changed since a version of the data, by their kind: 'c' cardinal, 'o' ordinal. */
const std::map<int, const char *> changedSince = {
    {40, "c:blo c:ca c:csw c:cv c:he c:ie c:is c:kok c:lld c:mo c:mt c:ro c:scn c:sgs c:vec o:blo o:kok o:lld o:scn "
         "o:vec"},
    {42, "c:blo c:csw c:cv c:ie c:kok c:lld c:scn c:sgs o:blo o:kok o:lld o:scn"},
    {44, "c:csw c:cv c:ie c:kok c:lld c:scn c:sgs o:kok o:lld o:scn"},
    {46, "c:cv c:ie c:kok c:sgs o:kok o:scn"},
    {47, "c:cv c:ie c:kok c:sgs o:kok o:scn"},
};

/** The table as it is built: its version, and the languages that have rules of their own name. */
struct Table
{
    int version = 0;
    std::set<std::string> languages = {"pt-PT"};

    Table()
    {
        const std::string page = readPage("src/plural/plural_table.h");
        version = std::stoi(page.substr(page.find("CLDR ") + 5));
        for (size_t at = 0; (at = page.find("\n    {\"", at)) != std::string::npos; ++at)
        {
            const std::string line = page.substr(at + 1, page.find('\n', at + 1) - at - 1);
            const std::string code = line.substr(6, line.find('"', 6) - 6);
            if (line.find("// as") == std::string::npos)
                languages.insert(code);
        }
    }
};

/** ICU's rules of one language and kind, and whether they are to be the same. */
struct Peer
{
    std::string language;
    bool ordinal;
    bool isStrict;
    std::unique_ptr<UPluralRules, decltype(&uplrules_close)> rules;
};

std::vector<Peer> peersFor(const Table &table, int version)
{
    const std::string changed = version == table.version ? "" : changedSince.at(version);
    std::vector<Peer> peers;
    for (const std::string &language : table.languages)
        for (const bool ordinal : {false, true})
        {
            UErrorCode status = U_ZERO_ERROR;
            UPluralRules *const rules =
                uplrules_openForType(language.c_str(), ordinal ? UPLURAL_TYPE_ORDINAL : UPLURAL_TYPE_CARDINAL, &status);
            EXPECT_TRUE(U_SUCCESS(status)) << language;
            const std::string name = (ordinal ? "o:" : "c:") + language;
            const bool isStrict = (changed + " ").find(name + " ") == std::string::npos;
            peers.push_back({language, ordinal, isStrict, {rules, uplrules_close}});
        }
    return peers;
}

/** A number as ICU shows it with so many digits behind the mark. */
class ShownByIcu
{
public:
    ShownByIcu()
    {
        for (int digits = 0; digits < 4; ++digits)
        {
            const std::u16string skeleton =
                digits == 0 ? u"." : u"." + std::u16string(static_cast<size_t>(digits), u'0');
            m_formatters[digits] = unumf_openForSkeletonAndLocale(skeleton.c_str(), -1, "en", &m_status);
        }
        m_number = unumf_openResult(&m_status);
    }
    ~ShownByIcu()
    {
        for (UNumberFormatter *formatter : m_formatters)
            unumf_close(formatter);
        unumf_closeResult(m_number);
    }

    std::string category(const UPluralRules *rules)
    {
        UChar text[20];
        const int length = uplrules_selectFormatted(rules, m_number, text, 20, &m_status);
        EXPECT_TRUE(U_SUCCESS(m_status));
        return std::string(text, text + length);
    }

    void show(const std::string &number, int digits)
    {
        unumf_formatDecimal(m_formatters[digits], number.c_str(), -1, m_number, &m_status);
    }

private:
    UErrorCode m_status = U_ZERO_ERROR;
    UNumberFormatter *m_formatters[4];
    UFormattedNumber *m_number;
};

TEST(PluralRules, AreThoseOfIcu)
{
    const Table table;
    UVersionInfo version;
    UErrorCode status = U_ZERO_ERROR;
    ulocdata_getCLDRVersion(version, &status);
    if (version[0] != table.version && changedSince.count(version[0]) == 0)
        GTEST_SKIP() << "no list of what has changed since CLDR " << int{version[0]};
    ASSERT_GT(table.languages.size(), 220U);
    const std::vector<Peer> peers = peersFor(table, version[0]);
    ShownByIcu icu;
    std::mt19937_64 random(19);
    std::set<std::string> differing;
    const auto compare = [&](uint64_t integer, unsigned fraction, int digits) {
        char text[40];
        const double scale = std::pow(10, digits);
        std::snprintf(text, sizeof text, "%lu.%0*u", static_cast<unsigned long>(integer), digits, fraction);
        const double real = static_cast<double>(integer) + fraction / scale;
        icu.show(text, digits);
        for (const Peer &peer : peers)
        {
            if (peer.ordinal && digits > 0)
                continue;
            const std::string expected = icu.category(peer.rules.get());
            const KTArgument number = fraction == 0 ? KT_UINT64(integer) : KT_DOUBLE(real);
            const int category = KTPluralCategory(peer.language.c_str(), peer.ordinal, number, digits);
            ASSERT_TRUE(category >= 0 && category <= KT_VARIANT_OTHER);
            if (categories[category] == expected)
                continue;
            ASSERT_FALSE(peer.isStrict) << peer.language << (peer.ordinal ? " ordinal " : " ") << text << ": "
                                        << categories[category] << ", not " << expected;
        }
    };
    for (unsigned integer = 0; integer <= 2000 && !HasFatalFailure(); ++integer)
        compare(integer, 0, 0);
    for (int i = 0; i < 2000 && !HasFatalFailure(); ++i)
    {
        compare(random() >> (11 + random() % 50), 0, 0);
        const int digits = 1 + i % 3;
        const unsigned most = digits == 1 ? 10 : digits == 2 ? 100 : 1000;
        compare(random() % (i % 2 == 0 ? 3 : 300000), static_cast<unsigned>(random() % (i % 5 == 0 ? 2 : most)),
                digits);
    }
    compare(1000000, 0, 0);
}

// Beyond 10^6 every rule asks for the last six digits alone, whatever the size.
TEST(PluralRules, LookAtAllDigitsOfALargeNumber)
{
    std::mt19937_64 random(20);
    for (const std::string &language : Table().languages)
        for (int i = 0; i < 200; ++i)
        {
            const uint64_t number = i % 10 == 0 ? UINT64_MAX - static_cast<unsigned>(i) : random() | uint64_t{1} << 62;
            const uint64_t small = 3000000 + number % 1000000;
            for (const bool ordinal : {false, true})
                ASSERT_EQ(KTPluralCategory(language.c_str(), ordinal, KT_UINT64(number), 0),
                          KTPluralCategory(language.c_str(), ordinal, KT_UINT64(small), 0))
                    << language << number;
        }
}

TEST(PluralRules, AreFoundByTheNameOfALanguage)
{
    const long double real = 1.0L;
    const struct
    {
        const char *locale;
        bool ordinal;
        KTArgument number;
        int digits, category;
    } rows[] = {
        {"ru", false, KT_INT64(9007199254741001), 0, KT_VARIANT_ONE},
        {"pl", false, KT_INT(22), 0, KT_VARIANT_FEW},
        {"PL", false, KT_INT(-22), 0, KT_VARIANT_FEW},
        {"pl_PL.UTF-8@euro", false, KT_UINT(22), 0, KT_VARIANT_FEW},
        {"pl@x", false, KT_UINT64(25), 0, KT_VARIANT_MANY},
        {"pl1", false, KT_INT(1), 0, KT_VARIANT_OTHER},
        {"plx", false, KT_INT(1), 0, KT_VARIANT_OTHER},
        {"p", false, KT_INT(1), 0, KT_VARIANT_OTHER},
        {"", false, KT_INT(1), 0, KT_VARIANT_OTHER},
        {"_PT", false, KT_INT(1), 0, KT_VARIANT_OTHER},
        {"pol", false, KT_INT(22), 0, KT_VARIANT_FEW},
        {"iw", false, KT_INT(2), 0, KT_VARIANT_TWO},
        {"fil", false, KT_INT(4), 0, KT_VARIANT_OTHER},
        {"filx", false, KT_INT(1), 0, KT_VARIANT_OTHER},
        {"zzz", false, KT_INT(1), 0, KT_VARIANT_OTHER},
        {"zul", false, KT_INT(0), 0, KT_VARIANT_ONE},
        {"de-AT", false, KT_INT(1), 0, KT_VARIANT_ONE},
        {"pt", false, KT_INT(0), 0, KT_VARIANT_ONE},
        {"pt_BR", false, KT_INT(0), 0, KT_VARIANT_ONE},
        {"pt_PT", false, KT_INT(0), 0, KT_VARIANT_OTHER},
        {"pt-Latn-pt", false, KT_INT(0), 0, KT_VARIANT_OTHER},
        {"pt_AO", false, KT_INT(0), 0, KT_VARIANT_OTHER},
        {"fr_PT", false, KT_INT(0), 0, KT_VARIANT_ONE},
        {"en", true, KT_INT(23), 0, KT_VARIANT_FEW},
        {"en", false, KT_INT(1), 1, KT_VARIANT_OTHER},
        {"en", false, KT_DOUBLE(1), 0, KT_VARIANT_ONE},
        {"en", false, KT_DOUBLE(0.5), 0, KT_VARIANT_OTHER}, // shown as 0
        {"en", false, KT_DOUBLE(-1.4), 0, KT_VARIANT_ONE},
        {"en", false, KT_LONG_DOUBLE(&real), 0, KT_VARIANT_ONE},
        {"fr", false, KT_DOUBLE(1.99), 1, KT_VARIANT_OTHER}, // shown as 2.0
        {"lt", false, KT_DOUBLE(0.25), 1, KT_VARIANT_MANY},
        {"ar", false, KT_DOUBLE(3.0), 2147483647, KT_VARIANT_FEW},
        {"lv", false, KT_DOUBLE(0.1), 1, KT_VARIANT_ONE},
        {"lv", false, KT_DOUBLE(0.1), 30, KT_VARIANT_OTHER}, // ...0555111512
        {"sr", false, KT_DOUBLE(0.1), 25, KT_VARIANT_ONE},   // 0.1000000000000000055511151
        {"da", false, KT_DOUBLE(5e-324), 1074, KT_VARIANT_ONE},
        {"ru", false, KT_DOUBLE(1e18 + 128 * 128), 0, KT_VARIANT_FEW}, // ...16384
        {"es", false, KT_DOUBLE(1e300), 0, KT_VARIANT_OTHER},          // whose last digits are ...160
        {"es", false, KT_DOUBLE(1e22), 0, KT_VARIANT_MANY},
        {"en", false, KT_DOUBLE(std::nan("")), 0, KT_VARIANT_OTHER},
        {"he", false, KT_DOUBLE(-HUGE_VAL), 1, KT_VARIANT_OTHER},
        {"ru", false, KT_INT64(INT64_MIN), 0, KT_VARIANT_MANY}, // ...808
        {"en", false, KT_UTF8("1"), 0, KT_ERR_INVALID_PARAMETER},
        {"en", false, KT_CHAR('1'), 0, KT_ERR_INVALID_PARAMETER},
        {"en", false, KT_LONG_DOUBLE(nullptr), 0, KT_ERR_INVALID_PARAMETER},
        {"en", true, KT_DOUBLE(1), 0, KT_ERR_INVALID_PARAMETER},
        {"en", false, KT_INT(1), -1, KT_ERR_INVALID_PARAMETER},
        {nullptr, false, KT_INT(1), 0, KT_ERR_INVALID_PARAMETER},
    };
    for (const auto &row : rows)
        EXPECT_EQ(KTPluralCategory(row.locale, row.ordinal, row.number, row.digits), row.category)
            << (row.locale != nullptr ? row.locale : "null") << " row " << &row - rows;
}

} // namespace
