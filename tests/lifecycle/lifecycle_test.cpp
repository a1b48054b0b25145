#include "lifecycle/lifecycle.h"

#include "kelto.h"
#include "lifecycle/state.h"
#include "message/table_list.h"
#include "support/fake_zel.h"
#include "support/fault_loop.h"
#include "support/message_file_builder.h"

#include <atomic>
#include <clocale>
#include <cstdlib>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

using testing::AllOf;
using testing::ElementsAreArray;
using testing::Field;
using testing::Matcher;

namespace
{

Matcher<Call> called(Operation operation, const void *object, uint64_t number = 0)
{
    return AllOf(Field("operation", &Call::operation, operation), Field("object", &Call::object, object),
                 Field("number", &Call::number, number));
}

Matcher<Call> called(Operation operation)
{
    return Field("operation", &Call::operation, operation);
}

void expectStopped()
{
    EXPECT_FALSE(keltoInitialized);
    EXPECT_EQ(keltoRefCount, 0);
    EXPECT_EQ(glbZELHandle, 0);
    EXPECT_EQ(glbResHandle, nullptr);
    EXPECT_EQ(tableListMutex, nullptr);
    EXPECT_EQ(formTableMutex, nullptr);
    EXPECT_EQ(refCountMutex, nullptr);
    EXPECT_EQ(msgTableList, nullptr);
    EXPECT_EQ(ktpLock, nullptr) << "the spin lock is held";
}

std::string characterLocale()
{
    return std::setlocale(LC_CTYPE, nullptr);
}

/** Puts the process into the "C" locale, with an environment that names another. */
class Locale
{
public:
    Locale()
    {
        setenv("LC_ALL", "C.UTF-8", 1);
        std::setlocale(LC_ALL, "C");
    }
    ~Locale()
    {
        unsetenv("LC_ALL");
        std::setlocale(LC_ALL, "C");
    }
    Locale(const Locale &) = delete;
    Locale &operator=(const Locale &) = delete;
};

void inThreads(int number, const std::function<void()> &work)
{
    std::atomic<int> waiting{number};
    std::vector<std::thread> threads;
    for (int i = 0; i < number; ++i)
        threads.emplace_back([&] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            work();
        });
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace

TEST(Lifecycle, StartsAndStopsEverythingInOrder)
{
    FakeZel::record();
    ASSERT_EQ(KTInit(), 0);
    EXPECT_TRUE(keltoInitialized);
    EXPECT_EQ(keltoRefCount, 1);
    EXPECT_EQ(glbZELHandle, 0);
    void *const tag = glbResHandle;
    void *const countMutex = refCountMutex;
    EXPECT_NE(tag, nullptr);
    EXPECT_THAT(FakeZel::calls(),
                ElementsAreArray({called(Operation::EnterSpinLock, &ktpLock), called(Operation::Startup, nullptr, 0),
                                  called(Operation::AllocMemTag, &glbResHandle, 0),
                                  called(Operation::MutexCreate, &tableListMutex, 1000),
                                  called(Operation::MutexCreate, &formTableMutex, 1000),
                                  called(Operation::MutexCreate, &refCountMutex, 1000),
                                  called(Operation::Malloc, tag, sizeof(tableItem)),
                                  called(Operation::LeaveSpinLock, &ktpLock)}));

    FakeZel::record();
    EXPECT_EQ(KTClean(), 0);
    EXPECT_THAT(FakeZel::calls(),
                ElementsAreArray(
                    {called(Operation::MutexAcquire, countMutex), called(Operation::MutexRelease, countMutex),
                     called(Operation::Free), called(Operation::MutexDestroy, &tableListMutex),
                     called(Operation::MutexDestroy, &formTableMutex), called(Operation::MutexDestroy, &refCountMutex),
                     called(Operation::FreeMemTag, &glbResHandle)}))
        << "a platform that was given no handle is not cleaned up";
    expectStopped();
}

TEST(Lifecycle, IsStartedOnlyOnceEverythingExists)
{
    FakeZel::observe([](const Call &call) {
        EXPECT_EQ(keltoInitialized, call.operation == Operation::LeaveSpinLock) << call;
        EXPECT_EQ(keltoRefCount, call.operation == Operation::EnterSpinLock ? 0 : 1) << call;
    });
    ASSERT_EQ(KTInit(), 0);
    FakeZel::reset();
    EXPECT_EQ(KTClean(), 0);
}

TEST(Lifecycle, UndoesAStartThatFails)
{
    using O = Operation;
    struct
    {
        const char *label;
        std::vector<Operation> steps; // inside the spin lock: up to the one that fails, then what undoes them
    } const rows[] = {
        {"start-up", {O::Startup}},
        {"memory tag", {O::Startup, O::AllocMemTag}},
        {"first mutex", {O::Startup, O::AllocMemTag, O::MutexCreate, O::FreeMemTag}},
        {"second mutex", {O::Startup, O::AllocMemTag, O::MutexCreate, O::MutexCreate, O::MutexDestroy, O::FreeMemTag}},
        {"third mutex",
         {O::Startup, O::AllocMemTag, O::MutexCreate, O::MutexCreate, O::MutexCreate, O::MutexDestroy, O::MutexDestroy,
          O::FreeMemTag}},
        {"list",
         {O::Startup, O::AllocMemTag, O::MutexCreate, O::MutexCreate, O::MutexCreate, O::Malloc, O::MutexDestroy,
          O::MutexDestroy, O::MutexDestroy, O::FreeMemTag}},
    };
    unsigned step = 0;
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.label);
        std::vector<Operation> expected = row.steps;
        expected.insert(expected.begin(), O::EnterSpinLock);
        expected.push_back(O::LeaveSpinLock);

