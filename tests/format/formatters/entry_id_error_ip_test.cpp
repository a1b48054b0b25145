#include "format/formatting.h"
#include "support/fake_zel.h"

namespace
{

using EntryIdErrorIp = StartedTest;

TEST_F(EntryIdErrorIp, AnEntryIdHasEightDigits)
{
    EXPECT_EQ(format("%EID[1]", 6699), ok(u"0X00001A2B"));
    EXPECT_EQ(format("%-20.3EID[1]", 0), ok(u"0X00000000"));
    EXPECT_EQ(format("%EID[1]", 4294967295u), ok(u"0XFFFFFFFF"));
    EXPECT_EQ(format("%!EID[1]", uint64_t{4886718345}), ok(u"0X23456789"));
    EXPECT_EQ(format("%hEID[1]", 0xFFFF), ok(u"0X0000FFFF"));
    EXPECT_EQ(formatTagged("%EID[1]", 6699), ok(u"<EID>0X00001A2B</EID>"));
}

TEST_F(EntryIdErrorIp, AnErrorIsItsText)
{
    EXPECT_EQ(format("%9.1E[1]", "disk full"), ok(u"disk full"));
    EXPECT_EQ(format("%E[1]", ""), ok(u""));
    EXPECT_EQ(format("%E[1]", "Gerät <&>\xF0\x9F\x98\x80"), ok(u"Gerät <&>\U0001F600"));
    EXPECT_EQ(formatTagged("%E[1]", ""), ok(u"<error></error>"));
    EXPECT_EQ(formatTagged("%E[1]", "no"), ok(u"<error>no</error>"));
}

TEST_F(EntryIdErrorIp, AnAddressTakesItsPlaceAndWritesNothing)
{
    EXPECT_EQ(format("<%IP[2]>%s[1]%20.3IP[3]", "a", "10.0.0.1", "::1"), ok(u"<>a"));
    EXPECT_EQ(formatTagged("%IP[1]", "10.0.0.1"), ok(u""));
    EXPECT_EQ(callFormatter(formatIP, "IP", FLAG_TAG, "10.0.0.1", 0).result, 0);
    EXPECT_EQ(callFormatter(formatIP, "IP", FLAG_TAG, "10.0.0.1", 7).size, 0u);
}

TEST_F(EntryIdErrorIp, NeedAUnitBeyondTheirText)
{
    const uint32_t id = 6699;
    EXPECT_EQ(callFormatter(formatEID, "EID", 0, &id, 10).size, 10u);
    EXPECT_EQ(callFormatter(formatEID, "EID", 0, &id, 10).result, KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(callFormatter(formatEID, "EID", 0, &id, 11).text, u"0X00001A2B");
    EXPECT_EQ(callFormatter(formatEID, "EID", FLAG_TAG, &id, 21).size, 21u);
    EXPECT_EQ(callFormatter(formatEID, "EID", FLAG_TAG, &id, 21).result, KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(callFormatter(formatEID, "EID", FLAG_TAG, &id, 22).result, 0);
    EXPECT_EQ(callFormatter(formatError, "E", FLAG_TAG, "abc", 10).size, 18u);
    EXPECT_EQ(callFormatter(formatError, "E", FLAG_TAG, "abc", 18).result, KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(callFormatter(formatError, "E", FLAG_TAG, "abc", 19).text, u"<error>abc</error>");
    FakeZel::fail(Operation::Malloc);
    EXPECT_EQ(callFormatter(formatError, "E", 0, "abc", 19).result, KT_ERR_NO_MEMORY);
}

} // namespace
