#include "kelto.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>

namespace
{

struct Parsed
{
    int position, type, width, precision, flags;
    size_t length;
};

/** Parses from the '%' on; a malformed text is checked to leave everything as it was. */
Parsed parse(const std::u16string &text)
{
    const UCS2 *cursor = text.c_str(), *again = cursor;
    Flag_t type = CONV_EXTERNAL;
    int width = INT_MIN, precision = INT_MIN, flags = INT_MIN;
    KTFormatter *formatter = nullptr;
    const int position = parseConvSpec(&cursor, nullptr, &type, &width, &precision, &flags, &formatter);
    const auto length = static_cast<size_t>(cursor - text.c_str());
    EXPECT_TRUE(position != 0 || (length == 0 && type == CONV_EXTERNAL && width == INT_MIN && flags == INT_MIN));
    EXPECT_EQ(formatter == nullptr, position == 0 || type == CONV_UNKNOWN);
    EXPECT_TRUE((type != CONV_N && type != CONV_O) || formatter->argTypes == nullptr);
    EXPECT_TRUE(position == 0 || (getConvSpecOrder(&again) == position && again == cursor));
    return {position, type, width, precision, flags, length};
}

TEST(ConversionSpec, IsParsedIntoItsParts)
{
    struct Row
    {
        const char16_t *text;
        int position, type, width, precision, flags;
    };
    const Row rows[] = {
        {u"%s[12]", 12, CONV_s, -1, -1, 0},
        {u"%05.2f[1]", 1, CONV_f, 5, 2, FLAG_ZERO},
        {u"%-*.*s[1]", 1, CONV_s, -2, -2, FLAG_MINUS},
        {u"%.s[1]", 1, CONV_s, -1, 0, 0},
        {u"%-+ #00-d[1]", 1, CONV_d, -1, -1, FLAG_MINUS | FLAG_PLUS | FLAG_SPACE | FLAG_HASH | FLAG_ZERO},
        {u"%10.20x[001]", 1, CONV_x, 10, 20, 0},
        {u"%2147483647.2147483647X[2147483647]", INT_MAX, CONV_X, INT_MAX, INT_MAX, 0},
        {u"%ld[1]", 1, CONV_d, -1, -1, FLAG_l},
        {u"%l[1]", 1, CONV_d, -1, -1, FLAG_l | FLAG_BANG},
        {u"%!d[1]", 1, CONV_d, -1, -1, FLAG_BANG},
        {u"%ul[1]", 1, CONV_u, -1, -1, FLAG_BANG},
        {u"%hul[1]", 1, CONV_u, -1, -1, FLAG_h | FLAG_BANG},
        {u"%lu[1]", 1, CONV_u, -1, -1, FLAG_l},
        {u"%Lf[1]", 1, CONV_f, -1, -1, FLAG_L},
        {u"%N[1]", 1, CONV_N, -1, -1, 0},
        {u"%O[2]", 2, CONV_O, -1, -1, 0},
        {u"%hhd[1]", 1, CONV_UNKNOWN, -1, -1, FLAG_h},
        {u"%h[1]", 1, CONV_UNKNOWN, -1, -1, FLAG_h},
        {u"%dt[1]", 1, CONV_UNKNOWN, -1, -1, 0},
        {u"%[1]", 1, CONV_UNKNOWN, -1, -1, 0},
        {u"%\x7F[1]", 1, CONV_UNKNOWN, -1, -1, 0},
        {u"%d d[1]", 1, CONV_UNKNOWN, -1, -1, 0},
        {u"%abcdefghijklmnopqrs[1]", 1, CONV_UNKNOWN, -1, -1, 0},
    };
    for (const Row &row : rows)
    {
        const std::u16string text = row.text;
        SCOPED_TRACE(testing::PrintToString(text));
        const Parsed parsed = parse(text + u"]tail");
        EXPECT_EQ(parsed.length, text.size());
        EXPECT_EQ(parsed.position, row.position);
        EXPECT_EQ(parsed.type, row.type);
        EXPECT_EQ(parsed.width, row.width);
        EXPECT_EQ(parsed.precision, row.precision);
        EXPECT_EQ(parsed.flags, row.flags);
    }
}

TEST(ConversionSpec, IsMalformedWithoutAPositionOrWithTooLargeANumberOrName)
{
    for (const char16_t *text : {u"%d", u"%", u"%5.", u"%d[", u"%d[]", u"%d[0]", u"%d[1", u"%d[1 ]", u"%d[-1]",
                                 u"%d\u0080[1]", u"%\u0664d[1]", u"%d[2147483648]", u"%d[18446744073709551617]",
                                 u"%2147483648d[1]", u"%.99999999999999999999d[1]", u"%abcdefghijklmnopqrst[1]"})
        EXPECT_EQ(parse(text).position, 0) << testing::PrintToString(std::u16string(text));
    const UCS2 text[] = u"%d", *cursor = text;
    EXPECT_EQ(getConvSpecOrder(&cursor), 0);
    EXPECT_EQ(cursor, text + 2) << "read to its end and no further";
}

} // namespace
