#include "format/formatters/integer.h"

#include "format/specification.h"
#include "format/started_test.h"
#include "support/ucs2.h"

#include <cstdio>

namespace
{

using Integer = StartedTest;

/** One conversion of the product of everything that can stand in a specification. */
struct Case
{
    char name;
    int flags, width, precision;
    const char *modifier; // ours
    uint64_t value;
};

/** The rules as written, on strings. */
std::string layOut(const Case &c)
{
    const std::string plain = std::string("%") + (c.modifier[0] == '!' ? "ll" : c.modifier) + c.name;
    char text[30];
    std::snprintf(text, sizeof text, plain.c_str(), c.value);
    std::string digits = text;
    std::string prefix;
    if (digits[0] == '-')
    {
        prefix = "-";
        digits.erase(0, 1);
    }
    else if (c.name == 'd')
        prefix = (c.flags & FLAG_PLUS) != 0 ? "+" : (c.flags & FLAG_SPACE) != 0 ? " " : "";
    if (c.name != 'd' && c.name != 'u' && (c.flags & FLAG_HASH) != 0)
        prefix = c.name == 'o' ? "0" : std::string("0") + c.name;
    const auto precision = static_cast<size_t>(c.precision);
    if (c.precision >= 0 && digits.size() > precision)
        digits.replace(precision, std::string::npos, digits.size() - precision, '0');
    else if (c.precision >= 0)
        digits.insert(0, precision - digits.size(), '0');
    const size_t length = prefix.size() + digits.size();
    const std::string padding(c.width > static_cast<int>(length) ? static_cast<size_t>(c.width) - length : 0,
                              (c.flags & FLAG_ZERO) != 0 ? '0' : ' ');
    if ((c.flags & FLAG_ZERO) != 0)
        return prefix + padding + digits;
    return (c.flags & FLAG_MINUS) != 0 ? prefix + digits + padding : padding + prefix + digits;
}

void check(const Case &c)
{
    const std::string expected = layOut(c);
    UCS2 out[100];
    unsigned long size = 100;
    std::string format = specificationStart(c.flags, c.width, c.precision) + c.modifier + c.name + "[1]";
    ASSERT_EQ(KTFormatString(nullptr, false, &size, out, format.data(), c.value), 0);
    ASSERT_EQ(std::string(out, out + size), expected) << format << " of " << c.value;
}

TEST_F(Integer, MatchesTheRulesOverTheWholeProduct)
{
    const uint64_t values[] = {0,      1,      7,          42,         255,          12345,
                               0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, ~uint64_t{0}, 1ULL << 63};
    for (const char name : {'d', 'u', 'o', 'x', 'X'})
        for (const char *modifier : {"", "h", "!"})
            for (int flags = 0; flags <= allFlagCharacters; ++flags)
                for (const int width : {-1, 1, 6, 25})
                    for (const int precision : {-1, 0, 1, 3, 24})
                        for (const uint64_t value : values)
                            ASSERT_NO_FATAL_FAILURE(check({name, flags, width, precision, modifier, value}));
}

TEST(DigitWriters, TerminateAndCount)
{
    char text[23];
    EXPECT_EQ(uint64ToAscii(text, 0), 1);
    EXPECT_STREQ(text, "0");
    EXPECT_EQ(uint64ToAscii(text, UINT64_MAX), 20);
    EXPECT_STREQ(text, "18446744073709551615");
    EXPECT_EQ(sint64ToAscii(text, INT64_MIN), 19) << "the sign is not counted";
    EXPECT_STREQ(text, "-9223372036854775808");
    EXPECT_EQ(sint64ToAscii(text, 0), 1);
    EXPECT_STREQ(text, "0");
    EXPECT_EQ(uint64ToOctet(text, UINT64_MAX), 22);
    EXPECT_STREQ(text, "1777777777777777777777");
    EXPECT_EQ(uint64ToHex(text, 0xAB0, CONV_x), 3);
    EXPECT_STREQ(text, "ab0");
    EXPECT_EQ(uint64ToHex(text, UINT64_MAX, CONV_X), 16);
    EXPECT_STREQ(text, "FFFFFFFFFFFFFFFF");
    EXPECT_EQ(intToHex(15, CONV_d), 'F');
    EXPECT_EQ(intToHex(16, CONV_x), '?');
    EXPECT_EQ(intToHex(-1, CONV_x), '?');
}

TEST(NumToUCS2, RendersWithoutLayout)
{
    UCS2 out[23] = {};
    const int negative = -5;
    EXPECT_EQ(numToUCS2(out, CONV_d, FLAG_PLUS | FLAG_ZERO, &negative), 2);
    EXPECT_EQ(asString(out), u"-5");
    EXPECT_EQ(numToUCS2(out, CONV_X, FLAG_h | FLAG_BANG, &negative), 4);
    EXPECT_EQ(asString(out), u"FFFB");
    EXPECT_EQ(numToUCS2(out, CONV_UNKNOWN, 0, &negative), 0);
    EXPECT_EQ(asString(out), u"");
}

} // namespace
