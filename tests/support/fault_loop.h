/**
 * The one fault loop. It runs a call with its first fallible operation failing, then with the second, and so on until
 * none is left to fail, and checks after each failure the result code, that the outputs are as promised and that
 * nothing is left over; the run without a failure must succeed.
 *
 *     FaultLoop loop;
 *     loop.call = [&] { return KTLoadMessages(path, &table); };
 *     loop.afterFailure = [&] { EXPECT_TRUE(table == sentinel || table == nullptr); };
 *     loop.afterSuccess = [&] { EXPECT_EQ(KTFreeMessages(table), 0); };
 *     EXPECT_EQ(loop.run(), 9u); // operations that were made to fail
 */
#ifndef KELTO_TESTS_SUPPORT_FAULT_LOOP_H
#define KELTO_TESTS_SUPPORT_FAULT_LOOP_H

#include "kelto.h"
#include "support/fake_zel.h"

#include <gtest/gtest.h>
#include <set>

struct FaultLoop
{
    /** Sets the outputs to values that show whether they were written; before every run. */
    std::function<void()> prepare = [] {};
    /** The call under test; its result code. Must leave nothing behind when it fails. */
    std::function<int()> call;
    std::function<void()> afterFailure = [] {}, afterSuccess = [] {};
    /** The results of which the failure of an operation must have one; what the library makes of the platform's. */
    std::function<std::set<int>(Operation)> expected = [](Operation operation) -> std::set<int> {
        if (operation == Operation::FileOpen || operation == Operation::FileRead)
            return {FakeZel::defaultCode};
        return {operation == Operation::Malloc         ? KT_ERR_NO_MEMORY
                : operation == Operation::ParserCreate ? -1
                                                       : KT_ERR_NOT_INITIALIZED};
    };
    /** Where faults come from: lets the n-th operation from here on fail; takes that back and tells how many failed. */
    std::function<void(unsigned n)> arm = [](unsigned n) { FakeZel::failNth(n); };
    std::function<unsigned()> disarm = FakeZel::clearFaults;

    /** Runs the loop; the number of operations that were made to fail. */
    unsigned run() const
    {
        constexpr unsigned limit = 10000; // a call that fails for ever must not hang the tests
        for (unsigned n = 1; n <= limit && !testing::Test::HasFatalFailure(); ++n)
        {
            SCOPED_TRACE("operation " + std::to_string(n) + " fails");
            const Outstanding before = FakeZel::outstanding();
            prepare();
            arm(n);
            const int result = call();
            const bool failed = disarm() > 0;
            if (failed)
            {
                EXPECT_EQ(expected(FakeZel::lastFault()).count(result), 1u) << FakeZel::lastFault() << ": " << result;
                EXPECT_EQ(FakeZel::outstanding(), before);
                afterFailure();
                continue;
            }
            EXPECT_EQ(result, 0) << "without a failure";
            afterSuccess();
            EXPECT_EQ(FakeZel::outstanding(), before) << "after the success";
            return n - 1;
        }
        ADD_FAILURE() << "the call does not succeed";
        return limit;
    }
};

#endif
