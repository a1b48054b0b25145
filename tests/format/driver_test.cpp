#include "format/formatting.h"
#include "support/fake_zel.h"
#include "support/fault_loop.h"

#include <climits>
#include <cstdarg>
#include <thread>
#include <vector>

namespace
{

using Driver = StartedTest;

char *text(const char *literal)
{
    return const_cast<char *>(literal);
}

TEST_F(Driver, TakesArgumentsInTheOrderOfTheirPositions)
{
    EXPECT_EQ(format("%s[2]: %d[1]", 7, "x"), ok(u"x: 7"));
    EXPECT_EQ(format("%d[3]%d[1]%d[2]", 1, 2, 3), ok(u"312"));
    EXPECT_EQ(format("%*.*d[2]|%-*s[1]|", 4, "ab", 6, 3, 42), ok(u"   042|ab  |"));
}

TEST_F(Driver, CopiesLiteralTextAndPercentSigns)
{
    EXPECT_EQ(format(""), ok(u""));
    EXPECT_EQ(format("100%%"), ok(u"100%"));
    EXPECT_EQ(format("%%%%a%%"), ok(u"%%a%"));
    EXPECT_EQ(format("\xE2\x82\xAC %d[1] \xF0\x9F\x98\x80", 5), ok(u"\u20AC 5 \U0001F600"));
    EXPECT_EQ(format("\xFF"), ok(u"\uFFFD")) << "malformed UTF-8 is substituted";
}

TEST_F(Driver, FindsEveryPercentSignInLongTextsWhereverItStands)
{
    for (size_t length = 1; length <= 80; ++length)
        for (size_t at = 0; at < length; ++at)
        {
            std::string source(length, 'a');
            std::u16string expected(length, u'a');
            source.replace(at, 1, "%d[1]");
            expected[at] = u'7';
            UCS2 out[100];
            unsigned long size = 100;
            ASSERT_EQ(KTFormatString(nullptr, false, &size, out, source.data(), 7), 0);
            ASSERT_EQ(asString(out), expected);
        }
}

TEST_F(Driver, IsNotMisledByUnitsThatLookLikePercentSigns)
{
    const std::string alike = "\xE2\x94\xA5"; // U+2525
    std::string source;
    std::u16string expected;
    for (int i = 0; i < 20; ++i)
    {
        source += alike;
        expected += u"\u2525";
    }
    EXPECT_EQ(format((source + "%d[1]" + source).c_str(), 7), ok(expected + u"7" + expected));
}

TEST_F(Driver, WritesMorePlacesThanItNotes)
{
    std::string source;
    std::u16string expected;
    for (int i = 0; i < 20; ++i)
    {
        source += "a%%";
        expected += u"a%";
    }
    EXPECT_EQ(format((source + "%N[1]%s[3]%d[2]" + source).c_str(), 1, "b"), ok(expected + u"b1" + expected));
}

TEST_F(Driver, ReportsTheNeedAndATerminatedTextWhenTheOutputDoesNotFit)
{
    UCS2 out[4];
    unsigned long size = 3;
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out, text("abc")), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(asString(out), u"ab");
    size = 4;
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out, text("abc")), 0);
    EXPECT_EQ(size, 3u);
    size = 1UL << 40;
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out, text("abc")), 0);
    EXPECT_EQ(size, 3u);
}

TEST_F(Driver, MeasuresAHugeWidthWithoutWritingIt)
{
    UCS2 out[4];
    unsigned long size = 4;
    EXPECT_EQ(
        KTFormatString(nullptr, false, &size, out, text("%2147483647d[1]a%.2147483647d[2]%*s[3]"), 1, 2, INT_MAX, "x"),
        KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 3UL * INT_MAX + 1);
    EXPECT_EQ(asString(out), u"");
    size = 4;
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out, text("%*.*d[1]"), INT_MIN, INT_MIN, 1), 0);
    EXPECT_EQ(asString(out), u"1");
}

TEST_F(Driver, RefusesAWrongNumberOfPointersBeforeItTouchesTheOutput)
{
    int value = 1;
    void *slots[] = {&value, &value, &value, nullptr};
    for (const size_t given : {0, 1, 3})
    {
        Ucs2Buffer out(10);
        unsigned long size = 10;
        EXPECT_EQ(KTvpFormatString(nullptr, false, &size, out.data(), text("%d[1] %d[2]"), slots + 3 - given),
                  KT_ERR_INVALID_PARAMETER);
        EXPECT_EQ(size, 10u);
        EXPECT_TRUE(out.untouched());
    }
}

