#include "format/specification.h"
#include "format/started_test.h"
#include "support/formatting.h"
#include "support/locale_folder.h"

#include <cfenv>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>

namespace
{

using FloatingPoint = StartedTest;

/** Compares with the C library; the text may be of any length. */
template <typename Value> void compare(const std::string &start, Value value)
{
    const char *const conversion = sizeof(Value) == sizeof(double) ? "f" : "Lf";
    std::string expected(30000, '\0');
    expected.resize(
        static_cast<size_t>(std::snprintf(expected.data(), expected.size(), (start + conversion).c_str(), value)));
    std::string format = start + conversion + "[1]";
    std::u16string out(expected.size() + 1, u'#');
    unsigned long size = out.size();
    ASSERT_EQ(KTFormatString(nullptr, false, &size, out.data(), format.data(), value), 0) << format;
    EXPECT_TRUE(std::string(out.begin(), out.begin() + static_cast<long>(size)) == expected)
        << format << " of " << value;
    size = expected.size();
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out.data(), format.data(), value), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, expected.size());
}

TEST_F(FloatingPoint, IsWhatTheCLibraryPrintsOverTheWholeProduct)
{
    const double values[] = {0.0,       -0.0,     0.5,    1.5,     2.5,     0.125,    -1.5,
                             3.14159,   999999.5, 1e15,   1e16,    1e22,    1e23,     123456789.987654321,
                             0.1,       1e-7,     5e-324, DBL_MAX, DBL_MIN, -DBL_MAX, INFINITY,
                             -INFINITY, NAN,      -NAN};
    for (int flags = 0; flags <= allFlagCharacters; ++flags)
        for (const int width : {-1, 1, 12, 400})
            for (const int precision : {-1, 0, 1, 6, 17, 40})
                for (const double value : values)
                    compare(specificationStart(flags, width, precision), value);
}

TEST_F(FloatingPoint, OfAnyMagnitudeAndPrecisionHasItsTrueLength)
{
    for (const int precision : {-1, 0, 303, 1073, 1074, 1075, 1100, 16444, 16445, 16446})
        for (const int flags : {0, int{FLAG_MINUS}, int{FLAG_ZERO}, FLAG_HASH | FLAG_ZERO})
        {
            for (const double value : {DBL_MAX, 5e-324, -1.0, double(INFINITY)})
                compare(specificationStart(flags, 1200, precision), value);
            for (const long double value : {LDBL_MAX, LDBL_TRUE_MIN, -2.5L, 1e300L, (long double)NAN})
                compare(specificationStart(flags, 6000, precision), value);
        }
}

TEST_F(FloatingPoint, FollowsTheRoundingMode)
{
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO, FE_TONEAREST})
    {
        ASSERT_EQ(std::fesetround(mode), 0);
        for (const double value : {0.5, 1.45, -2.675, 1e22 / 3, 0.1})
            for (const char *start : {"%.0", "%.1", "%.2", "%.17"})
            {
                compare(start, value);
                compare(start, static_cast<long double>(value) / 3);
            }
    }
}

TEST_F(FloatingPoint, OfAnyBitsIsWhatTheCLibraryPrints)
{
    std::mt19937_64 random(7);
    for (int round = 0; round < 20000; ++round)
    {
        const uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        // Every other one of a usual magnitude, some with ties among them and some with all their bits.
        if (round % 2 == 0)
            value = std::ldexp(static_cast<double>(static_cast<int64_t>(bits) >> (round % 4 == 0 ? 24 : 11)),
                               -static_cast<int>(bits % (round % 4 == 0 ? 20 : 60)));
        compare("%." + std::to_string(bits % 23), value);
    }
}

TEST_F(FloatingPoint, UsesTheDecimalMarkOfTheLocale)
{
    const LocaleFolder folder;
    for (const char *name : {"de_DE", "ps_AF"}) // a comma, and a mark of two bytes
    {
        if (!folder.build(name, name, "UTF-8"))
            GTEST_SKIP() << "localedef or the sources of the locales are missing";
        ASSERT_NE(std::setlocale(LC_NUMERIC, name), nullptr);
        for (int flags = 0; flags <= allFlagCharacters; ++flags)
            for (const int width : {-1, 12})
                for (const int precision : {0, 2})
                {
                    compare(specificationStart(flags, width, precision), 1234.5);
                    compare(specificationStart(flags, width, precision), -1234.5L);
                }
        Arguments number("-1234.5");
        EXPECT_NE(formatted("%.2f[1]", number), "-1234.50") << "and every form of call writes the same";
        std::setlocale(LC_NUMERIC, "C");
    }
    compare("%.2", 1234.5);
}

} // namespace
