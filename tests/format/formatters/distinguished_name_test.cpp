#include "format/formatters/distinguished_name.h"

#include "format/formatting.h"
#include "support/fake_zel.h"

#include <algorithm>

namespace
{

using DistinguishedName = StartedTest;

struct Row
{
    const char16_t *name, *dotted, *slashed;
};

TEST_F(DistinguishedName, IsWrittenInEitherForm)
{
    const Row rows[] = {
        {u"CN=alice,OU=staff,O=corp", u"alice.staff.corp", u"corp/staff/alice"},
        {u"corp/staff/alice", u"alice.staff.corp", u"corp/staff/alice"},
        {u"/corp/staff/alice", u"alice.staff.corp", u"corp/staff/alice"},
        {u"alice.staff.corp", u"alice.staff.corp", u"corp/staff/alice"},
        {u".alice.staff.corp", u"alice.staff.corp", u"corp/staff/alice"},
        {u"alice.staff.corp.", u"alice.staff.corp", u"corp/staff/alice"},
        {u"CN=a.b,O=c", u"a.b.c", u"c/a.b"},
        {u"a/b.c", u"b.c.a", u"a/b.c"},
        {u"a..b", u"a..b", u"b//a"},
        {u"alice", u"alice", u"alice"},
        {u"", u"", u""},
        {u".", u"", u""},
        {u"/", u"", u""},
        {u"//", u"", u""},
        {u"..a", u".a", u"a/"},
        {u"=", u"", u""},
        {u"CN=a,b,O=c", u"a.c", u"c/a"},
        {u"CN=a,rest", u"a", u"a"},
        {u"a=b=c,d=", u"b=c.", u"/b=c"},
    };
    for (const Row &row : rows)
    {
        EXPECT_EQ(format("%DND[1]", row.name), ok(row.dotted)) << testing::PrintToString(row.name);
        EXPECT_EQ(format("%DNS[1]", row.name), ok(row.slashed)) << testing::PrintToString(row.name);
        EXPECT_EQ(formatTagged("%5.1DNS[1]", row.name), ok(std::u16string(u"<DN>") + row.slashed + u"</DN>"));
    }
}

/** The rules again, with lists. */
std::u16string model(const std::u16string &name, bool slashed)
{
    std::vector<std::u16string> components;
    const size_t first = name.find_first_of(u"./=");
    const char16_t delimiter = first == std::u16string::npos ? u'\0' : name[first];
    if (delimiter == 0)
        components.push_back(name);
    else if (delimiter == u'=')
        for (size_t equals = first; equals != std::u16string::npos;)
        {
            const size_t comma = name.find(u',', equals + 1);
            components.push_back(name.substr(equals + 1, comma - equals - 1));
            equals = comma == std::u16string::npos ? comma : name.find(u'=', comma);
        }
    else
    {
        if (first != 0)
            components.push_back(name.substr(0, first));
        for (size_t at = first + 1; at < name.size();)
        {
            const size_t next = std::min(name.find(delimiter, at), name.size());
            components.push_back(name.substr(at, next - at));
            at = next + 1;
        }
    }
    if (slashed != (delimiter == u'/'))
        std::reverse(components.begin(), components.end());
    std::u16string text;
    for (const std::u16string &component : components)
        text += component + (slashed ? u'/' : u'.');
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

TEST(DistinguishedNames, OfEveryShortShapeFollowTheModel)
{
    const std::u16string alphabet = u"ab./=,";
    const size_t maxLength = 6;
    std::u16string name;
    size_t count = 0;
    // Counts through all texts of up to six of these characters.
    for (std::vector<size_t> digits; digits.size() <= maxLength; ++count)
    {
        name.clear();
        for (const size_t digit : digits)
            name += alphabet[digit];
        for (const Flag_t kind : {CONV_DND, CONV_DNS})
        {
            Ucs2Buffer out(name.size() + 2);
            ASSERT_EQ(_formatDN(name.c_str(), kind, out.data()), 0);
            ASSERT_EQ(out.text(), model(name, kind == CONV_DNS)) << testing::PrintToString(name);
        }
        size_t place = 0;
        while (place < digits.size() && ++digits[place] == alphabet.size())
            digits[place++] = 0;
        if (place == digits.size())
            digits.push_back(0);
    }
    EXPECT_EQ(count, (6 * 6 * 6 * 6 * 6 * 6 * 6 - 1) / 5u);
}

TEST(DistinguishedNames, OfAnyLengthNeedNoMemory)
{
    FakeZel::record();
    for (const std::u16string &name : {std::u16string(10000, u'.'), std::u16string(10000, u'/'),
                                       u"CN=" + std::u16string(5000, u'x') + u",O=" + std::u16string(300, u'y'),
                                       std::u16string(9999, u'a') + u"." + std::u16string(10, u'b')})
    {
        Ucs2Buffer out(name.size() + 2);
        ASSERT_EQ(_formatDN(name.c_str(), CONV_DNS, out.data()), 0);
        EXPECT_EQ(out.text(), model(name, true));
    }
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 0u);
}

TEST(DistinguishedNameFormatter, NeedsAUnitForTheTerminatorThatItWrites)
{
    const char16_t name[] = u"alice";
    EXPECT_EQ(callFormatter(formatDN, "DND", FLAG_TAG, name, 14).result, KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(callFormatter(formatDN, "DND", FLAG_TAG, name, 14).size, 14u);
    EXPECT_EQ(callFormatter(formatDN, "DND", FLAG_TAG, name, 15).text, u"<DN>alice</DN>");
    Ucs2Buffer out(6);
    unsigned long size = 6;
    void *slot = const_cast<char16_t *>(name);
    EXPECT_EQ(formatDN("?", -1, -1, 0, nullptr, nullptr, &slot, &size, out.data()), 0);
    EXPECT_EQ(out.text(), u"alice");
}

} // namespace
