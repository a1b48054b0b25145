// The codes that there are stand in a page of the documentation, with which their names and texts are compared.

#include "kelto.h"

#include <gtest/gtest.h>

TEST(ResultCode, OfAnotherNumberHasNoNameAndTheTextOfAnyOther)
{
    for (const int code : {1, -7982, -7984, -7985, -7988, -7990, -8000, 2147483647})
    {
        EXPECT_EQ(KTResultName(code), nullptr) << code;
        EXPECT_STREQ(KTResultText(code), KTResultText(-5994)) << code;
    }
}
