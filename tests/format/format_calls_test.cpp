#include "format/started_test.h"
#include "support/fake_zel.h"
#include "support/guarded.h"
#include "support/ucs2.h"

namespace
{

using FormatCalls = StartedTest;

char *text(const char *literal)
{
    return const_cast<char *>(literal);
}

TEST_F(FormatCalls, FindsAPercentSignWhereverItStands)
{
    for (size_t length = 1; length <= 80; ++length)
        for (size_t at = 0; at < length; ++at)
        {
            std::string source(length, 'a'), expected = source;
            source.replace(at, 1, "%d[1]");
            expected[at] = '7';
            UCS2 out[100];
            unsigned long size = 100;
            ASSERT_EQ(KTFormatString(nullptr, false, &size, out, source.data(), 7), 0);
            ASSERT_EQ(std::string(out, out + size), expected);
        }
}

TEST_F(FormatCalls, CutsATextBeforeItsTerminatorAndBelievesAnyCapacity)
{
    UCS2 out[4];
    unsigned long size = 3;
    EXPECT_EQ(KTFormatString(nullptr, false, &size, out, text("abc")), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(asString(out), u"ab");
    size = 1UL << 40;
    EXPECT_EQ(KTFormatStringWithPassThru(nullptr, false, nullptr, nullptr, &size, out, text("%c[1]bc"), 'a'), 0);
    EXPECT_EQ(asString(out), u"abc");
}

/** A conversion that claims to have written, or to need, what it is told to; and where each of its calls may write. */
struct Claim
{
    int result;
    unsigned long units;
};
std::vector<Claim> claims;
std::vector<const UCS2 *> places;

int claim(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *out)
{
    const Claim &next = claims[places.size()];
    places.push_back(out);
    *size = next.units;
    return next.result;
}

TEST_F(FormatCalls, WritesOnBehindWhatIsWrittenAndBelievesNoClaimBeyondTheRoom)
{
    static const int noTypes[] = {0};
    KTFormatter list[] = {{"claim", nullptr, 0, noTypes, claim}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, nullptr};
    struct Row
    {
        unsigned long capacity;
        std::vector<Claim> claims;
        unsigned long size;
        ptrdiff_t second, third; // where the calls write
    };
    const Row rows[] = {{20, {{KT_ERR_BUFFER_TOO_SMALL, 1}, {0, 2}, {0, 2}}, 8, 2, 4},
                        {5, {{0, 3}, {0, 0}, {0, 0}}, 6, 2, 2},
                        {5, {{0, 2}, {0, 1}, {0, 0}}, 6, 4, 4},
                        {5, {{0, ~0UL}, {0, 1}, {0, 0}}, ~0UL, 2, 2}};
    for (const Row &row : rows)
    {
        claims = row.claims;
        places.clear();
        Guarded<UCS2> out(row.capacity);
        unsigned long size = row.capacity;
        EXPECT_EQ(KTFormatStringWithPassThru(nullptr, false, &table, nullptr, &size, out.data(),
                                             text("ab%claim[1]%claim[2]%claim[3]x")),
                  KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(places[1] - out.data(), row.second);
        EXPECT_EQ(places[2] - out.data(), row.third);
    }
}

TEST_F(FormatCalls, AMissingSlotIsAnInvalidParameter)
{
    KTParameter *parameters = nullptr;
    ASSERT_EQ(checkSyntax(u"a%*.*d[1]", nullptr, &parameters), 0);
    int number = 3;
    for (size_t missing = 0; missing < 3; ++missing)
    {
        void *slots[] = {&number, &number, &number, nullptr};
        slots[missing] = nullptr;
        UCS2 out[10] = {u'x'};
        unsigned long size = 10;
        EXPECT_EQ(buildBuffer(parameters, nullptr, nullptr, &size, out, u"a%*.*d[1]", slots), KT_ERR_INVALID_PARAMETER);
        EXPECT_EQ(size, 0u);
        EXPECT_EQ(out[0], 0);
    }
    ZEL_free(parameters);
}

TEST_F(FormatCalls, TakesExactlyTheBlocksThatItPromises)
{
    FakeZel::record();
    UCS2 out[20];
    unsigned long size = 20;
    ASSERT_EQ(KTFormatString(nullptr, false, &size, out, text("%s[2]: %*U[1]"), 7, u"ab", "xyz"), 0);
    // The format, eleven records, three slots and their end, a width, a UCS-2 text, a UTF-8 text, its conversion.
    EXPECT_EQ(FakeZel::blockSizes(), (std::vector<uint64_t>{28, 11 * 32, 4 * 8, 4, 6, 4, 8}));
}

} // namespace
