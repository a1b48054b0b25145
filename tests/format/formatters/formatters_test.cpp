// The formatters by themselves, as a table of a program's own may call them.

#include "format/started_test.h"
#include "support/arguments.h"
#include "support/fake_zel.h"
#include "support/guarded.h"

namespace
{

using Formatters = StartedTest;

/** One call of a formatter, with the first of some arguments; an unlucky one has no memory. */
struct Call
{
    KTFormatFunction formatter;
    const char *name, *argument;
    int flags = 0;
    std::string text = ""; // expected
    int width = -1, precision = -1;

    int into(Guarded<UCS2> &out, unsigned long &size) const
    {
        Arguments arguments(argument);
        size = out.capacity();
        return formatter(name, width, precision, flags, nullptr, nullptr, arguments.pointers(), &size, out.data());
    }
};

// Whether a text is terminated matters to those who call a formatter directly.
const Call unterminated[] = {
    {formatInteger, "d", "-42", FLAG_TAG, "-42"},        {formatUnsigned, "u", "42", 0, "42"},
    {formatOctHex, "o", "8", FLAG_HASH, "010"},          {formatOctHex, "q", "42", 0, "   ", 3},
    {formatOctHex, "q", "42", FLAG_HASH, "0q00", -1, 2}, {formatDouble, "f", "1.0", FLAG_TAG, "1.000000"},
    {formatEID, "EID", "6699", 0, "0X00001A2B"}};
const Call terminated[] = {{formatDN, "DND", "u\"alice\"", 0, "alice"},
                           {formatDN, "DNS", "u\"a.b\"", FLAG_TAG, "<DN>b/a</DN>"},
                           {formatDN, "?", "u\"a/b\"", 0, "b.a"},
                           {formatDateTime, "D", "\"86400\"", 0, "1/2/1970"},
                           {formatDateTime, "other", "\"\"", 0, "0:0:0"},
                           {formatUCS2Str, "U", "u\"\"", 0, ""},
                           {formatUTF8Str, "s", "\"abc\"", 0, "  abc", 5},
                           {formatChar, "c", "'A'", 0, "A"},
                           {formatError, "E", "\"abc\"", FLAG_TAG, "<error>abc</error>"},
                           {formatEID, "EID", "6699", FLAG_TAG, "<EID>0X00001A2B</EID>"}};

void expectRoomToMatter(const Call &call, bool isTerminated)
{
    const size_t need = call.text.size();
    for (size_t room = 0; room <= need + 3; ++room)
    {
        SCOPED_TRACE(std::string(call.name) + " into " + std::to_string(room));
        const bool fits = room > need;
        Guarded<UCS2> out(room);
        unsigned long size = 0;
        EXPECT_EQ(call.into(out, size), fits ? 0 : KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(size, need);
        EXPECT_TRUE(out.untouched(fits ? need + (isTerminated ? 1 : 0) : 0));
        EXPECT_TRUE(!fits || std::string(out.data(), out.data() + need) == call.text);
        EXPECT_TRUE(!fits || !isTerminated || out[need] == 0);
    }
}

TEST_F(Formatters, NeedAUnitBeyondTheirTextAndWriteNothingBehindIt)
{
    for (const Call &call : unterminated)
        expectRoomToMatter(call, false);
    for (const Call &call : terminated)
        expectRoomToMatter(call, true);
}

TEST_F(Formatters, ReportWhatTheyLackAndTakeMemoryOnlyForLongNumbers)
{
    struct
    {
        Call call;
        bool hasMemory;
        int result;
        unsigned long size, blocks;
    } const rows[] = {{{formatIP, "IP", "\"::1\""}, true, 0, 0, 0},
                      {{formatDateTime, "D", "\"abc\""}, true, KT_ERR_INVALID_PARAMETER, 0, 0},
                      {{formatUTF8Str, "s", "\"abc\""}, false, KT_ERR_NO_MEMORY, 400, 1},
                      {{formatDouble, "f", "1.0e290"}, false, 0, 298, 0},
                      {{formatDouble, "f", "1.0e300"}, true, 0, 308, 1},
                      {{formatDouble, "f", "1.0e300"}, false, KT_ERR_NO_MEMORY, 400, 1}};
    for (const auto &row : rows)
    {
        FakeZel::reset();
        FakeZel::record();
        if (!row.hasMemory)
            FakeZel::fail(Operation::Malloc);
        Guarded<UCS2> out(400);
        unsigned long size = 0;
        EXPECT_EQ(row.call.into(out, size), row.result) << row.call.name;
        EXPECT_EQ(size, row.size) << row.call.name;
        EXPECT_EQ(FakeZel::count(Operation::Malloc), row.blocks) << row.call.name;
    }
}

} // namespace
