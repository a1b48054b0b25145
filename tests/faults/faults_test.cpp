// Every operation that allocates, opens, reads or locks, with each of these failing in turn: first the platform's, then the
// allocations that the library, expat and ICU make of the C heap.

#include "faults/heap_faults.h"
#include "message/loading.h"
#include "support/fault_loop.h"
#include "support/ucs2.h"

#include <array>
#include <cstdarg>
#include <cstdlib>
#include <unistd.h>

namespace
{

char messagePath[] = "/tmp/kelto-faults-XXXXXX";

constexpr int untouchedByte = '?';
auto *const untouchedTable = reinterpret_cast<MessageTable *>(0x10);

/** Where the calls of the rows put their results. */
struct Outputs
{
    MessageTable *table;
    std::array<char, 20> version;
    Ucs2Buffer text{600};
    unsigned long size;
    KTParameter *parameters;
    formTable *copy;
};

Outputs outputs;

void prepare()
{
    outputs.table = untouchedTable;
    outputs.version.fill(untouchedByte);
    outputs.text = Ucs2Buffer(600);
    outputs.size = outputs.text.capacity();
    outputs.parameters = nullptr;
    outputs.copy = &builtInFormTable;
    FakeZel::record();
}

void expectTableUntouched()
{
    EXPECT_TRUE(outputs.table == untouchedTable || outputs.table == nullptr);
}

void expectTextUntouched()
{
    EXPECT_TRUE(outputs.text.untouched() ? outputs.size == outputs.text.capacity()
                                         : outputs.size == 0 && outputs.text[0] == 0);
}

void freeTable()
{
    char *message = nullptr;
    EXPECT_EQ(KTGetMessage(outputs.table, 2, &message), 0);
    EXPECT_STREQ(message, "%s[1]");
    EXPECT_EQ(KTFreeMessages(outputs.table), 0);
}

// A long text, an own width, and a number longer than the formatter's own buffer: each takes memory of its own.
constexpr UCS2 manyPositions[] = u"%d[12]%d[11]%d[10]%d[9]%d[8]%d[7]%d[6]%d[5]%d[4]%d[3]%d[2]%d[1]";
char formatText[] = "%s[1]%U[2]%*d[3]%E[4]%DND[5]%D[6]%.400Lf[7]%s[8]%s[9]%s[10]%s[11]";

int callList(formTable *table, ...)
{
    va_list arguments;
    va_start(arguments, table);
    const int result = KTvFormatStringWithPassThru(nullptr, true, table, nullptr, &outputs.size, outputs.text.data(),
                                                   formatText, arguments);
    va_end(arguments);
    return result;
}

int formatList()
{
    return callList(&builtInFormTable, "a", u"b", 4, 5, "e", u"n", "1", 1.5L, "", "", "", "");
}

int formatPointers()
{
    int width = 4, number = 5;
    long double real = 1.5L;
    std::array<char, 2> s = {"a"};
    std::array<UCS2, 2> u = {u"b"};
    void *slots[] = {s.data(), u.data(), &width,   &number,  s.data(), u.data(), s.data() + 1,
                     &real,    s.data(), s.data(), s.data(), s.data(), nullptr};
    return KTvpFormatString(nullptr, true, &outputs.size, outputs.text.data(), formatText, slots);
}

struct Row
{
    const char *label;
    std::function<int()> call;
    std::function<void()> afterFailure, afterSuccess;
    std::set<int> heapFailures; // what the call may return when the heap fails; none: it asks the platform only
    bool isStartUp = false;
};

// No parser; a parser that runs out of memory and so takes no more of the file; a file without its buffer; the rest.
const std::set<int> fileFailures = {-1, KT_ERR_BAD_MSG_FILE, KT_ERR_FILE_NOT_OPENED, KT_ERR_NO_MEMORY};

std::vector<Row> rows()
{
    const auto nothing = [] {};
    const auto emptyVersion = [] { EXPECT_STREQ(outputs.version.data(), ""); };
    const auto fullVersion = [] { EXPECT_STREQ(outputs.version.data(), "1.0"); };
    const auto textWritten = [] { EXPECT_EQ(outputs.text.text().size(), outputs.size); };
    const auto noParameters = [] { EXPECT_EQ(outputs.parameters, nullptr); };
    return {
        {"KTInit", [] { return KTInit(); }, nothing, [] { KTClean(); }, {KT_ERR_NOT_INITIALIZED}, true},
        {"KTLoadMessages", [] { return KTLoadMessages(messagePath, &outputs.table); }, expectTableUntouched, freeTable,
         fileFailures},
        {"KTLoadRawMessages", [] { return KTLoadRawMessages(messagePath, &outputs.table); }, expectTableUntouched,
         [] { EXPECT_EQ(KTFreeMessages(outputs.table), 0); }, fileFailures},
        {"KTGetMsgFileVer", [] { return KTGetMsgFileVer(messagePath, outputs.version.data()); }, emptyVersion,
         fullVersion, fileFailures},
        {"KTvFormatStringWithPassThru", formatList, expectTextUntouched, textWritten, {}},
        {"KTvpFormatString", formatPointers, expectTextUntouched, textWritten, {}},
        {"checkSyntax",
         [] { return checkSyntax(manyPositions, nullptr, &outputs.parameters); },
         noParameters,
         [] { ZEL_free(outputs.parameters); },
         {}},
        {"KTGetBuiltInFormTable",
         [] { return KTGetBuiltInFormTable(3, &outputs.copy); },
         [] { EXPECT_EQ(outputs.copy, nullptr); },
         [] { EXPECT_EQ(KTFreeFormTable(outputs.copy), 0); },
         {}},
    };
}

class Faults : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const int file = mkstemp(messagePath);
        const std::string xml = MessageFile().unit(2, placeholder("%s", "1"), note(std::string(700, 'n'))).xml();
        ASSERT_EQ(write(file, xml.data(), xml.size()), static_cast<ssize_t>(xml.size()));
        close(file);
    }
    static void TearDownTestSuite() { unlink(messagePath); }

    /** Runs a row with the library started, unless it starts it. */
    static void run(const Row &row, FaultLoop &loop, const std::function<void()> &afterEachFailure)
    {
        SCOPED_TRACE(row.label);
        ASSERT_EQ(row.isStartUp ? 0 : KTInit(), 0);
        const auto expectLocksReleased = [] {
            EXPECT_EQ(FakeZel::count(Operation::MutexAcquire), FakeZel::count(Operation::MutexRelease));
            EXPECT_EQ(FakeZel::count(Operation::EnterSpinLock), FakeZel::count(Operation::LeaveSpinLock));
        };
        loop.prepare = prepare;
        loop.call = row.call;
        loop.afterFailure = [&] {
            afterEachFailure();
            row.afterFailure();
            expectLocksReleased();
        };
        loop.afterSuccess = [&] {
            expectLocksReleased();
            row.afterSuccess();
        };
        EXPECT_GT(loop.run(), 0u) << "operations that failed";
        if (!row.isStartUp)
            KTClean();
    }
};

TEST_F(Faults, OfThePlatformAreReportedAndUndone)
{
    for (const Row &row : rows())
    {
        FaultLoop loop;
        if (row.isStartUp)
            loop.expected = [](Operation) { return std::set<int>{KT_ERR_NOT_INITIALIZED}; };
        run(row, loop, [] {});
    }
}

TEST_F(Faults, OfTheHeapAreReportedAndUndone)
{
    if (!HeapFaults::arePossible())
        GTEST_SKIP() << "the sanitizer's heap does not fail";
    for (const Row &row : rows())
    {
        if (row.heapFailures.empty())
            continue;
        FaultLoop loop;
        loop.expected = [&](Operation) { return row.heapFailures; };
        loop.arm = HeapFaults::arm;
        loop.disarm = HeapFaults::disarm;
        run(row, loop, [] { EXPECT_EQ(HeapFaults::outstanding(), 0) << "blocks left over"; });
    }
}

} // namespace
