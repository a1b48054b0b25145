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

int main(int argc, char **argv)
{
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new LeftoverCheck);
    return RUN_ALL_TESTS();
}
