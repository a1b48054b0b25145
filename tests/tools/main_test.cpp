#include "program.h"

#include "kelto.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace
{

TEST(Program, ExplainsItselfAndEachSubcommand)
{
    const Outcome help = runKelto({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char *name : {"format", "list", "version", "convert"})
    {
        SCOPED_TRACE(name);
        EXPECT_THAT(help.out, HasSubstr(std::string("\n  ") + name + " "));
        const Outcome own = runKelto({name, "--help"});
        EXPECT_THAT(own.out, HasSubstr(std::string("Usage: kelto ") + name + " "));
        EXPECT_THAT(own.out, HasSubstr(std::string("\n  kelto ") + name + " ")) << "there is no example";
        EXPECT_EQ(own.status, 0);
    }
    EXPECT_EQ(runKelto({"--version"}).out, "kelto " KELTO_VERSION "\n");
}

TEST(Program, AnswersWrongUsageWithStatus2)
{
    struct Row
    {
        std::vector<std::string> words;
        const char *expected;
    };
    const Row rows[] = {
        {{}, "no subcommand is given"},
        {{"fromat", "m.xlf"}, "unknown subcommand \"fromat\"; did you mean 'format'?"},
        {{"xyzzy"}, "unknown subcommand \"xyzzy\"\n"},
        {{"\x1B[31m"}, "unknown subcommand \"\\u001B[31m\""},
        {{"--bogus"}, "unknown option \"--bogus\""},
        {{"list"}, "list: no file is given"},
        {{"version"}, "version: no file is given"},
        {{"list", "--bogus", "m.xlf"}, "list: unknown option \"--bogus\""},
        {{"convert", "--from"}, "convert: --from"},
        {{"convert", "--strict=perhaps"}, "convert: "},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(row.expected);
        const Outcome run = runKelto(row.words);
        EXPECT_THAT(run.err, testing::StartsWith("kelto: "));
        EXPECT_THAT(run.err, HasSubstr(row.expected));
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.status, 2);
    }
}

TEST(Program, FailsWhenItsOutputIsNotTaken)
{
    write("m.xlf", messageFile({"text"}));
    const std::vector<std::string> commands[] = {
        {"--help"},
        {"list", "m.xlf", "m.xlf"},
        {"version", "m.xlf"},
        {"format", "m.xlf", "1"},
        {"convert", "--from", "UTF-8", "--to", "UTF-8", "m.xlf"},
    };
    for (const auto &words : commands)
    {
        SCOPED_TRACE(words[0]);
        const Outcome full = runKelto(words, {"", "C.UTF-8", ">/dev/full"});
        EXPECT_EQ(full.err, "kelto: standard output: No space left on device\n");
        EXPECT_EQ(full.status, 2);
        EXPECT_EQ(runKelto(words, {"", "C.UTF-8", ">&-"}).status, 2);
    }
    // A pipe whose one reader is gone before the program starts.
    makePipe("pipe");
    const Outcome left = runKelto({"convert", "--list-charsets"}, {"", "C.UTF-8", "3<>pipe 4>pipe 3<&- >&4"});
    EXPECT_EQ(left.err, "kelto: standard output: Broken pipe\n");
    EXPECT_EQ(left.status, 2);
}

} // namespace
