#include "program.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace
{

struct Case
{
    const char *message;
    std::vector<std::string> arguments;
    const char *expected; // the line, or a part of the error
};

Outcome format(const Case &row)
{
    write("m.xlf", messageFile({row.message}));
    std::vector<std::string> words{"format", "m.xlf", "1"};
    words.insert(words.end(), row.arguments.begin(), row.arguments.end());
    return runKelto(words);
}

std::string labelOf(const Case &row)
{
    std::string label = row.message;
    for (const std::string &argument : row.arguments)
        label += " | " + argument;
    return label;
}

TEST(FormatCommand, ReadsArgumentsAsTheConversionsAsk)
{
    const Case rows[] = {
        {"%s[2]: %d[1]|", {"7", "files"}, "files: 7|"},
        {"100%%", {}, "100%"},
        {"%hd[1] %hd[2]", {"-32768", "32767"}, "-32768 32767"},
        {"%d[1] %d[2]", {"-2147483648", "+2147483647"}, "-2147483648 2147483647"},
        {"%!d[1] %l[2]", {"-9223372036854775808", "9223372036854775807"}, "-9223372036854775808 9223372036854775807"},
        {"%hu[1] %u[2] %!u[3]",
         {"65535", "4294967295", "18446744073709551615"},
         "65535 4294967295 18446744073709551615"},
        {"%x[1] %X[2] %o[3] %d[4]", {"0xfF", "0X1f", "8", "-0x10"}, "ff 1F 10 -16"},
        {"%EID[1]", {"0x1A2B"}, "0X00001A2B"},
        {"%f[1] %.2f[2] %Lf[3]", {"-.5", "1e3", "1e1"}, "-0.500000 1000.00 10.000000"},
        {"%*d[1]|%-*.*s[2]|", {"4", "7", "-3", "2", "abc"}, "   7|ab|"},
        {"%c[1]%c[2]%lc[3]", {"A", "é", "日"}, "Aé日"},
        {"%s[1] %U[2] %E[3]%IP[4]", {"日本", "𝄞", "", "10.0.0.1"}, "日本 𝄞 "},
        {"%DNS[1] %DND[2]", {"alice.staff.corp", "corp/é"}, "corp/staff/alice é.corp"},
        {"%DT[1] %D[2] %T[3]", {"2006-05-17'T08:09:10Z", "86400", ""}, "05/17/2006 08:09:10 1/2/1970 0:0:0"},
        {"%N[1]%s[2]%O[3]%d[4]", {"text", "1"}, "text1"},
        {"%s[1]", {"--tag"}, "--tag"},
        {"%s[1] %s[2]", {"--", "-x", "--"}, "-x --"},
        {"%400d[1]|", {"1"}, nullptr},
    };
    for (const Case &row : rows)
    {
        SCOPED_TRACE(labelOf(row));
        const Outcome run = format(row);
        const std::string expected = row.expected != nullptr ? row.expected : std::string(399, ' ') + "1|";
        EXPECT_EQ(run.out, expected + "\n");
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.status, 0);
    }
}

