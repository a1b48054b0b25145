#include "strconv/self_test.h"

#include "strconv/icu_faults.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

TEST(SelfTest, ShowsBothConversionsUpToTheFirstFailure)
{
    const std::string greeting = "\nHello from kelto library.\n";
    const std::string first = greeting + "Source (SJIS): 0x63 0x61 0x74 0x94 0x4C 0x82 0x6E 0x82 0x6A \n"
                                         "Unicode (ICU): 0x63 0x61 0x74 0x732B 0xFF2F 0xFF2B \n";
    const std::string both = first + "KTConv: KTMultiByteToUCS2 successful 0x0\n"
                                     "Unicode (Kelto): 0x63 0x61 0x74 0x732B 0xFF2F 0xFF2B \n\n";
    struct
    {
        IcuFaults faults;
        std::string output, error;
    } const rows[] = {
        {{}, both, ""},
        {{1, 0}, greeting, "status == U_INVALID_TABLE_FORMAT\n"},
        {{0, 1}, greeting, "status == U_INVALID_TABLE_FORMAT\n"},
        {{2, 0}, first, "KTConv: KTMultiByteToUCS2 returns error 0xffffe0cb\n"},
    };
    for (const auto &row : rows)
    {
        icuFaults = row.faults;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        hello();
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.output);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), row.error);
        icuFaults = {};
    }
}

} // namespace
