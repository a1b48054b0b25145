/** Tests of what works in a started library only. */
#ifndef KELTO_TESTS_FORMAT_STARTED_TEST_H
#define KELTO_TESTS_FORMAT_STARTED_TEST_H

#include "kelto.h"

#include <gtest/gtest.h>

class StartedTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(KTInit(), 0); }
    void TearDown() override { KTClean(); }
};

#endif
