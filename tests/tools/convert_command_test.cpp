#include "program.h"

#include <gmock/gmock.h>

using namespace std::string_literals;
using testing::HasSubstr;

namespace
{

Outcome convert(const std::string &from, const std::string &to, const std::string &input, bool strict = false)
{
    std::vector<std::string> words{"convert", "--from", from, "--to", to};
    if (strict)
        words.emplace_back("--strict");
    return runKelto(words, {input});
}

TEST(ConvertCommand, ConvertsWholeTextsWithTheirZeroBytes)
{
    struct Row
    {
        const char *from;
        const char *to;
        std::string input;
        std::string expected;
    };
    const Row rows[] = {
        {"ISO-8859-1", "utf8", "caf\xE9\n", "café\n"},
        {"UTF-8", "Shift_JIS", "あ\0い\0\0"s, "\x82\xA0\0\x82\xA2\0\0"s},
        {"UTF-8", "UTF-16BE", "a\0b"s, "\0a\0\0\0b"s},
        {"UTF-8", "UTF-16", "a\0b\0"s,
         "\xFF\xFE"
         "a\0\0\0b\0\0\0"s},
        {"UTF-8", "UTF-16", "\0a"s, "\xFF\xFE\0\0a\0"s},
        {"UTF-8", "UTF-16LE", "a\0\uFEFFb"s,
         "a\0\0\0\xFF\xFE"
         "b\0"s},
        {"UTF-8", "UTF-32BE", "\U0001F600\0"s, "\0\1\xF6\0\0\0\0\0"s},
        {"UTF-8", "UTF-7", "é\0é"s, "+AOk-+AAA-+AOk-"},
        {"UTF-7", "UTF-8", "+AOk-+AAA-+AOk-", "é\0é"s},
        {"UTF-8", "ISO-2022-JP", "あ\0い"s, "\x1B$B$\"\x1B(B\0\x1B$B$$\x1B(B"s},
        {"ISO-2022-JP", "UTF-8", "\x1B$B$\"\x1B(B\0\x1B$B$$\x1B(B"s, "あ\0い"s},
        {"UTF-8", "ibm-37", "A\0A"s, "\xC1\0\xC1"s},
        {"UTF-8", "ISO-8859-1", "", ""},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(std::string(row.from) + " to " + row.to + ": " + row.input);
        const Outcome run = convert(row.from, row.to, row.input, true);
        EXPECT_EQ(run.out, row.expected);
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.status, 0);
    }
}

TEST(ConvertCommand, ConvertsAFileOfAnySize)
{
    std::string text;
    std::string expected;
    for (int i = 0; i < 200000; ++i)
    {
        text += "日本\n";
        expected += "\x93\xFA\x96\x7B\n";
    }
    write("long.txt", text);
    const Outcome run = runKelto({"convert", "--from", "UTF-8", "--to", "Shift_JIS", "long.txt"});
    EXPECT_TRUE(run.out == expected);
    EXPECT_EQ(run.status, 0);
}

TEST(ConvertCommand, CountsWhatItReplaces)
{
    const Outcome unshowable = convert("UTF-8", "ISO-8859-1", "a日本é\uFFFD");
    EXPECT_EQ(unshowable.out, "a\x1A\x1A\xE9\x1A");
    EXPECT_EQ(unshowable.err, "kelto: standard input: 3 characters that cannot be shown in ISO-8859-1, replaced\n");
    EXPECT_EQ(unshowable.status, 0);
    EXPECT_EQ(convert("UTF-8", "ISO-8859-1", "a日本é\uFFFD", true).status, 1);

    const Outcome malformed = convert("UTF-8", "ISO-8859-1", "a\xFF", true);
    EXPECT_EQ(malformed.out, "a\x1A");
    EXPECT_EQ(malformed.err, "kelto: standard input: 1 character malformed or unknown in UTF-8, replaced\n");
    EXPECT_EQ(malformed.status, 1);
}

TEST(ConvertCommand, RefusesWhatItWouldGetWrong)
{
    struct Row
    {
        const char *from;
        const char *to;
        std::string input;
        const char *expected;
    };
    const Row rows[] = {
        {"UTF-16", "UTF-8", "", "\"UTF-16\" can only be written"},
        {"utf_16le", "UTF-8", "", "\"utf_16le\" can only be written"},
        {"UCS-2", "UTF-8", "", "\"UCS-2\" can only be written"},
        {"UTF-16BE,version=1", "UTF-8", "", "can only be written"},
        {"UTF-32", "UTF-8", "", "\"UTF-32\" can only be written"},
        {"klingon\x1B", "UTF-8", "", "\"klingon\\u001B\": no character set is known by this name (KT_ERR_CONVERTER"},
        {"UTF-8", "klingon", "", "\"klingon\": no character set is known by this name"},
        {"", "UTF-8", "", "--from is not given"},
        {"UTF-8", "", "", "--to is not given"},
        {"ISO-2022-JP", "UTF-8", "\x1B$B$\"\0$$"s, "standard input: a shift state of \"ISO-2022-JP\" reaches over"},
        {"UTF-8", "SCSU", "a\0b"s, "\"SCSU\" cannot be written behind a zero byte"},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(row.expected);
        const Outcome run = convert(row.from, row.to, row.input);
        EXPECT_THAT(run.err, HasSubstr(row.expected));
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.status, 2);
    }
}

TEST(ConvertCommand, SaysWhyAnInputCannotBeRead)
{
    const auto errorOf = [](const char *file) {
        return runKelto({"convert", "--from", "UTF-8", "--to", "UTF-8", file}).err;
    };
    EXPECT_EQ(errorOf("none.txt"), "kelto: none.txt: No such file or directory\n");
    EXPECT_EQ(errorOf("."), "kelto: .: Is a directory\n");
    write("a", "");
    const Outcome two = runKelto({"convert", "--from", "UTF-8", "--to", "UTF-8", "a", "a"});
    EXPECT_THAT(two.err, HasSubstr("more than one file"));
    EXPECT_EQ(two.status, 2);
}

TEST(ConvertCommand, ListsCharsetsByNamesThatItTakes)
{
    const Outcome list = runKelto({"convert", "--list-charsets"});
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.out, HasSubstr("\nShift_JIS "));
    EXPECT_THAT(list.out, HasSubstr("\nUTF-8 "));
    const std::string name = list.out.substr(0, list.out.find_first_of(" \n"));
    EXPECT_EQ(convert("UTF-8", name, "").status, 0) << name;
}

} // namespace
