// The C heap of this program fails on request. The sanitizers have a heap of their own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include "kelto.h"

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <gtest/gtest.h>

namespace
{

struct Heap
{
    bool watched = false;
    int untilFailure = 0;
    int failures = 0;
    long outstanding = 0;
};

thread_local Heap heap;

/** Fails each allocation of a call in turn, which must give one of `failures`. @return how many there were. */
int expectSurvival(const char *label, const std::function<long()> &call, std::initializer_list<long> failures)
{
    SCOPED_TRACE(label);
    const long success = call(); // fills ICU's own caches
    for (int n = 1; n < 100; ++n)
    {
        heap = {true, n, 0, 0};
        const long outcome = call();
        heap.watched = false;
        EXPECT_EQ(heap.outstanding, 0) << "allocation " << n;
        if (heap.failures == 0)
        {
            EXPECT_EQ(outcome, success);
            return n - 1;
        }
        EXPECT_NE(std::find(failures.begin(), failures.end(), outcome), failures.end())
            << "allocation " << n << ": " << outcome;
    }
    ADD_FAILURE() << "never succeeds";
    return 0;
}

} // namespace

extern "C" void *malloc(size_t size) noexcept
{
    static void *(*const real)(size_t) = reinterpret_cast<void *(*)(size_t)>(dlsym(RTLD_NEXT, "malloc"));
    if (heap.watched && --heap.untilFailure == 0)
    {
        ++heap.failures;
        return nullptr;
    }
    void *const block = real(size);
    heap.outstanding += heap.watched && block != nullptr;
    return block;
}

extern "C" void free(void *block) noexcept
{
    static void (*const real)(void *) = reinterpret_cast<void (*)(void *)>(dlsym(RTLD_NEXT, "free"));
    heap.outstanding -= heap.watched && block != nullptr;
    real(block);
}

TEST(AllocationFault, EndsEveryCallWithItsFailureAndNothingLeft)
{
    constexpr long noMemory = KT_ERR_NO_MEMORY, notOpened = KT_ERR_CONVERTER_OPEN_FAILED;
    constexpr char set[] = "EUC-JP", text[] = "a\xA4\xA2"
                                              "b";
    char out[16];
    UCS2 units[16];
    size_t size = 0;
    const auto room = [&] {
        size = 16;
        return &size;
    };
    const auto isFound = [](const char *found) { return static_cast<long>(found != nullptr); };

    EXPECT_EQ(expectSurvival("UTF-8 to UCS-2", [&] { return KTUTF8ToUCS2("a\u3042", room(), units); }, {}), 0);
    EXPECT_EQ(expectSurvival("UCS-2 to UTF-8", [&] { return KTUCS2ToUTF8(u"a\u3042", room(), out); }, {}), 0);
    expectSurvival("to UCS-2", [&] { return KTMultiByteToUCS2(set, 0, 0, text, room(), units); }, {notOpened});
    expectSurvival("first unit", [&] { return KTMBCharToUChar(set, 0xA4A2); }, {0});
    expectSurvival("length", [&] { return KTMultiByteStrclen(set, text); }, {noMemory, notOpened});
    expectSurvival("first", [&] { return static_cast<long>(KTFirstChar(set, text)); }, {0});
    expectSurvival("copy", [&] { return isFound(KTMultiByteStrncpy(out, set, text, 2)); }, {0});
    expectSurvival("upper", [&] { return KTMultiByteStrupr(set, text, &size, out); }, {noMemory, notOpened});
    expectSurvival("find", [&] { return isFound(KTMultiByteStrstr(set, text, set, "b")); }, {0});
    expectSurvival("find last", [&] { return isFound(KTMultiByteStrrchr(set, text, set, 'b', out)); }, {0});
    expectSurvival("compare", [&] { return KTMultiByteStrcmp(set, text, set, text); }, {noMemory, notOpened});
    bool isWhole = true;
    const auto next = [&] {
        std::strcpy(out, text);
        const unsigned int result = KTNextChar(set, out);
        isWhole = isWhole && (std::strcmp(out, text) == 0 || std::strcmp(out, text + 1) == 0);
        return static_cast<long>(result);
    };
    expectSurvival("next", next, {0, 0xA4A2}); // the character is known before the rest can fail
    EXPECT_TRUE(isWhole);
}

TEST(AllocationFault, LeavesTheDestinationOfATwoStepConversionAlone)
{
    char out[] = "??";
    size_t size = 2;
    const auto failing = [&](int (*convert)(const char *, char, char, const char *, size_t *, char *)) {
        heap = {true, 1, 0, 0};
        const int result = convert("shift_jis", 0, 0, "a", &size, out);
        heap.watched = false;
        return result;
    };
    EXPECT_EQ(failing(KTMultiByteToUTF8), KT_ERR_NO_MEMORY);
    EXPECT_EQ(failing(KTUTF8ToMultiByte), KT_ERR_NO_MEMORY);
    EXPECT_STREQ(out, "??");
    EXPECT_EQ(size, 2u);
}

#endif