        const Outstanding before = FakeZel::outstanding();
        FakeZel::record();
        FakeZel::failNth(++step);
        EXPECT_EQ(KTInit(), KT_ERR_NOT_INITIALIZED);
        EXPECT_EQ(FakeZel::operations(), expected);
        EXPECT_EQ(FakeZel::outstanding(), before);
        expectStopped();

        FakeZel::reset();
        FakeZel::record();
        EXPECT_EQ(KTInit(), 0) << "a later call starts from scratch";
        EXPECT_EQ(FakeZel::count(O::Startup), 1u);
        EXPECT_EQ(KTClean(), 0);
    }
}

TEST(Lifecycle, EveryFailureOfAStartIsReported)
{
    FaultLoop loop;
    loop.call = [] { return KTInit(); };
    loop.expected = [](Operation, int) { return static_cast<int>(KT_ERR_NOT_INITIALIZED); };
    loop.afterFailure = expectStopped;
    loop.afterSuccess = [] { EXPECT_EQ(KTClean(), 0); };
    EXPECT_EQ(loop.run(), 6u);
}

TEST(Lifecycle, CountsItsUsers)
{
    ASSERT_EQ(KTInit(), 0);
    FakeZel::record();
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(FakeZel::operations(), (std::vector<Operation>{Operation::EnterSpinLock, Operation::LeaveSpinLock}));
    EXPECT_EQ(keltoRefCount, 2);

    EXPECT_EQ(KTClean(), 0);
    EXPECT_TRUE(keltoInitialized);
    EXPECT_EQ(keltoRefCount, 1);
    formTable *table = nullptr;
    EXPECT_EQ(KTGetBuiltInFormTable(0, &table), 0);

    EXPECT_EQ(KTClean(), 0);
    expectStopped();
}

TEST(Lifecycle, IgnoresACleanWithoutAnInit)
{
    FakeZel::record();
    EXPECT_EQ(KTClean(), 0);
    EXPECT_EQ(KTClean(), 0);
    EXPECT_TRUE(FakeZel::calls().empty()) << "there is nothing to undo";
    expectStopped();

    ASSERT_EQ(KTInit(), 0);
    EXPECT_TRUE(keltoInitialized);
    EXPECT_EQ(KTClean(), 0);
    EXPECT_EQ(KTClean(), 0);
    expectStopped();
}

TEST(Lifecycle, CleansWhatWasNeverStarted)
{
    FakeZel::record();
    KeltoClean();
    EXPECT_TRUE(FakeZel::calls().empty());
    expectStopped();
}

TEST(Lifecycle, OnlyTheFirstInitSetsTheLocale)
{
    const Locale locale;
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(characterLocale(), "C.UTF-8");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C") << "no other category changes";

    std::setlocale(LC_CTYPE, "C");
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(characterLocale(), "C");
    EXPECT_EQ(KTClean(), 0);
    EXPECT_EQ(KTClean(), 0);
    EXPECT_EQ(characterLocale(), "C");

    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(characterLocale(), "C.UTF-8") << "after a stop, the next one is a first one again";
    EXPECT_EQ(KTClean(), 0);
}

TEST(Lifecycle, AFailingFirstInitSetsTheLocaleToo)
{
    const Locale locale;
    FakeZel::fail(Operation::Startup);
    EXPECT_EQ(KTInit(), KT_ERR_NOT_INITIALIZED);
    EXPECT_EQ(characterLocale(), "C.UTF-8");
}

