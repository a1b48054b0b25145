#include "format/formatting.h"
#include "support/fake_zel.h"

#include <algorithm>
#include <climits>

namespace
{

using Text = StartedTest;

TEST_F(Text, IsPaddedAndCutByUnits)
{
    EXPECT_EQ(format("%5c[1]|%-5c[2]|%05c[3]|%-05c[4]", 'A', 'A', 'A', 'A'), ok(u"    A|A    |0000A|A0000"));
    EXPECT_EQ(format("%.0c[1]%-+# hc[2]%!c[3]", 'a', 'b', 'c'), ok(u"abc")) << "what is not theirs is ignored";
    EXPECT_EQ(format("%8.3s[1]|%-8.3s[2]|%08s[3]|%-08s[4]", "abcdef", "abcdef", "abc", "abc"),
              ok(u"     abc|abc     |00000abc|abc00000"));
    EXPECT_EQ(format("%.3U[1]|%.0U[2]|%4.0U[3]", u"abcde", u"abcde", u"abcde"), ok(u"abc||    "));
    EXPECT_EQ(format("%*s[1]|%.*s[2]", -9, "a", INT_MIN, "abc"), ok(u"a|abc")) << "negative is absent";
    EXPECT_EQ(format("%3s[1]", "\xE3\x81\x82"), ok(u"  \u3042"));
    EXPECT_EQ(format("%4s[1]", "\xF0\x9F\x98\x80"), ok(u"  \U0001F600"));
    EXPECT_EQ(format("%.1s[1]", "\xF0\x9F\x98\x80"), ok(std::u16string(1, char16_t{0xD83D}))) << "a pair can be cut";
    EXPECT_EQ(format("%s[1]", "\xC3(\xFF"), ok(u"\uFFFD(\uFFFD"));
}

TEST_F(Text, WidensCharactersAsTheyAre)
{
    EXPECT_EQ(format("%c[1]%c[2]", 0x80, 0xFF), ok(u"\u0080\u00FF"));
    EXPECT_EQ(format("%lc[1]%lc[2]", 0x3042, 0xFFFF), ok(u"\u3042\uFFFF"));
}

TEST_F(Text, LeavesTheArgumentAlone)
{
    const std::u16string before = u"abcdef";
    std::u16string argument = before;
    void *slots[] = {argument.data(), nullptr};
    UCS2 out[10];
    unsigned long size = 10;
    char format[] = "%.3U[1]";
    EXPECT_EQ(KTvpFormatString(nullptr, false, &size, out, format, slots), 0);
    EXPECT_EQ(argument, before);
}

TEST(TextFormatter, NeedsAUnitBeyondItsText)
{
    struct Row
    {
        KTFormatFunction formatter;
        const void *value;
        int width;
        unsigned long need;
    };
    for (const Row &row : {Row{formatChar, "A", -1, 1},
                           {formatChar, "A", 5, 5},
                           {formatUCS2Str, u"abc", -1, 3},
                           {formatUCS2Str, u"", -1, 0},
                           {formatUTF8Str, "abc", 4, 4}})
        for (unsigned long room = 0; room <= row.need + 1; ++room)
        {
            const Direct direct = callFormatter(row.formatter, "?", 0, row.value, room, row.width);
            EXPECT_EQ(direct.result, room > row.need ? 0 : KT_ERR_BUFFER_TOO_SMALL);
            EXPECT_EQ(direct.size, row.need);
        }
}

TEST(TextFormatter, LeavesTheSizeAloneWhenMemoryRunsOut)
{
    FakeZel::fail(Operation::Malloc);
    const Direct direct = callFormatter(formatUTF8Str, "s", 0, "abc", 7);
    EXPECT_EQ(direct.result, KT_ERR_NO_MEMORY);
    EXPECT_EQ(direct.size, 7u);
}

/** An encoder that writes its value between brackets, or does what a test tells it. */
struct Encoding
{
    int result = 0;
    int dataType = -1;
    std::u16string value;
    unsigned long reportOnFailure = 0;
} encoding;

int encode(const void *value, int dataType, unsigned long *size, UCS2 *out)
{
    encoding.dataType = dataType;
    switch (dataType)
    {
    case 0:
        encoding.value = std::u16string(1, *static_cast<const UCS2 *>(value));
        break;
    case 1:
        encoding.value = static_cast<const UCS2 *>(value);
        break;
    default:
        encoding.value = std::u16string(1, *static_cast<const unsigned char *>(value));
    }
    if (encoding.result != 0)
    {
        *size = encoding.reportOnFailure;
        return encoding.result;
    }
    const std::u16string text = u"[" + encoding.value + u"]";
    const bool fits = text.size() + 1 <= *size;
    *size = text.size();
    if (!fits)
        return KT_ERR_BUFFER_TOO_SMALL;
    std::copy(text.begin(), text.end(), out);
    return 0;
}

class Encoded : public Text
{
protected:
    void SetUp() override
    {
        Text::SetUp();
        encoding = {};
        ASSERT_EQ(KTRegisterEncoder(encode), 0);
        options.table = &builtInFormTable;
    }
    void TearDown() override
    {
        KTRegisterEncoder(nullptr);
        Text::TearDown();
    }

