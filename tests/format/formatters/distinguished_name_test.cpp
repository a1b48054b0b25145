#include "format/formatters/distinguished_name.h"

#include "support/fake_zel.h"
#include "support/guarded.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{

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
    const std::u16string alphabet = u" ab./=,"; // a name ends before a blank
    for (int number = 0; number < 7 * 7 * 7 * 7 * 7 * 7; ++number)
    {
        std::u16string name;
        for (int rest = number; rest % 7 != 0; rest /= 7)
            name += alphabet[static_cast<size_t>(rest % 7)];
        for (const Flag_t kind : {CONV_DND, CONV_DNS})
        {
            Guarded<UCS2> out(name.size() + 2);
            ASSERT_EQ(_formatDN(name.c_str(), kind, out.data()), 0);
            ASSERT_EQ(out.text(), model(name, kind == CONV_DNS)) << testing::PrintToString(name);
        }
    }
}

TEST(DistinguishedNames, OfAnyLengthNeedNoMemory)
{
    FakeZel::record();
    for (const std::u16string &name : {std::u16string(10000, u'.'), std::u16string(10000, u'/'),
                                       u"CN=" + std::u16string(5000, u'x') + u",O=" + std::u16string(300, u'y'),
                                       std::u16string(9999, u'a') + u"." + std::u16string(10, u'b')})
    {
        Guarded<UCS2> out(name.size() + 2);
        ASSERT_EQ(_formatDN(name.c_str(), CONV_DNS, out.data()), 0);
        EXPECT_EQ(out.text(), model(name, true));
    }
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 0u);
}

} // namespace