TEST(Lifecycle, AStartWithAHandleServesTheFirstInit)
{
    const Locale locale;
    FakeZel::record();
    const long started = KeltoInit(77);
    EXPECT_NE(started, 0);
    EXPECT_EQ(started, reinterpret_cast<long>(msgTableList));
    EXPECT_EQ(glbZELHandle, 77);
    EXPECT_TRUE(keltoInitialized);
    EXPECT_EQ(keltoRefCount, 0);
    EXPECT_THAT(FakeZel::calls(), testing::Contains(called(Operation::Startup, nullptr, 77)));
    EXPECT_THAT(FakeZel::calls(), testing::Contains(called(Operation::AllocMemTag, &glbResHandle, 77)));
    EXPECT_EQ(characterLocale(), "C");

    FakeZel::record();
    EXPECT_EQ(KTInit(), 0);
    EXPECT_EQ(FakeZel::operations(), (std::vector<Operation>{Operation::EnterSpinLock, Operation::LeaveSpinLock}));
    EXPECT_EQ(characterLocale(), "C.UTF-8");
    EXPECT_EQ(KeltoInit(88), 77);

    FakeZel::record();
    EXPECT_EQ(KTClean(), 0);
    ASSERT_FALSE(FakeZel::calls().empty());
    EXPECT_THAT(FakeZel::calls().back(), called(Operation::Cleanup, nullptr, 77)) << "the platform goes last";
    expectStopped();
}

TEST(Lifecycle, AFailingStartWithAHandleGivesThePlatformBack)
{
    FakeZel::record();
    FakeZel::fail(Operation::MutexCreate, 2);
    EXPECT_EQ(KeltoInit(77), 0);
    EXPECT_EQ(FakeZel::operations(),
              (std::vector<Operation>{Operation::Startup, Operation::AllocMemTag, Operation::MutexCreate,
                                      Operation::MutexCreate, Operation::MutexDestroy, Operation::FreeMemTag,
                                      Operation::Cleanup}));
    expectStopped();
}

TEST(Lifecycle, AStartWhileStartedDoesNothing)
{
    ASSERT_EQ(KTInit(), 0);
    const long list = reinterpret_cast<long>(msgTableList);
    FakeZel::record();
    for (const long handle : {0L, 5L})
        EXPECT_EQ(KeltoInit(handle), list);
    EXPECT_TRUE(FakeZel::calls().empty());
    EXPECT_EQ(glbZELHandle, 0);
    EXPECT_EQ(KTClean(), 0);
}

TEST(Lifecycle, TheLastCleanReleasesLoadedTables)
{
    FakeZel::file("m.xlf", MessageFile().unit(1, "one").unit(3, "three").xml());
    ASSERT_EQ(KTInit(), 0);
    const Outstanding started = FakeZel::outstanding();
    char path[] = "m.xlf";
    MessageTable *tables[3];
    for (MessageTable *&table : tables)
        ASSERT_EQ(KTLoadMessages(path, &table), 0);
    EXPECT_EQ(msgTableList->TableCount(), 3u);
    EXPECT_EQ(KTFreeMessages(tables[1]), 0);

    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(KTClean(), 0);
    char *message = nullptr;
    EXPECT_EQ(KTGetMessage(tables[2], 3, &message), 0) << "one user is left";
    EXPECT_STREQ(message, "three");

    EXPECT_EQ(KTClean(), 0);
    expectStopped();
    EXPECT_EQ(FakeZel::outstanding().blocks, started.blocks - 1) << "the tables, and the list's own block";
}

