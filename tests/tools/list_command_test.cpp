#include "program.h"

#include "support/message_file_builder.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace
{

TEST(ListCommand, ShowsNumbersAndTextsWithoutGaps)
{
    write("m.xlf", MessageFile().unit(7, "seven").unit(2, placeholder("%d", "1") + " é").xml());
    EXPECT_EQ(runKelto({"list", "m.xlf"}).out, "2\t%d[1] é\n7\tseven\n");
    EXPECT_EQ(runKelto({"list", "--raw", "m.xlf"}).out, "2\t%d é\n7\tseven\n");
    EXPECT_EQ(runKelto({"list", "m.xlf", "--raw"}).out, "2\t%d é\n7\tseven\n");
}

TEST(ListCommand, ShowsWhatCouldDeceiveATerminalAsEscapes)
{
    struct Row
    {
        const char *source;
        const char *expected;
    };
    const Row rows[] = {
        {"a\\nb\\tc\\rd", "a\\nb\\tc\\rd"},
        {"a\\\\nb", "a\\\\nb"},
        {"\u009B31m\u0085\u007F", "\\u009B31m\\u0085\\u007F"},
        {"\u202Eevil\u202C \u2066x\u2069\u200F", "\\u202Eevil\\u202C \\u2066x\\u2069\\u200F"},
        {"a\u2028b\uFEFFc\U000E0041", "a\\u2028b\\uFEFFc\\U000E0041"},
        {"\u0645\u06CC\u200C\u062E e\u0301 \U0001F600", "\u0645\u06CC\u200C\u062E e\u0301 \U0001F600"},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(row.expected);
        write("m.xlf", messageFile({row.source}));
        EXPECT_EQ(runKelto({"list", "m.xlf"}).out, std::string("1\t") + row.expected + "\n");
    }
    write("m.xlf", messageFile({"é\U0001F600"}));
    EXPECT_EQ(runKelto({"list", "m.xlf"}, {"", "C", ""}).out, "1\t\\u00E9\\U0001F600\n");
}

TEST(ListCommand, GoesOnBehindABadFile)
{
    write("a.xlf", messageFile({"A"}));
    write("b.xlf", messageFile({"B"}));
    write("bad\x1B.xlf", "<xliff>");
    const Outcome run = runKelto({"list", "a.xlf", "none.xlf", "bad\x1B.xlf", "b.xlf"});
    EXPECT_EQ(run.out, "a.xlf:\n1\tA\n\nb.xlf:\n1\tB\n");
    EXPECT_THAT(run.err, HasSubstr("kelto: none.xlf: there is no such file (KT_ERR_FILE_UNAVAILABLE)\n"));
    EXPECT_THAT(run.err, HasSubstr("kelto: bad\\u001B.xlf: "));
    EXPECT_THAT(run.err, HasSubstr("(KT_ERR_BAD_MSG_FILE)\n"));
    EXPECT_EQ(run.status, 2);
}

TEST(ListCommand, TakesAnyFileName)
{
    write("[a,b]", messageFile({"A"}));
    write("--raw", messageFile({"B"}));
    const Outcome run = runKelto({"list", "[a,b]", "--", "--raw"});
    EXPECT_EQ(run.out, "[a,b]:\n1\tA\n\n--raw:\n1\tB\n");
    EXPECT_EQ(run.status, 0);
}

TEST(VersionCommand, TellsTheVersionOfEachFile)
{
    write("a.xlf", MessageFile().attribute("product-version", "1.5 \u202E").xml());
    write("b.xlf", MessageFile().attribute("product-version", "2.0 beta").header("").xml()); // which cannot be loaded
    write("bad.xlf", MessageFile().without("product-version").xml());
    EXPECT_EQ(runKelto({"version", "a.xlf"}).out, "1.5 \\u202E\n");
    const Outcome run = runKelto({"version", "b.xlf", "bad.xlf", "a.xlf"});
    EXPECT_EQ(run.out, "b.xlf: 2.0 beta\na.xlf: 1.5 \\u202E\n");
    EXPECT_THAT(run.err, testing::StartsWith("kelto: bad.xlf: "));
    EXPECT_EQ(run.status, 2);
}

TEST(VersionCommand, ReadsTheFilesOfTheExamples)
{
    const std::string folder = KELTO_SOURCE_DIR "/examples/messages/";
    EXPECT_EQ(runKelto({"version", folder + "el.xlf"}).out, "2.1.0\n");
    EXPECT_EQ(runKelto({"format", folder + "el.xlf", "5", "alice.staff", "1"}).out,
              "Το staff/alice έχει αναγνωριστικό 0X00000001\n");
    EXPECT_EQ(runKelto({"format", folder + "ja.xlf", "3", "1", "2", "50"}).out,
              "2ファイル中1ファイルをコピーしました（ 50%完了）\n");
}

} // namespace