    Options options;
};

TEST_F(Encoded, ValuesGoThroughTheEncoderOfTheTable)
{
    EXPECT_EQ(formatWith(options, "%N[1]%5s[2]%O[3]%s[4]", "a", "b"), ok(u"  [a]b"));
    EXPECT_EQ(encoding.dataType, 1);
    EXPECT_EQ(formatWith(options, "%N[1]%-05U[2]", u"\u3042"), ok(u"[\u3042]00"));
    EXPECT_EQ(encoding.dataType, 1);
    EXPECT_EQ(formatWith(options, "%N[1]%6c[2]", 0x80), ok(u"   [\u0080]"));
    EXPECT_EQ(encoding.dataType, 2);
    EXPECT_EQ(formatWith(options, "%N[1]%lc[2]", 0x3042), ok(u"[\u3042]"));
    EXPECT_EQ(encoding.dataType, 0);
    UCS2 out[7];
    unsigned long size = 7;
    EXPECT_EQ(formatInto(&size, out, options, "%N[1]%.2s[2]|", "abc"), 0) << "the encoder has room for all";
    EXPECT_EQ(asString(out), u"[a|") << "and a precision cuts what it wrote";
    EXPECT_EQ(formatWith(options, "%N[1]%d[2]", 5), ok(u"5"));
}

TEST_F(Encoded, WithoutATableOrAnEncoderValuesAreWrittenPlainly)
{
    EXPECT_EQ(format("%N[1]%s[2]", "a"), ok(u"a"));
    formTable chained = {false, {}, nullptr, nullptr, &builtInFormTable};
    options.table = &chained;
    EXPECT_EQ(formatWith(options, "%N[1]%s[2]", "a"), ok(u"[a]")) << "the first encoder along the chain";
    KTRegisterEncoder(nullptr);
    EXPECT_EQ(formatWith(options, "%N[1]%s[2]%c[3]", "a", 'b'), ok(u"ab"));
}

TEST_F(Encoded, AFailureOfTheEncoderIsPassedOnByTexts)
{
    encoding.result = -55;
    UCS2 out[20];
    for (const char *text : {"%N[1]%5s[2]", "%N[1]%.0s[2]"})
    {
        encoding.reportOnFailure = 2;
        unsigned long size = 20;
        EXPECT_EQ(formatInto(&size, out, options, text, "a"), -55);
        EXPECT_EQ(size, 0u);
    }
    encoding.reportOnFailure = 30;
    unsigned long size = 20;
    EXPECT_EQ(formatInto(&size, out, options, "%N[1]%40s[2]", "a"), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 40u) << "what the encoder reported does not fit";
}

TEST_F(Encoded, AFailureOfTheEncoderIsAMatterOfRoomForCharacters)
{
    encoding.result = -55;
    encoding.reportOnFailure = 3;
    UCS2 out[20];
    unsigned long size = 20;
    EXPECT_EQ(formatInto(&size, out, options, "%N[1]%5c[2]", 'a'), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 5u);
}

} // namespace
