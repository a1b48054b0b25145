/**
 * The one fault loop. It runs a call with its first fallible operation failing, then with the second, and so on until
 * none is left to fail, and checks after each failure the result code, that the outputs are as promised and that nothing
 * is left over; the run without a failure must succeed.
 *
 *     FaultLoop loop;
 *     loop.prepare = [&] { table = sentinel; };
 *     loop.call = [&] { return KTLoadMessages(path, &table); };
 *     loop.afterFailure = [&] { EXPECT_TRUE(table == sentinel || table == nullptr); };
 *     loop.afterSuccess = [&] { EXPECT_EQ(KTFreeMessages(table), 0); };
 *     EXPECT_EQ(loop.run(), 9u); // operations that were made to fail
 */
#ifndef KELTO_TESTS_SUPPORT_FAULT_LOOP_H
#define KELTO_TESTS_SUPPORT_FAULT_LOOP_H

#include "kelto.h"
#include "support/fake_zel.h"

#include <functional>
#include <gtest/gtest.h>
#include <set>

/** Where faults come from; the platform, unless a test has another source. */
struct FaultSource
{
    /** Lets the n-th operation from here on fail. */
    std::function<void(unsigned n)> arm = [](unsigned n) { FakeZel::failNth(n); };
    /** Takes that back; how many failed. */
    std::function<unsigned()> disarm = [] {
        const unsigned delivered = FakeZel::faultsDelivered();
        FakeZel::clearFaults();
        return delivered;
    };
};

struct FaultLoop
{
    /** Sets the outputs to values that show whether they were written; before every run. */
    std::function<void()> prepare = [] {};
    /** The call under test; its result code. Must leave nothing behind when it fails. */
    std::function<int()> call;
    /** Checks the outputs; FakeZel::lastFault() tells which operation failed. */
    std::function<void()> afterFailure = [] {};
    /** Checks the outputs and releases what the call gave. */
    std::function<void()> afterSuccess = [] {};
    /** The result that the failure of an operation must have, which failed with `code`. */
    std::function<int(Operation, int code)> expected = usualResult;
    /** In its place: the results of which a failure must have one, where the source does not tell what failed. */
    std::set<int> possible = {};
    FaultSource source = {};

    /** Runs the loop; the number of operations that were made to fail. */
    unsigned run() const
    {
        constexpr unsigned limit = 10000; // a call that fails for ever must not hang the tests
        for (unsigned n = 1; n <= limit; ++n)
        {
            SCOPED_TRACE("operation " + std::to_string(n) + " fails");
            const Outstanding before = FakeZel::outstanding();
            prepare();
            FakeZel::clearFaults();
            source.arm(n);
            const int result = call();
            const bool failed = source.disarm() > 0;
            const Operation operation = FakeZel::lastFault();
            if (!failed)
            {
                EXPECT_EQ(result, 0) << "without a failure";
                afterSuccess();
                EXPECT_EQ(FakeZel::outstanding(), before) << "after the success";
                return n - 1;
            }
            if (possible.empty())
                EXPECT_EQ(result, expected(operation, FakeZel::defaultCode)) << "failed: " << operation;
            else
                EXPECT_EQ(possible.count(result), 1u) << "the result " << result;
            EXPECT_EQ(FakeZel::outstanding(), before) << "failed: " << operation;
            afterFailure();
            if (testing::Test::HasFatalFailure())
                return n;
        }
        ADD_FAILURE() << "the call does not succeed after " << limit << " failures";
        return limit;
    }

    /** What the library makes of a failing operation. */
    static int usualResult(Operation operation, int code)
    {
        switch (operation)
        {
        case Operation::Malloc:
            return KT_ERR_NO_MEMORY;
        case Operation::ParserCreate:
            return -1;
        case Operation::FileOpen:
        case Operation::FileRead:
            return code;
        default:
            return KT_ERR_NOT_INITIALIZED;
        }
    }
};

#endif