TEST_F(Driver, FailuresBeforeTheOutputLeaveSizeAndBufferAlone)
{
    Ucs2Buffer out(10);
    unsigned long size = 10;
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out.data(), text("abc %d")), KT_ERR_FORMAT_SYNTAX);
    KTClean();
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out.data(), text("abc")), KT_ERR_NOT_INITIALIZED);
    EXPECT_EQ(KTvpFormatString(nullptr, false, &size, out.data(), text("abc"), nullptr), KT_ERR_NOT_INITIALIZED);
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(size, 10u);
    EXPECT_TRUE(out.untouched());
}

TEST_F(Driver, NullTextsFormatAsEmptyOnes)
{
    const char *const none = nullptr;
    const UCS2 *const wideNone = nullptr;
    UCS2 out[20];
    unsigned long size = 20;
    EXPECT_EQ(
        KTFormatString(nullptr, false, &size, out, text("[%3s[1]%2U[2]%DND[3]%E[4]]"), none, wideNone, wideNone, none),
        0);
    EXPECT_EQ(asString(out), u"[     ]");
}

/** Formatters of the tests' own, which say what they were called with. */
struct Seen
{
    std::string name;
    int width, precision, flags;
    bool hasEncoder;
    void *passThru2;
};

std::vector<Seen> seen;
int codeToReturn;
unsigned long sizeToReport;

int recordCall(const char *name, int width, int precision, int flags, KTEncoder encoder, void *passThru2, void **,
               unsigned long *size, UCS2 *)
{
    seen.push_back({name, width, precision, flags, encoder != nullptr, passThru2});
    *size = sizeToReport;
    return codeToReturn;
}

const int noTypes[] = {0};
const int unknownCodes[] = {8, 1, 99, 4, 0};
KTFormatter ownList[] = {{"own", nullptr, 1, signedIntList, recordCall},
                         {"none", nullptr, 0, noTypes, recordCall},
                         {"two", nullptr, 2, unknownCodes, recordCall},
                         {nullptr, nullptr, 0, nullptr, nullptr}};

int plainEncoder(const void *, int, unsigned long *size, UCS2 *)
{
    *size = 0;
    return 0;
}

class OwnFormatters : public Driver
{
protected:
    void SetUp() override
    {
        Driver::SetUp();
        seen.clear();
        codeToReturn = 0;
        sizeToReport = 0;
        table = {false, {}, ownList, nullptr, &builtInFormTable};
    }

    template <typename... Arguments>
    int call(unsigned long *sizeInOut, UCS2 *buffer, bool tag, const char *format, Arguments... arguments)
    {
        return KTFormatStringWithPassThru(nullptr, tag, &table, this, sizeInOut, buffer, text(format), arguments...);
    }

    formTable table;
    UCS2 out[20] = {};
    unsigned long size = 20;
};

TEST_F(OwnFormatters, GetTheResolvedSpecification)
{
    table.encoder = plainEncoder;
    EXPECT_EQ(call(&size, out, true, "%N[1]%-*.*own[2]%O[3]%!own[4]", -7, INT_MIN, 1, int64_t{2}), 0);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].name, "own");
    EXPECT_EQ(seen[0].width, -7);
    EXPECT_EQ(seen[0].precision, INT_MIN);
    EXPECT_EQ(seen[0].flags, FLAG_MINUS | FLAG_TAG | FLAG_ENCODE);
    EXPECT_TRUE(seen[0].hasEncoder);
    EXPECT_EQ(seen[0].passThru2, this);
    EXPECT_EQ(seen[1].width, -1);
    EXPECT_EQ(seen[1].precision, -1);
    EXPECT_EQ(seen[1].flags, FLAG_BANG | FLAG_TAG);
}

TEST_F(OwnFormatters, RegionsFollowPositionsNotTheText)
{
    EXPECT_EQ(call(&size, out, false, "%own[4]%O[3]%own[2]%N[1]", 1, 2), 0);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].flags, 0);
    EXPECT_EQ(seen[1].flags, FLAG_ENCODE);
    EXPECT_FALSE(seen[1].hasEncoder);
}

