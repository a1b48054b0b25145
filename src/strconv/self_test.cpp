#include "strconv/self_test.h"

#include "kelto.h"

#include <cstdio>
#include <memory>
#include <unicode/ucnv.h>

namespace
{

constexpr char sample[] = "cat\x94\x4C\x82\x6E\x82\x6A";
constexpr size_t sampleBytes = sizeof sample - 1;
constexpr char sampleCharSet[] = "shift_jis";

/** Converts the sample without our own conversions. @return the units written. */
int32_t convertWithICU(UCS2 *units, int32_t capacity, UErrorCode *status)
{
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(sampleCharSet, status), ucnv_close);
    return ucnv_toUChars(converter.get(), units, capacity, sample, sampleBytes, status);
}

void printUnits(const char *title, const UCS2 *units, size_t count)
{
    std::printf("%s", title);
    for (size_t i = 0; i < count; ++i)
        std::printf("0x%X ", static_cast<unsigned>(units[i]));
}

} // namespace

void hello(void)
{
    std::printf("\nHello from kelto library.\n");

    constexpr int32_t capacity = 100;
    UCS2 units[capacity];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t converted = convertWithICU(units, capacity, &status);
    if (U_FAILURE(status))
    {
        std::fflush(stdout);
        std::fflush(stderr);
        std::fprintf(stderr, "status == %s\n", u_errorName(status));
        return;
    }

    std::printf("Source (SJIS): ");
    for (size_t i = 0; i < sampleBytes; ++i)
        std::printf("0x%X ", static_cast<unsigned>(static_cast<unsigned char>(sample[i])));
    std::printf("\n");
    printUnits("Unicode (ICU): ", units, static_cast<size_t>(converted));
    std::printf("\n");

    size_t size = sampleBytes;
    const int result = KTMultiByteToUCS2(sampleCharSet, 0, 0, sample, &size, units);
    if (result != 0)
    {
        std::fprintf(stderr, "KTConv: KTMultiByteToUCS2 returns error 0x%x\n", static_cast<unsigned>(result));
        return;
    }
    std::printf("KTConv: KTMultiByteToUCS2 successful 0x%x\n", static_cast<unsigned>(result));
    printUnits("Unicode (Kelto): ", units, size);
    std::printf("\n\n");
}
