#include "kelto.h"
#include "support/guarded.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(MessageLength, EndsAtTwoZeroBytesInARow)
{
    for (const std::string &text : {std::string(), std::string("abc"), std::string("a\0b", 3), std::string("\0a", 2),
                                    std::string("a\0b\0c", 5), std::string(1000, 'x')})
    {
        std::vector<char> source(text.begin(), text.end());
        source.insert(source.end(), {'\0', '\0'});
        Guarded<char> copy(source.size());
        EXPECT_EQ(static_cast<size_t>(KTMsgLen(source.data())), text.size());
        EXPECT_EQ(KTMsgCpy(source.data(), copy.data()), source.data() + text.size());
        EXPECT_TRUE(std::equal(source.begin(), source.end(), copy.data()));
    }
}
