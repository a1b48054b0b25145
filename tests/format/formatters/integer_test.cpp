#include "format/formatters/integer.h"

#include "format/formatting.h"

#include <climits>
#include <cstdio>

namespace
{

using Integer = StartedTest;

struct Row
{
    const char *format;
    int value;
    const char16_t *expected;
};

TEST_F(Integer, FollowsItsOwnRules)
{
    const Row rows[] = {
        {"%5d[1]", 42, u"   42"},
        {"%-5d[1]", 42, u"42   "},
        {"%05d[1]", -42, u"-0042"},
        {"%+d[1]", 42, u"+42"},
        {"% d[1]", 42, u" 42"},
        {"%+ d[1]", 42, u"+42"},
        {"%.4d[1]", 42, u"0042"},
        {"%8.3d[1]", -5, u"    -005"},
        {"%08.3d[1]", -5, u"-0000005"},
        {"%-08d[1]", 42, u"00000042"},
        {"%.2d[1]", 12345, u"12000"},
        {"%.1d[1]", -987, u"-900"},
        {"%.0d[1]", 7, u"0"},
        {"%.3u[1]", 123, u"123"},
        {"%+u[1]", 5, u"5"},
        {"%#o[1]", 8, u"010"},
        {"%#o[1]", 0, u"00"},
        {"%#.3o[1]", 8, u"0010"},
        {"%#x[1]", 255, u"0xff"},
        {"%#X[1]", 255, u"0XFF"},
        {"%#x[1]", 0, u"0x0"},
        {"%#10x[1]", 255, u"      0xff"},
        {"%#010x[1]", 255, u"0x000000ff"},
        {"%-#8.3x[1]", 0xABCDE, u"0xabc00 "},
        {"%hd[1]", 0xFFFF, u"-1"},
        {"%hu[1]", 0xFFFF, u"65535"},
        {"%ld[1]", INT_MIN, u"-2147483648"},
        {"%5d[1]", INT_MIN, u"-2147483648"},
    };
    for (const Row &row : rows)
        EXPECT_EQ(format(row.format, row.value), ok(row.expected)) << row.format;
    for (const char *zero : {"%!d[1]", "%!u[1]", "%!o[1]", "%!x[1]", "%!X[1]"})
        EXPECT_EQ(format(zero, uint64_t{0}), ok(u"0")) << zero;
    EXPECT_EQ(format("%!o[1] %!x[2] %ul[3] %l[4]", ~uint64_t{0}, ~uint64_t{0}, ~uint64_t{0}, INT64_MIN),
              ok(u"1777777777777777777777 ffffffffffffffff 18446744073709551615 -9223372036854775808"));
}

/** One conversion of the product of everything that can stand in a specification. */
struct Case
{
    char name;
    int flags, width, precision;
    const char *modifier; // ours
    uint64_t value;
};

/** The digits and sign that a value has without any layout. */
std::string plainDigits(const Case &c)
{
    const std::string modifier = c.modifier[0] == '!' ? "ll" : c.modifier;
    const std::string format = "%" + modifier + c.name;
    char text[40];
    std::snprintf(text, sizeof text, format.c_str(), c.value);
    return text;
}

/** The rules as written, on strings. */
std::string layOut(const Case &c)
{
    std::string digits = plainDigits(c);
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

std::string specification(const Case &c, const char *modifier)
{
    std::string text = "%";
    for (const auto &[bit, character] :
         {std::pair{FLAG_MINUS, '-'}, {FLAG_PLUS, '+'}, {FLAG_SPACE, ' '}, {FLAG_HASH, '#'}, {FLAG_ZERO, '0'}})
        if ((c.flags & bit) != 0)
            text += character;
    if (c.width >= 0)
        text += std::to_string(c.width);
    if (c.precision >= 0)
        text += "." + std::to_string(c.precision);
    return text + modifier + c.name;
}

/** Whether the C library's printf and these rules say the same. */
bool agreesWithPrintf(const Case &c)
{
    const bool isZero = plainDigits(c) == "0";
    if ((c.flags & FLAG_ZERO) != 0 && ((c.flags & FLAG_MINUS) != 0 || c.precision >= 0))
        return false;
    if (c.precision >= 0 && static_cast<size_t>(c.precision) < plainDigits(c).size())
        return false;
    return (c.flags & FLAG_HASH) == 0 || (!isZero && !(c.name == 'o' && c.precision > 0));
}

/** Checks one case; whether printf was asked too. */
bool checkCase(const Case &c)
{
    const std::string expected = layOut(c);
    UCS2 out[100];
    unsigned long size = 100;
    std::string format = specification(c, c.modifier) + "[1]";
    const int result = KTFormatString(nullptr, false, &size, out, format.data(), c.value);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(std::string(out, out + size), expected) << format << " of " << c.value;
    if (!agreesWithPrintf(c))
        return false;
    char text[100];
    std::snprintf(text, sizeof text, specification(c, c.modifier[0] == '!' ? "ll" : c.modifier).c_str(), c.value);
    EXPECT_EQ(expected, text) << "the test's own rules against printf: " << format;
    return true;
}

TEST_F(Integer, MatchesTheRulesAndPrintfOverTheWholeProduct)
{
    const uint64_t values[] = {0,      1,      7,          42,         255,          12345,
                               0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, ~uint64_t{0}, 1ULL << 63};
    unsigned compared = 0;
    for (const char name : {'d', 'u', 'o', 'x', 'X'})
        for (const char *modifier : {"", "h", "!"})
            for (int flags = 0; flags <= (FLAG_MINUS | FLAG_PLUS | FLAG_SPACE | FLAG_HASH | FLAG_ZERO); ++flags)
                for (const int width : {-1, 1, 6, 25})
                    for (const int precision : {-1, 0, 1, 3, 24})
                        for (const uint64_t value : values)
                        {
                            compared += checkCase({name, flags, width, precision, modifier, value}) ? 1 : 0;
                            if (HasFailure())
                                return;
                        }
    EXPECT_GT(compared, 10000u) << "cases that printf agrees with";
}

TEST(IntegerFormatter, NeedsAUnitBeyondItsTextAndWritesNoTerminator)
{
    const int value = 42;
    EXPECT_EQ(callFormatter(formatInteger, "d", 0, &value, 5, 5).result, KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(callFormatter(formatInteger, "d", 0, &value, 5, 5).size, 5u);
    EXPECT_EQ(callFormatter(formatInteger, "d", 0, &value, 6, 5).text, u"   42");
    EXPECT_EQ(callFormatter(formatInteger, "d", 0, &value, 0).size, 2u);

    Ucs2Buffer out(10);
    unsigned long size = 10;
    const void *slot = &value;
    EXPECT_EQ(formatUnsigned("u", -1, -1, 0, nullptr, nullptr, const_cast<void **>(&slot), &size, out.data()), 0);
    EXPECT_TRUE(out.untouched(2));
}

TEST(IntegerFormatter, AnUnknownNameHasNoDigitsButItsLayout)
{
    const int value = 42;
    EXPECT_EQ(callFormatter(formatOctHex, "q", 0, &value, 10, 3).text, u"   ");
    EXPECT_EQ(callFormatter(formatOctHex, "q", FLAG_HASH, &value, 10, -1, 2).text, u"0q00");
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
    EXPECT_EQ(sint64ToAscii(text, 12), 2);
    EXPECT_STREQ(text, "12");
    EXPECT_EQ(uint64ToOctet(text, UINT64_MAX), 22);
    EXPECT_STREQ(text, "1777777777777777777777");
    EXPECT_EQ(uint64ToOctet(text, 0), 1);
    EXPECT_EQ(uint64ToHex(text, 0xAB0, CONV_x), 3);
    EXPECT_STREQ(text, "ab0");
    EXPECT_EQ(uint64ToHex(text, UINT64_MAX, CONV_X), 16);
    EXPECT_STREQ(text, "FFFFFFFFFFFFFFFF");
    EXPECT_EQ(intToHex(10, CONV_x), 'a');
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
