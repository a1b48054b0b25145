#include "format/formatting.h"

#include <climits>

namespace
{

struct Specification
{
    const char16_t *text;
    int position; // 0: malformed
    Flag_t type = CONV_UNKNOWN;
    int width = -1;
    int precision = -1;
    int flags = 0;
};

void PrintTo(const Specification &row, std::ostream *out)
{
    for (const char16_t *unit = row.text; *unit != 0; ++unit)
        *out << (*unit < 128 ? static_cast<char>(*unit) : '?');
}

const Specification specifications[] = {
    {u"%d[1]", 1, CONV_d},
    {u"%s[12]tail", 12, CONV_s},
    {u"%05.2f[1]", 1, CONV_f, 5, 2, FLAG_ZERO},
    {u"%-*.*s[1]", 1, CONV_s, -2, -2, FLAG_MINUS},
    {u"%.s[1]", 1, CONV_s, -1, 0},
    {u"%-+ #00-d[1]", 1, CONV_d, -1, -1, FLAG_MINUS | FLAG_PLUS | FLAG_SPACE | FLAG_HASH | FLAG_ZERO},
    {u"%10.20x[001]", 1, CONV_x, 10, 20},
    {u"%2147483647.2147483647X[2147483647]", INT_MAX, CONV_X, INT_MAX, INT_MAX},
    {u"%ld[1]", 1, CONV_d, -1, -1, FLAG_l},
    {u"%l[1]", 1, CONV_d, -1, -1, FLAG_l | FLAG_BANG},
    {u"%!d[1]", 1, CONV_d, -1, -1, FLAG_BANG},
    {u"%ul[1]", 1, CONV_u, -1, -1, FLAG_BANG},
    {u"%hul[1]", 1, CONV_u, -1, -1, FLAG_h | FLAG_BANG},
    {u"%lu[1]", 1, CONV_u, -1, -1, FLAG_l},
    {u"%Lf[1]", 1, CONV_f, -1, -1, FLAG_L},
    {u"%DND[1]", 1, CONV_DND},
    {u"%DNS[1]", 1, CONV_DNS},
    {u"%DT[1]", 1, CONV_DT},
    {u"%D[1]", 1, CONV_D},
    {u"%T[1]", 1, CONV_T},
    {u"%U[1]", 1, CONV_U},
    {u"%o[1]", 1, CONV_o},
    {u"%c[1]", 1, CONV_c},
    {u"%E[1]", 1, CONV_E},
    {u"%EID[1]", 1, CONV_EID},
    {u"%IP[1]", 1, CONV_IP},
    {u"%N[1]", 1, CONV_N},
    {u"%O[2]", 2, CONV_O},
    {u"%dt[1]", 1, CONV_UNKNOWN},
    {u"%hhd[1]", 1, CONV_UNKNOWN, -1, -1, FLAG_h},
    {u"%[1]", 1, CONV_UNKNOWN},
    {u"%h[1]", 1, CONV_UNKNOWN, -1, -1, FLAG_h},
    {u"%d d[1]", 1, CONV_UNKNOWN},
    {u"%n[1]", 1, CONV_UNKNOWN},
    {u"%abcdefghijklmnopqrs[1]", 1, CONV_UNKNOWN},
    {u"%abcdefghijklmnopqrst[1]", 0},
    {u"%d", 0},
    {u"%", 0},
    {u"%5.", 0},
    {u"%d[", 0},
    {u"%d[]", 0},
    {u"%d[0]", 0},
    {u"%d[1", 0},
    {u"%d[1 ]", 0},
    {u"%d[-1]", 0},
    {u"%d\u00E9[1]", 0},
    {u"%\u0664d[1]", 0},
    {u"%d[2147483648]", 0},
    {u"%d[18446744073709551617]", 0},
    {u"%2147483648d[1]", 0},
    {u"%.99999999999999999999d[1]", 0},
};

class ConversionSpec : public testing::TestWithParam<Specification>
{
};

TEST_P(ConversionSpec, IsParsedIntoItsParts)
{
    const Specification &row = GetParam();
    constexpr int untouched = 12345;
    const UCS2 *cursor = row.text;
    Flag_t type = CONV_EXTERNAL;
    int width = untouched, precision = untouched, flags = untouched;
    KTFormatter *formatter = builtInFormList;
    ASSERT_EQ(parseConvSpec(&cursor, nullptr, &type, &width, &precision, &flags, &formatter), row.position);
    if (row.position == 0)
    {
        EXPECT_EQ(cursor, row.text) << "a malformed specification leaves the cursor alone";
        return;
    }
    EXPECT_EQ(cursor[-1], u']');
    EXPECT_EQ(type, row.type);
    EXPECT_EQ(width, row.width);
    EXPECT_EQ(precision, row.precision);
    EXPECT_EQ(flags, row.flags);
    KTFormatter *const expected = &builtInFormList[row.type >= CONV_N ? 17 : row.type];
    EXPECT_EQ(formatter, row.type == CONV_UNKNOWN ? nullptr : expected);

    const UCS2 *again = row.text;
    EXPECT_EQ(getConvSpecOrder(&again), row.position);
    EXPECT_EQ(again, cursor);
}

INSTANTIATE_TEST_SUITE_P(Rows, ConversionSpec, testing::ValuesIn(specifications));

} // namespace