TEST(StoppedLibrary, RefusesWhatUsesSharedStateAndWritesNothing)
{
    static char path[] = "m.xlf";
    static char format[] = "abc";
    static auto *const noTable = reinterpret_cast<MessageTable *>(8);
    static auto *const noFormTable = reinterpret_cast<formTable *>(8);
    FakeZel::file(path, MessageFile().unit(1, "one").xml());

    struct Outputs
    {
        MessageTable *table = noTable;
        formTable *conversions = noFormTable;
        char *message = path;
        char version[20] = "unset";
        unsigned long units = 10;
        UCS2 text[10] = {u'x', 0};
        void *arguments[1] = {nullptr};
    };
    const auto withList = [](Outputs &out, auto call, ...) {
        va_list arguments;
        va_start(arguments, call);
        const int result = call(out, arguments);
        va_end(arguments);
        return result;
    };
    struct
    {
        const char *name;
        std::function<int(Outputs &)> call;
    } const rows[] = {
        {"KTGetBuiltInFormTable", [](Outputs &out) { return KTGetBuiltInFormTable(1, &out.conversions); }},
        {"KTRegisterEncoder", [](Outputs &) { return KTRegisterEncoder(nullptr); }},
        {"KTFreeFormTable", [](Outputs &) { return KTFreeFormTable(noFormTable); }},
        {"KTFreeFormTable of null", [](Outputs &) { return KTFreeFormTable(nullptr); }},
        {"KTFormatString", [](Outputs &out) { return KTFormatString(nullptr, false, &out.units, out.text, format); }},
        {"KTFormatStringWithPassThru",
         [](Outputs &out) {
             return KTFormatStringWithPassThru(nullptr, false, noFormTable, nullptr, &out.units, out.text, format);
         }},
        {"KTvFormatString",
         [&](Outputs &out) {
             return withList(out, [](Outputs &o, va_list list) {
                 return KTvFormatString(nullptr, false, &o.units, o.text, format, list);
             });
         }},
        {"KTvFormatStringWithPassThru",
         [&](Outputs &out) {
             return withList(out, [](Outputs &o, va_list list) {
                 return KTvFormatStringWithPassThru(nullptr, false, noFormTable, nullptr, &o.units, o.text, format,
                                                    list);
             });
         }},
        {"KTvpFormatString",
         [](Outputs &out) { return KTvpFormatString(nullptr, false, &out.units, out.text, format, out.arguments); }},
        {"KTvpFormatStringWithPassThru",
         [](Outputs &out) {
             return KTvpFormatStringWithPassThru(nullptr, false, noFormTable, nullptr, &out.units, out.text, format,
                                                 out.arguments);
         }},
        {"KTLoadMessages", [](Outputs &out) { return KTLoadMessages(path, &out.table); }},
        {"KTLoadRawMessages", [](Outputs &out) { return KTLoadRawMessages(path, &out.table); }},
        {"KTGetMessage", [](Outputs &out) { return KTGetMessage(noTable, 1, &out.message); }},
        {"KTFreeMessages", [](Outputs &) { return KTFreeMessages(noTable); }},
        {"KTGetMsgFileVer", [](Outputs &out) { return KTGetMsgFileVer(path, out.version); }},
    };

    const auto refuseAll = [&] {
        for (const auto &row : rows)
        {
            SCOPED_TRACE(row.name);
            Outputs out;
            FakeZel::record();
            EXPECT_EQ(row.call(out), KT_ERR_NOT_INITIALIZED);
            EXPECT_TRUE(FakeZel::calls().empty());
            EXPECT_EQ(out.table, noTable);
            EXPECT_EQ(out.conversions, noFormTable);
            EXPECT_EQ(out.message, path);
            EXPECT_STREQ(out.version, "unset");
            EXPECT_EQ(out.units, 10u);
            EXPECT_EQ(std::u16string(out.text), u"x");
        }
    };
    refuseAll();
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(KTClean(), 0);
    refuseAll();
}

TEST(StoppedLibrary, ServesWhatUsesNoSharedState)
{
    FakeZel::record();
    EXPECT_EQ(KTGetFormTableSize(), 0);
    EXPECT_EQ(KTMsgLen("ab\0"), 2);
    char copy[4] = "xyz";
    const char message[] = "ab\0";
    EXPECT_EQ(KTMsgCpy(message, copy), message + 2);
    EXPECT_EQ(std::string(copy, 4), std::string("ab\0\0", 4));
    UCS2 wide[10];
    size_t units = 10;
    EXPECT_EQ(KTUTF8ToUCS2("a\xC3\xA4", &units, wide), 0);
    EXPECT_EQ(std::u16string(wide), u"a\u00E4");
    EXPECT_EQ(KTMultiByteStrclen("shift_jis", "a\x82\xA0"), 2);
    EXPECT_TRUE(FakeZel::calls().empty()) << "neither the tag nor a lock";
}

TEST(LifecycleInThreads, ConcurrentFirstInitsStartOnce)
{
    constexpr int number = 8;
    for (int round = 0; round < 20; ++round)
    {
        FakeZel::record();
        inThreads(number, [] { EXPECT_EQ(KTInit(), 0); });
        EXPECT_EQ(FakeZel::count(Operation::Startup), 1u);
        EXPECT_EQ(keltoRefCount, number);
        EXPECT_TRUE(keltoInitialized);

        inThreads(number, [] { EXPECT_EQ(KTClean(), 0); });
        EXPECT_EQ(FakeZel::count(Operation::FreeMemTag), 1u);
        expectStopped();
    }
}

TEST(LifecycleInThreads, PairsLeaveTheLibraryStartedWhileAnotherUserHasIt)
{
    ASSERT_EQ(KTInit(), 0);
    void *const tag = glbResHandle;
    MsgTableList *const list = msgTableList;
    inThreads(4, [] {
        for (int i = 0; i < 500; ++i)
        {
            EXPECT_EQ(KTInit(), 0);
            formTable *table = nullptr;
            EXPECT_EQ(KTGetBuiltInFormTable(0, &table), 0);
            EXPECT_EQ(KTClean(), 0);
        }
    });
    EXPECT_EQ(keltoRefCount, 1);
    EXPECT_TRUE(keltoInitialized);
    EXPECT_EQ(glbResHandle, tag);
    EXPECT_EQ(msgTableList, list);
    EXPECT_EQ(KTClean(), 0);
    expectStopped();
}