TEST_F(OwnFormatters, TakeSlotsForTheirKnownTypesOnly)
{
    EXPECT_EQ(call(&size, out, false, "%two[1]%d[2]", 'c', 5, 9), 0);
    EXPECT_EQ(asString(out), u"9");
}

TEST_F(OwnFormatters, WithoutArgumentsAreCalledWithoutOne)
{
    EXPECT_EQ(call(&size, out, false, "%none[1]"), 0);
    EXPECT_EQ(seen.size(), 1u);
    void *const slots[] = {nullptr};
    size = 20;
    EXPECT_EQ(KTvpFormatStringWithPassThru(nullptr, false, &table, nullptr, &size, out, text("%none[1]"),
                                           const_cast<void **>(slots)),
              0);
}

TEST_F(OwnFormatters, AFailureEmptiesTheOutput)
{
    codeToReturn = -77;
    sizeToReport = 5;
    EXPECT_EQ(call(&size, out, false, "abc%own[1]def", 1), -77);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(asString(out), u"");
}

TEST_F(OwnFormatters, AFailureBehindATruncationStillMeasuresTheRest)
{
    codeToReturn = -77;
    sizeToReport = 1000;
    size = 3;
    EXPECT_EQ(call(&size, out, false, "abcd%own[1]ef%3d[2]", 1, 2), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 9u) << "the failing conversion counts nothing";
    EXPECT_EQ(asString(out), u"ab");
    size = 20;
    EXPECT_EQ(call(&size, out, false, "abcd%own[1]ef%3d[2]", 1, 2), -77) << "the retry tells what is wrong";
}