TEST(FormatCommand, NamesTheArgumentThatDoesNotFit)
{
    const Case rows[] = {
        {"%d[1] %s[2]",
         {"7"},
         R"(argument 2 is missing, for "%s[2]": the message takes 2 arguments (KT_ERR_INVALID_PARAMETER))"},
        {"%*d[1]", {}, R"(argument 1 is missing, for the width of "%*d[1]")"},
        {"%-5d[1]",
         {"7", "x"},
         R"(argument 2 "x" is surplus: the message takes 1 argument (KT_ERR_INVALID_PARAMETER))"},
        {"text", {"x"}, R"(argument 1 "x" is surplus: the message takes no arguments)"},
        {"%5d[1]", {"abc"}, R"(argument 1 "abc", for "%5d[1]", is no whole number)"},
        {"%d[1]", {""}, "is no whole number"},
        {"%d[1]", {"0x"}, "is no whole number"},
        {"%d[1]", {"1.5"}, "is no whole number"},
        {"%.*s[1]", {"x", "text"}, R"(argument 1 "x", for the precision of "%.*s[1]", is no whole number)"},
        {"%hd[1]", {"32768"}, "out of the range -32768 to 32767"},
        {"%d[1]", {"-2147483649"}, "out of the range -2147483648 to 2147483647"},
        {"%!d[1]", {"9223372036854775808"}, "out of the range -9223372036854775808 to 9223372036854775807"},
        {"%u[1]", {"-1"}, "out of the range 0 to 4294967295"},
        {"%!u[1]", {"18446744073709551616"}, "beyond 64 bits"},
        {"%f[1]", {"1,5"}, "is no number"},
        {"%f[1]", {" 1"}, "is no number"},
        {"%f[1]", {"1e999"}, "too large"},
        {"%c[1]", {"ab"}, "is not one character"},
        {"%c[1]", {"日"}, "beyond U+00FF"},
        {"%lc[1]", {"𝄞"}, "beyond U+FFFF"},
        {"%s[1]", {"\xFF"}, R"(argument 1 "\xFF", for "%s[1]", is no text in the terminal's charset, UTF-8)"},
        {"%s[2]%DT[1]", {"12a", "x"}, R"(argument 1 "12a", for "%DT[1]", is no date)"},
        {"%s[1]", {"a\x1B[31m", "b\xC2\x9B"}, R"(argument 2 "b\u009B" is surplus)"},
        {"%2147483647d[1]", {"1"}, "the text is too long: 2147483647 units"},
    };
    for (const Case &row : rows)
    {
        SCOPED_TRACE(labelOf(row));
        const Outcome run = format(row);
        EXPECT_THAT(run.err, testing::StartsWith("kelto: m.xlf: message 1: "));
        EXPECT_THAT(run.err, HasSubstr(row.expected));
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.status, 2);
    }
}

TEST(FormatCommand, ShowsWhereAMessageIsNoFormatString)
{
    const Case rows[] = {
        {"100% sure",
         {},
         "a conversion has no position, as in %s[1] (a percent sign by itself is written %%), at "
         "character 4: \"% sure\" (KT_ERR_FORMAT_SYNTAX)\n  100% sure\n     ^~~~~~\n"},
        {"end%", {}, "at character 4: \"%\" (KT_ERR_FORMAT_SYNTAX)\n  end%\n     ^\n"},
        {"日本 %d[1] %s[1].",
         {},
         "position 1 is used twice, at character 10: \"%s[1]\" (KT_ERR_FORMAT_SYNTAX)\n"
         "  日本 %d[1] %s[1].\n             ^~~~~\n"},
        {"%d[1] %d[3]",
         {},
         "position 2 is missing: the positions must be 1 to 2, as many as conversions, at character 7"},
        {"\\t%Dt[1]",
         {},
         "no conversion has this name, at character 2: \"%Dt[1]\" (KT_ERR_FORMAT_SYNTAX)\n"
         "  \\t%Dt[1]\n    ^~~~~~\n"},
        {"%d[1", {}, "the brackets of a position are not closed"},
        {"%d[0] %d[1]", {}, "a position is not a number from 1 on, at character 1: \"%d[0]\""},
        {"%d[x]", {}, "a position is not a number from 1 on"},
        {"%99999999999d[1]", {}, "a conversion is malformed: the form is"},
        {"%d[2000000000]", {}, "position 1 is missing"},
    };
    for (const Case &row : rows)
    {
        SCOPED_TRACE(labelOf(row));
        const Outcome run = format(row);
        EXPECT_THAT(run.err, testing::StartsWith("kelto: m.xlf: message 1: "));
        EXPECT_THAT(run.err, HasSubstr(row.expected));
        EXPECT_EQ(run.status, 2);
    }
}

TEST(FormatCommand, ShowsOnlyTheSurroundingsOfAFaultInALongMessage)
{
    const std::string message = std::string(5000, 'x') + "%zz[1]" + std::string(5000, 'y');
    const Outcome run = format({message.c_str(), {}, ""});
    EXPECT_THAT(run.err, HasSubstr("at character 5001"));
    EXPECT_LT(run.err.size(), 400U);
}

TEST(FormatCommand, WritesInTheCharsetOfTheTerminalOrTheOneNamed)
{
    write("m.xlf", messageFile({"é日 %s[1]"}));
    const Outcome named = runKelto({"format", "--charset", "ISO-8859-1", "m.xlf", "1", "ä"});
    EXPECT_EQ(named.out, "\xE9\x1A \xE4\n");
    EXPECT_THAT(named.err, HasSubstr("ISO-8859-1 cannot show 1 character of the text"));
    EXPECT_EQ(named.status, 0);

    const Outcome wide = runKelto({"format", "--charset=UTF-16BE", "m.xlf", "1", "ä"});
    EXPECT_EQ(wide.out, std::string("\0\xE9\x65\xE5\0 \0\xE4\0\n", 10));

    const Outcome ascii = runKelto({"format", "m.xlf", "1", "a"}, {"", "C", ""});
    EXPECT_EQ(ascii.out, "\x1A\x1A a\n");
    EXPECT_THAT(ascii.err, HasSubstr("ANSI_X3.4-1968 cannot show 2 characters of the text"));

    const Outcome argument = runKelto({"format", "m.xlf", "1", "ä"}, {"", "C", ""});
    EXPECT_THAT(argument.err, HasSubstr(R"(argument 1 "\xC3\xA4", for "%s[1]", is no text in the terminal's charset)"));
    EXPECT_EQ(argument.status, 2);

    const Outcome unknown = runKelto({"format", "--charset", "klingon", "m.xlf", "1", "ä"});
    EXPECT_EQ(unknown.err,
              "kelto: \"klingon\": no character set is known by this name (KT_ERR_CONVERTER_OPEN_FAILED)\n");
    EXPECT_EQ(unknown.status, 2);
}

TEST(FormatCommand, WrapsValuesInTagsOnRequest)
{
    write("m.xlf", messageFile({"%EID[1] %DND[2]"}));
    EXPECT_EQ(runKelto({"format", "--tag", "--", "m.xlf", "1", "1", "a.b"}).out,
              "<EID>0X00000001</EID> <DN>a.b</DN>\n");
}

TEST(FormatCommand, SaysWhichMessagesThereAre)
{
    write("m.xlf", messageFile({"one", "", "three"}));
    write("empty.xlf", messageFile({}));
    struct Row
    {
        std::vector<std::string> words;
        const char *expected;
    };
    const Row rows[] = {
        {{"m.xlf", "0"}, "m.xlf: message 0 is out of range: IDs run from 1 to 3 (KT_ERR_INVALID_MSG_ID)"},
        {{"m.xlf", "4"}, "m.xlf: message 4 is out of range: IDs run from 1 to 3 (KT_ERR_INVALID_MSG_ID)"},
        {{"m.xlf", "2"}, "m.xlf: message 2: the file has none of this number; its IDs run from 1 to 3, with gaps"},
        {{"m.xlf", "-1"}, "\"-1\" is no message ID"},
        {{"m.xlf", "4294967297"}, "\"4294967297\" is no message ID: these are numbers from 1 to 2147483647"},
        {{"empty.xlf", "1"}, "empty.xlf: message 1 is out of range: the file has no messages"},
        {{"none.xlf", "1"}, "none.xlf: there is no such file (KT_ERR_FILE_UNAVAILABLE)"},
        {{".", "1"}, ".: the file cannot be opened for reading, since it is a directory (KT_ERR_FILE_NOT_OPENED)"},
        {{"m.xlf"}, "no message ID is given"},
        {{}, "no file is given"},
        {{"--bogus", "m.xlf", "1"}, "format: unknown option \"--bogus\"\nTry 'kelto format --help'."},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(row.expected);
        std::vector<std::string> words{"format"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        const Outcome run = runKelto(words);
        EXPECT_THAT(run.err, HasSubstr(row.expected));
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.status, 2);
    }
}

} // namespace
