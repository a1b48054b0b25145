#include "lifecycle/lifecycle.h"

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/table_list.h"
#include "support/fake_zel.h"
#include "support/message_file_builder.h"

#include <atomic>
#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace
{

void expectStopped()
{
    EXPECT_FALSE(keltoInitialized);
    EXPECT_EQ(keltoRefCount, 0);
    EXPECT_EQ(glbZELHandle, 0);
    for (const void *state : {glbResHandle, tableListMutex, formTableMutex, refCountMutex, ktpLock})
        EXPECT_EQ(state, nullptr);
    EXPECT_EQ(msgTableList, nullptr);
}

/** The platform calls of an action, one a line, as in "MutexCreate tableListMutex 1000"; zeros are left out. */
std::string stepsOf(const std::function<void()> &action)
{
    const std::pair<const void *, const char *> names[] = {{&ktpLock, "ktpLock"},
                                                           {&glbResHandle, "glbResHandle"},
                                                           {&tableListMutex, "tableListMutex"},
                                                           {&formTableMutex, "formTableMutex"},
                                                           {&refCountMutex, "refCountMutex"},
                                                           {refCountMutex, "refCount"}};
    FakeZel::record();
    action();
    std::ostringstream text;
    for (const Call &call : FakeZel::calls())
    {
        text << call.operation;
        for (const auto &[object, name] : names)
            if (object != nullptr && call.object == object)
                text << ' ' << name;
        text << (call.number != 0 ? ' ' + std::to_string(call.number) : "") << '\n';
    }
    return text.str();
}

/** Puts the process into the "C" locale, with an environment that names another. */
struct Locale
{
    Locale() { set("C.UTF-8"); }
    ~Locale() { unsetenv("LC_ALL"), std::setlocale(LC_ALL, "C"); }
    static void set(const char *name) { setenv("LC_ALL", name, 1), std::setlocale(LC_ALL, "C"); }
    static std::string inForce() { return std::setlocale(LC_CTYPE, nullptr); }
};

void inThreads(int number, const std::function<void()> &work)
{
    std::atomic<int> waiting{number};
    std::vector<std::thread> threads;
    for (int i = 0; i < number; ++i)
        threads.emplace_back([&] {
            for (--waiting; waiting > 0;)
                std::this_thread::yield();
            work();
        });
    for (std::thread &thread : threads)
        thread.join();
}

const std::string startSteps[] = {"Startup\n",
                                  "AllocMemTag glbResHandle\n",
                                  "MutexCreate tableListMutex 1000\n",
                                  "MutexCreate formTableMutex 1000\n",
                                  "MutexCreate refCountMutex 1000\n",
                                  "Malloc 24\n"};
const std::string enter = "EnterSpinLock ktpLock\n", leave = "LeaveSpinLock ktpLock\n";
const std::string stopSteps =
    "Free\nMutexDestroy tableListMutex\nMutexDestroy formTableMutex\nMutexDestroy refCountMutex\n"
    "FreeMemTag glbResHandle\n";

} // namespace

TEST(Lifecycle, StartsAndStopsEverythingInOrder)
{
    std::string start = enter;
    for (const std::string &step : startSteps)
        start += step;
    {
        const FakeZel::Observer observer([](const Call &call) {
            EXPECT_EQ(keltoInitialized, call.operation == Operation::LeaveSpinLock) << "only once everything exists";
            EXPECT_EQ(keltoRefCount, call.operation == Operation::EnterSpinLock ? 0 : 1) << call;
        });
        EXPECT_EQ(stepsOf([] { EXPECT_EQ(KTInit(), 0); }), start + leave);
    }
    EXPECT_EQ(glbZELHandle, 0);
    EXPECT_EQ(stepsOf([] { EXPECT_EQ(KTClean(), 0); }), "MutexAcquire refCount\nMutexRelease refCount\n" + stopSteps)
        << "a platform that was given no handle is not cleaned up";
    expectStopped();
}

TEST(Lifecycle, UndoesAStartThatFailsAnywhere)
{
    const std::string undo = stopSteps.substr(stopSteps.find('\n') + 1);
    const size_t tag = undo.find("FreeMemTag"), second = undo.find("MutexDestroy formTableMutex"),
                 third = undo.find("MutexDestroy refCountMutex");
    const std::string undone[] = {
        "",  "", undo.substr(tag), undo.substr(0, second) + undo.substr(tag), undo.substr(0, third) + undo.substr(tag),
        undo};
    std::string tried = enter;
    const Outstanding before = FakeZel::outstanding();
    for (unsigned n = 1; n <= 6; ++n)
    {
        SCOPED_TRACE(startSteps[n - 1]);
        tried += startSteps[n - 1];
        FakeZel::failNth(n);
        EXPECT_EQ(stepsOf([] { EXPECT_EQ(KTInit(), KT_ERR_NOT_INITIALIZED); }), tried + undone[n - 1] + leave);
        EXPECT_EQ(FakeZel::outstanding(), before);
        expectStopped();
        EXPECT_EQ(KTInit(), 0) << "a later call starts from scratch";
        EXPECT_EQ(KTClean(), 0);
    }
}

