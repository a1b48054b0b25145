#include "support/fake_zel.h"

#include <gmock/gmock.h>

namespace
{

/** Gives every test a platform that fails nothing, and finds what a test leaves behind. */
class LeftoverCheck : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo &) override
    {
        FakeZel::reset();
        m_before = FakeZel::outstanding();
    }

    void OnTestEnd(const testing::TestInfo &) override
    {
        FakeZel::reset();
        EXPECT_EQ(FakeZel::outstanding(), m_before) << "the test left something over, or freed it twice";
    }

    Outstanding m_before;
};

} // namespace

// How sanitizers run these programs, also without ctest: a request for more memory than there is fails as elsewhere.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options()
{
    return "allocator_may_return_null=1:detect_stack_use_after_return=1:strict_string_checks=1";
}

extern "C" const char *__tsan_default_options();
extern "C" const char *__tsan_default_options()
{
    return "allocator_may_return_null=1";
}

extern "C" const char *__ubsan_default_options();
extern "C" const char *__ubsan_default_options()
{
    return "print_stacktrace=1";
}

int main(int argc, char **argv)
{
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new LeftoverCheck);
    return RUN_ALL_TESTS();
}
