// What becomes of ICU's failures. ucnv_open() and ucnv_toUChars() are this program's own, and fail on request with a
// status that no input could bring about; otherwise they are ICU's.

#include "kelto.h"
#include "strconv/self_test.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unicode/ucnv.h>

// ICU's names carry its version; these give the name that the library calls.
#define TEXT_OF(name) #name
#define EXPANDED_TEXT_OF(name) TEXT_OF(name)
#define REAL(name) reinterpret_cast<decltype(&(name))>(dlsym(RTLD_NEXT, EXPANDED_TEXT_OF(name)))

namespace
{

thread_local int openFails = 0, convertFails = 0; // the call that fails, counted down to 0

bool isDue(int &countdown, UErrorCode *status)
{
    const bool fails = countdown > 0 && --countdown == 0;
    *status = fails ? U_INVALID_TABLE_FORMAT : *status;
    return fails;
}

} // namespace

extern "C" UConverter *ucnv_open(const char *name, UErrorCode *status)
{
    static const auto real = REAL(ucnv_open);
    return isDue(openFails, status) ? nullptr : real(name, status);
}

extern "C" int32_t ucnv_toUChars(UConverter *converter, UChar *dest, int32_t capacity, const char *src, int32_t length,
                                 UErrorCode *status)
{
    static const auto real = REAL(ucnv_toUChars);
    return isDue(convertFails, status) ? 0 : real(converter, dest, capacity, src, length, status);
}

TEST(IcuFaults, OtherThanTheKnownOnesGiveOneCode)
{
    UCS2 units[] = u"??";
    size_t size = 2;
    convertFails = 1;
    EXPECT_EQ(KTMultiByteToUCS2("utf-8", 0, 0, "a", &size, units), KT_ERR_CONVERSION_FAILED);
    EXPECT_EQ(units[0], 0);
    EXPECT_EQ(size, 2u);
}

TEST(SelfTest, ShowsBothConversionsUpToTheFirstFailure)
{
    const std::string greeting = "\nHello from kelto library.\n";
    const std::string first = greeting + "Source (SJIS): 0x63 0x61 0x74 0x94 0x4C 0x82 0x6E 0x82 0x6A \n"
                                         "Unicode (ICU): 0x63 0x61 0x74 0x732B 0xFF2F 0xFF2B \n";
    const std::string both = first + "KTConv: KTMultiByteToUCS2 successful 0x0\n"
                                     "Unicode (Kelto): 0x63 0x61 0x74 0x732B 0xFF2F 0xFF2B \n\n";
    struct
    {
        int openFails, convertFails;
        std::string output, error;
    } const rows[] = {
        {0, 0, both, ""},
        {1, 0, greeting, "status == U_INVALID_TABLE_FORMAT\n"},
        {0, 1, greeting, "status == U_INVALID_TABLE_FORMAT\n"},
        {2, 0, first, "KTConv: KTMultiByteToUCS2 returns error 0xffffe0cb\n"},
    };
    for (const auto &row : rows)
    {
        openFails = row.openFails, convertFails = row.convertFails;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        hello();
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.output);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), row.error);
    }
}