TEST(Lifecycle, CountsItsUsersAndIgnoresACleanTooMany)
{
    EXPECT_EQ(stepsOf([] { EXPECT_EQ(KTClean() + KTClean(), 0), KeltoClean(); }), "") << "there is nothing to undo";
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(stepsOf([] { EXPECT_EQ(KTInit(), 0); }), enter + leave);
    EXPECT_EQ(keltoRefCount, 2);
    EXPECT_EQ(KTClean(), 0);
    EXPECT_TRUE(keltoInitialized);
    const long list = reinterpret_cast<long>(msgTableList);
    EXPECT_EQ(stepsOf([&] { EXPECT_TRUE(KeltoInit(0) == list && KeltoInit(5) == list); }), "") << "it is started";
    EXPECT_EQ(glbZELHandle, 0);
    EXPECT_EQ(KTClean(), 0);
    expectStopped();
    EXPECT_EQ(KTClean(), 0);
    expectStopped();
}

TEST(Lifecycle, OnlyTheFirstInitSetsTheLocaleAlsoWhereItFails)
{
    const Locale locale;
    FakeZel::fail(Operation::Startup);
    EXPECT_EQ(KTInit(), KT_ERR_NOT_INITIALIZED);
    for (const char *expected : {"C.UTF-8", "C.UTF-8"}) // after a stop, the next one is a first one again
    {
        EXPECT_EQ(Locale::inForce(), expected);
        EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C") << "no other category changes";
        std::setlocale(LC_CTYPE, "C");
        ASSERT_EQ(KTInit(), 0);
        std::setlocale(LC_CTYPE, "C");
        ASSERT_EQ(KTInit(), 0);
        EXPECT_EQ(KTClean() + KTClean(), 0);
        EXPECT_EQ(Locale::inForce(), "C");
        ASSERT_EQ(KTInit(), 0);
        KTClean();
    }
}

TEST(Lifecycle, AStartWithAHandleServesTheFirstInitAndGivesThePlatformBack)
{
    const Locale locale;
    long started = 0;
    const std::string steps = stepsOf([&] { started = KeltoInit(77); });
    EXPECT_EQ(started, reinterpret_cast<long>(msgTableList));
    EXPECT_EQ(steps.substr(0, steps.find("MutexCreate")), "Startup 77\nAllocMemTag glbResHandle 77\n");
    EXPECT_TRUE(keltoInitialized);
    EXPECT_EQ(keltoRefCount, 0);
    EXPECT_EQ(Locale::inForce(), "C");
    EXPECT_EQ(stepsOf([] { EXPECT_EQ(KTInit(), 0); }), enter + leave);
    EXPECT_EQ(Locale::inForce(), "C.UTF-8");
    EXPECT_EQ(KeltoInit(88), 77);
    EXPECT_EQ(stepsOf(KTClean), "MutexAcquire refCount\nMutexRelease refCount\n" + stopSteps + "Cleanup 77\n");
    expectStopped();

    FakeZel::fail(Operation::MutexCreate, 2);
    const std::string failing = stepsOf([] { EXPECT_EQ(KeltoInit(77), 0); });
    EXPECT_EQ(failing.substr(failing.find("MutexDestroy")),
              "MutexDestroy tableListMutex\nFreeMemTag glbResHandle\nCleanup 77\n");
    expectStopped();
}

TEST(Lifecycle, TheLastCleanReleasesLoadedTables)
{
    FakeZel::file("m.xlf", MessageFile().unit(1, "one").unit(3, "three").xml());
    ASSERT_EQ(KTInit() + KTInit(), 0);
    char path[] = "m.xlf";
    char *message = nullptr;
    MessageTable *tables[3];
    for (MessageTable *&table : tables)
        ASSERT_EQ(KTLoadMessages(path, &table), 0);
    EXPECT_EQ(msgTableList->TableCount(), 3u);
    EXPECT_EQ(KTFreeMessages(tables[1]), 0);
    EXPECT_EQ(KTClean(), 0);
    EXPECT_EQ(KTGetMessage(tables[2], 3, &message), 0) << "one user is left";
    EXPECT_STREQ(message, "three");
    EXPECT_EQ(KTClean(), 0);
    expectStopped(); // and the test's end finds no block left
}

TEST(StoppedLibrary, RefusesWhatUsesSharedStateAndWritesNothing)
{
    static char path[] = "m.xlf", format[] = "abc", version[20];
    static auto *const noTable = reinterpret_cast<MessageTable *>(8);
    static auto *const noFormTable = reinterpret_cast<formTable *>(8);
    static MessageTable *table;
    static formTable *copy;
    static char *message;
    static unsigned long units;
    static UCS2 text[10];
    static void *none[] = {nullptr};
    FakeZel::file(path, MessageFile().unit(1, "one").xml());
    struct
    {
        const char *name;
        int (*call)();
    } const rows[] = {
        {"table", [] { return KTGetBuiltInFormTable(1, &copy); }},
        {"encoder", [] { return KTRegisterEncoder(nullptr); }},
        {"free a copy", [] { return KTFreeFormTable(noFormTable); }},
        {"free null", [] { return KTFreeFormTable(nullptr); }},
        {"format", [] { return KTFormatString(nullptr, false, &units, text, format); }},
        {"by pointers", [] { return KTvpFormatString(nullptr, false, &units, text, format, none); }},
        {"load", [] { return KTLoadMessages(path, &table); }},
        {"load raw", [] { return KTLoadRawMessages(path, &table); }},
        {"load compiled", [] { return KTLoadCompiledMessages(path, &table); }},
        {"load data", [] { return KTLoadCompiledData(path, sizeof path, &table); }},
        {"compile", [] { return KTCompileMessages(noTable, &units, nullptr); }},
        {"get", [] { return KTGetMessage(noTable, 1, &message); }},
        {"next", [] { return KTNextMessage(noTable, 0, nullptr, &message); }},
        {"select", [] { return KTSelectMessage(noTable, nullptr, nullptr, nullptr, 0, &message); }},
        {"prepare", [] { return KTPrepareMessage(noTable, 1, nullptr, nullptr, nullptr); }},
        {"explain", [] { return KTExplainMessage(noTable, 1, nullptr, nullptr); }},
        {"variants", [] { return KTGetVariantFormTable(&copy); }},
        {"info", [] { return KTTableInfo(noTable, nullptr); }},
        {"free", [] { return KTFreeMessages(noTable); }},
        {"version", [] { return KTGetMsgFileVer(path, version); }},
    };
    for (const bool wasStarted : {false, true})
    {
        ASSERT_EQ(wasStarted ? KTInit() + KTClean() : 0, 0);
        for (const auto &row : rows)
        {
            SCOPED_TRACE(row.name);
            table = noTable, copy = noFormTable, message = path, version[0] = '?', units = 10, text[0] = u'x';
            EXPECT_EQ(stepsOf([&] { EXPECT_EQ(row.call(), KT_ERR_NOT_INITIALIZED); }), "");
            EXPECT_TRUE(table == noTable && copy == noFormTable && message == path && version[0] == '?' &&
                        units == 10 && text[0] == u'x');
        }
    }
    EXPECT_EQ(KTGetFormTableSize(), 0) << "needs no started library";
}

TEST(LifecycleInThreads, ConcurrentFirstInitsStartOnceAndTheLastCleanStops)
{
    for (int round = 0; round < 20; ++round)
    {
        FakeZel::record();
        inThreads(8, [] { EXPECT_EQ(KTInit(), 0); });
        EXPECT_EQ(FakeZel::count(Operation::Startup), 1u);
        EXPECT_EQ(keltoRefCount, 8);
        inThreads(8, [] {
            for (int i = 0; i < 100; ++i) // pairs, while others have it
                EXPECT_EQ(KTInit() + KTClean(), 0);
        });
        EXPECT_TRUE(keltoInitialized);
        EXPECT_EQ(keltoRefCount, 8);
        inThreads(8, [] { EXPECT_EQ(KTClean(), 0); });
        EXPECT_EQ(FakeZel::count(Operation::FreeMemTag), 1u);
        expectStopped();
    }
}

TEST(LifecycleInThreads, UsesThatTakeTurnsStartAndStopWhileOthersDo)
{
    inThreads(8, [] {
        for (int i = 0; i < 100; ++i)
        {
            formTable *table = nullptr;
            EXPECT_EQ(KTBeginUse(), 0);
            EXPECT_EQ(KTGetBuiltInFormTable(0, &table), 0);
            KTEndUse();
        }
    });
    expectStopped();
}
