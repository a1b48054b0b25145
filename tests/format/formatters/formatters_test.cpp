// The formatters by themselves, as a table of a program's own may call them.

#include "format/formatters/distinguished_name.h"
#include "format/started_test.h"
#include "support/arguments.h"
#include "support/fake_zel.h"
#include "support/guarded.h"

namespace
{

using Formatters = StartedTest;

/** One call of a formatter, with one argument. */
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
        return from(*arguments.pointers(), out, size);
    }
    int from(void *slot, Guarded<UCS2> &out, unsigned long &size) const
    {
        size = out.capacity();
        return formatter(name, width, precision, flags, nullptr, nullptr, &slot, &size, out.data());
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

TEST_F(Formatters, ReportWhatTheyLackAndTakeMemoryOnlyForLongNumbersThatFit)
{
    struct
    {
        Call call;
        unsigned long room;
        bool hasMemory;
        int result;
        unsigned long size, blocks;
    } const rows[] = {{{formatIP, "IP", "\"::1\""}, 0, true, 0, 0, 0},
                      {{formatDateTime, "D", "\"abc\""}, 9, true, KT_ERR_INVALID_PARAMETER, 0, 0},
                      {{formatUTF8Str, "s", "\"abc\""}, 9, false, KT_ERR_NO_MEMORY, 9, 1},
                      {{formatDouble, "f", "2.0e295"}, 400, false, 0, 303, 0},
                      {{formatDouble, "f", "2.0e296"}, 400, true, 0, 304, 1},
                      {{formatDouble, "f", "2.0e296"}, 400, false, KT_ERR_NO_MEMORY, 400, 1},
                      {{formatDouble, "f", "2.0e296"}, 10, false, KT_ERR_BUFFER_TOO_SMALL, 304, 0}};
    for (const auto &row : rows)
    {
        FakeZel::reset();
        FakeZel::record();
        if (!row.hasMemory)
            FakeZel::fail(Operation::Malloc);
        Guarded<UCS2> out(row.room);
        unsigned long size = 0;
        EXPECT_EQ(row.call.into(out, size), row.result) << row.call.name;
        EXPECT_EQ(size, row.size) << row.call.name;
        EXPECT_EQ(FakeZel::count(Operation::Malloc), row.blocks) << row.call.name;
    }
}

TEST_F(Formatters, ReadASourceThatLiesInTheOutputAsIfItLayElsewhere)
{
    const std::string source = "CN=ab,OU=c";
    for (const Call &call : {Call{formatUCS2Str, "U", "", 0, "   CN=ab,OU=c", 13},
                             {formatUCS2Str, "U", "", FLAG_MINUS | FLAG_ZERO, "CN=ab,OU=c000", 13},
                             {formatUCS2Str, "U", "", 0, "   CN=a", 7, 4},
                             {formatDN, "DND", "", 0, "ab.c"},
                             {formatDN, "DNS", "", FLAG_TAG, "<DN>c/ab</DN>"}})
        for (size_t place = 0; place <= 20; ++place)
        {
            SCOPED_TRACE(call.text + " from " + std::to_string(place));
            Guarded<UCS2> out(40);
            std::copy_n(source.c_str(), source.size() + 1, out.data() + place);
            unsigned long size = 0;
            ASSERT_EQ(call.from(out.data() + place, out, size), 0);
            EXPECT_EQ(std::string(out.data(), out.data() + size), call.text);
        }
    UCS2 name[302] = u"a/b";
    FakeZel::fail(Operation::Malloc);
    EXPECT_EQ(_formatDN(name, CONV_DND, name), 0);
    EXPECT_EQ(std::u16string(name), u"b.a");
    std::fill_n(name, 300, u'/');
    EXPECT_EQ(_formatDN(name, CONV_DNS, name), KT_ERR_NO_MEMORY) << "a long one needs a copy";
}

} // namespace