TEST_F(OwnFormatters, WriteOneBehindTheOtherAlsoAfterATruncation)
{
    codeToReturn = KT_ERR_BUFFER_TOO_SMALL;
    sizeToReport = 1;
    static UCS2 *places[2];
    static int calls;
    calls = 0;
    KTFormatter noting[] = {
        {"at", nullptr, 0, noTypes,
         [](const char *, int, int, int, KTEncoder, void *, void **, unsigned long *units, UCS2 *at) {
             places[calls++] = at;
             *units = 2;
             return 0;
         }},
        {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable chained = {false, {}, noting, nullptr, &table};
    EXPECT_EQ(formatInto(&size, out, {false, &chained, nullptr}, "ab%none[1]%at[2]%at[3]"), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(places[0], out + 2);
    EXPECT_EQ(places[1], out + 4);
    EXPECT_EQ(size, 7u);
}

TEST_F(OwnFormatters, CannotClaimMoreThanTheirRoom)
{
    for (const unsigned long claim : {3UL, 20UL, ~0UL})
    {
        size = 3;
        sizeToReport = claim;
        EXPECT_EQ(call(&size, out, false, "%own[1]%own[2]x", 1, 2), KT_ERR_BUFFER_TOO_SMALL) << claim;
    }
}

TEST_F(Driver, AMissingSlotIsAnInvalidParameter)
{
    KTParameter *parameters = nullptr;
    ASSERT_EQ(checkSyntax(u"a%*d[1]", nullptr, &parameters), 0);
    int width = 3;
    for (const bool hasWidth : {false, true})
    {
        void *slots[] = {hasWidth ? &width : nullptr, nullptr};
        UCS2 out[10] = {u'x'};
        unsigned long size = 10;
        EXPECT_EQ(buildBuffer(parameters, nullptr, nullptr, &size, out, u"a%*d[1]", slots), KT_ERR_INVALID_PARAMETER);
        EXPECT_EQ(size, 0u);
        EXPECT_EQ(out[0], 0);
        size = 1;
        EXPECT_EQ(buildBuffer(parameters, nullptr, nullptr, &size, out, u"a%*d[1]b", slots), KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(size, 2u);
    }
    ZEL_free(parameters);
}

TEST_F(Driver, ReadsEveryArgumentTypeFromBothForms)
{
    EXPECT_EQ(format("%hd[1] %d[2] %!d[3]", 0x18001, -2, int64_t{1} << 40), ok(u"-32767 -2 1099511627776"));
    EXPECT_EQ(format("%hu[1] %u[2] %ul[3]", 0xFFFF, 0xFFFFFFFFu, ~uint64_t{0}),
              ok(u"65535 4294967295 18446744073709551615"));
    EXPECT_EQ(format("%f[1] %.1Lf[2]", 1.5, 2.25L), ok(u"1.500000 2.2"));
    EXPECT_EQ(format("%c[1]%lc[2]%s[3]%U[4]", 'a', 0x3042, "s", u"U"), ok(u"a\u3042sU"));
    EXPECT_EQ(format("%D[1] %DNS[2] %E[3] %EID[4]%IP[5].", "86400", u"a.b", "err", 6699, "1.2.3.4"),
              ok(u"1/2/1970 b/a err 0X00001A2B."));
}

TEST_F(Driver, PassesPointerSizedValuesThrough)
{
    static const int pointerList[] = {7, 0};
    static uint64_t received;
    KTFormatter list[] = {
        {"p", nullptr, 1, pointerList,
         [](const char *, int, int, int, KTEncoder, void *, void **slot, unsigned long *size, UCS2 *) {
             received = *static_cast<uint64_t *>(*slot);
             *size = 0;
             return 0;
         }},
        {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, nullptr};
    EXPECT_EQ(formatWith({false, &table, nullptr}, "%p[1]", ~uint64_t{1}), ok(u""));
    EXPECT_EQ(received, ~uint64_t{1});
}

/** Formats into too little room, then again with what was asked for and the same list. */
std::u16string formatTwice(const char *format, ...)
{
    UCS2 out[20];
    unsigned long size = 2;
    va_list arguments;
    va_start(arguments, format);
    EXPECT_EQ(KTvFormatString(nullptr, false, &size, out, text(format), arguments), KT_ERR_BUFFER_TOO_SMALL);
    ++size;
    EXPECT_EQ(KTvFormatString(nullptr, false, &size, out, text(format), arguments), 0);
    va_end(arguments);
    return asString(out, size);
}

TEST_F(Driver, AnArgumentListServesTheRetryToo)
{
    EXPECT_EQ(formatTwice("%s[2]: %d[1]", 7, "x"), u"x: 7");
}

TEST_F(Driver, TakesExactlyTheBlocksThatItPromises)
{
    FakeZel::record();
    UCS2 out[20];
    unsigned long size = 20;
    ASSERT_EQ(KTFormatString(nullptr, false, &size, out, text("%s[2]: %*U[1]"), 7, u"ab", "xyz"), 0);
    std::vector<uint64_t> sizes;
    for (const Call &call : FakeZel::calls())
        if (call.operation == Operation::Malloc)
            sizes.push_back(call.number);
    // The format, eleven records, three slots and their end, a width, a UCS-2 text, a UTF-8 text, its conversion.
    EXPECT_EQ(sizes, (std::vector<uint64_t>{28, 11 * 32, 4 * 8, 4, 6, 4, 8}));
}

TEST_F(Driver, EveryFailingAllocationIsReportedAndFreed)
{
    Ucs2Buffer out(120);
    unsigned long size = 0;
    FaultLoop loop;
    loop.prepare = [&] {
        out = Ucs2Buffer(120);
        size = 120;
    };
    loop.call = [&] {
        return KTFormatString(nullptr, true, &size, out.data(),
                              text("%s[1]%U[2]%*d[3]%f[4]%E[5]%c[6]%DND[8]%D[7]%s[9]%s[10]%s[11]"), "a", u"b", 4, 5,
                              1.5, "e", 'c', "1", u"n", "", "", "");
    };
    loop.afterFailure = [&] { EXPECT_TRUE(out.untouched() ? size == 120 : size == 0 && out[0] == 0); };
    loop.afterSuccess = [&] {
        EXPECT_EQ(out.text(), u"ab   51.500000<error>e</error>c<DN>n</DN>"
                              u"<date><year>1970</year><month>1</month><day>1</day></date>");
    };
    // The format, the records twice, the slots, twelve cells, and a buffer for each of "s" and "E".
    EXPECT_EQ(loop.run(), 21u);
}

TEST_F(Driver, FormatsInManyThreadsAtOnce)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([number] {
            for (int round = 0; round < 200; ++round)
                ASSERT_EQ(format("%s[2] %d[1]", number, "thread"),
                          ok(u"thread " + std::u16string(1, static_cast<char16_t>(u'0' + number))));
        });
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace
