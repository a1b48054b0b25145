// The add-on on a machine whose ICU came without its data: the program brings an empty package in its place, which the
// loader finds in front of the library of that name.
#include "kelto-locale.h"

#include <gtest/gtest.h>
#include <unicode/utypes.h>

extern "C" alignas(16) const unsigned char U_ICUDATA_ENTRY_POINT[] = {
    0x20, 0,   0xDA, 0x27,                         // the size of the head, and how such packages begin
    20,   0,   0,    0,    0, 0, 2, 0,             // an information of 20 bytes: little-endian, ASCII, units of 2 bytes
    'C',  'm', 'n',  'D',  1, 0, 0, 0,             // a package of its format 1
    3,    0,   0,    0,    0, 0, 0, 0, 0, 0, 0, 0, // of no version, and filled up
    0,    0,   0,    0,                            // that holds nothing
};

namespace
{

TEST(WithoutData, IsToldAndLeavesTheRestAtWork)
{
    ASSERT_EQ(KTInit(), 0);
    KTLLanguage *language = nullptr;
    for (const char *zone : {static_cast<const char *>(nullptr), "Europe/Warsaw"})
        EXPECT_EQ(KTLOpenLanguage("pl", zone, &language), KT_ERR_CONVERSION_FAILED);
    EXPECT_EQ(language, nullptr);

    KTCatalogOptions options{};
    options.structSize = sizeof options;
    options.conversions = KTLConversions;
    KTCatalog *catalog = nullptr;
    ASSERT_EQ(KTOpenCatalog("/nowhere", "none", &options, &catalog), 0);
    char line[40];
    size_t size = sizeof line;
    const KTArgument arguments[] = {KT_INT(1234)};
    EXPECT_EQ(KTCatalogFormatUTF8(catalog, 1, "%d[1] files", &size, line, arguments, 1), 0);
    EXPECT_STREQ(line, "1234 files");
    KTCloseCatalog(catalog);
    EXPECT_EQ(KTClean(), 0);
}

} // namespace
