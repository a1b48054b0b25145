/**
 * The platform as the tests see it. A test program defines every ZEL_ operation itself, and XML_ParserCreate() with them,
 * so the library calls these; each goes on to the real one unless a test has told it otherwise. A test can
 *
 * - let operations fail: FakeZel::fail(Operation::Malloc, 2) is the second allocation from here on;
 * - serve files from memory: FakeZel::file("messages.xlf", bytes).readError(3, -42);
 * - see what was called: FakeZel::record(), then FakeZel::calls(); or act in the middle of a call: FakeZel::observe().
 *
 * Every test starts with none of this in force, and fails when blocks, files, mutexes, tags or parsers are left over at
 * its end that did not exist at its beginning. Blocks are handed out dirty. All of it may be used from many threads; while
 * nothing is asked for, an operation costs no more than a counter or two, and orders no memory between threads that the
 * real one would not order.
 */
#ifndef KELTO_TESTS_SUPPORT_FAKE_ZEL_H
#define KELTO_TESTS_SUPPORT_FAKE_ZEL_H

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

enum class Operation
{
    Startup,
    Cleanup,
    AllocMemTag,
    FreeMemTag,
    Malloc,
    Free,
    MutexCreate,
    MutexDestroy,
    MutexAcquire,
    MutexRelease,
    EnterSpinLock,
    LeaveSpinLock,
    FileOpen,
    FileRead,
    FileClose,
    ParserCreate,
    ParserFree
};

std::ostream &operator<<(std::ostream &out, Operation operation);

/** One call as the library made it; what an operation does not have is zero or empty. */
struct Call
{
    Operation operation;
    const void *object = nullptr; // the tag, mutex, lock, block or handle; for creation and destruction its address
    uint64_t number = 0;          // a block's or read's size, a mutex's parameter, the platform handle, a file's mode
    uint64_t offset = 0;          // the position of a read
    std::string path;             // of a file that is opened
};

std::ostream &operator<<(std::ostream &out, const Call &call);

/** The objects that exist: created and not yet destroyed. */
struct Outstanding
{
    long blocks = 0;
    long files = 0;
    long mutexes = 0;
    long tags = 0;
    long parsers = 0;

    bool operator==(const Outstanding &other) const;
};

std::ostream &operator<<(std::ostream &out, const Outstanding &outstanding);

/** A file in memory, and how reading it goes. Reads are counted from 1 over all passes of one opening. */
class FakeFile
{
public:
    explicit FakeFile(std::string bytes) : m_bytes(std::move(bytes)) {}

    /** What every pass after the first finds instead; a pass begins with a read at position 0. */
    FakeFile &thenBytes(std::string bytes);
    /** The n-th read hands out at most this many bytes. */
    FakeFile &shortRead(unsigned n, unsigned long bytes);
    /** The n-th read fails. */
    FakeFile &readError(unsigned n, int code);

    /** Puts this many blanks into the file, in front of the byte at this position; they take no memory. */
    FakeFile &withBlanks(uint64_t position, uint64_t count);

    /** Serves one read as ZEL_FileRead() does. */
    int read(unsigned pass, unsigned n, uint64_t *offset, void *buffer, unsigned long *length) const;

private:
    std::string m_bytes;
    std::shared_ptr<std::string> m_laterBytes;
    std::map<unsigned, unsigned long> m_shortReads;
    std::map<unsigned, int> m_errors;
    uint64_t m_blanksAt = 0, m_blanks = 0;
};

class FakeZel
{
public:
    FakeZel() = delete;

    /** A negative code that no real operation has, to be seen passed through. */
    static constexpr int defaultCode = -4242;

    /** Forgets faults, files, records and observers; the counts of what exists stay. Done before every test. */
    static void reset();

    /** Lets the n-th call of an operation from here on fail once (n from 1): null for Malloc, else with the code. */
    static void fail(Operation operation, unsigned n = 1, int code = defaultCode);
    /** Lets the n-th and every later call of an operation fail. */
    static void failFrom(Operation operation, unsigned n = 1, int code = defaultCode);
    /** Lets the n-th fallible operation from here on fail once, whichever it is. */
    static void failNth(unsigned n, int code = defaultCode);
    /** Lets the next opening fail with the code and store an open handle nevertheless, which the caller must close. */
    static void failOpenKeepingHandle(int code = defaultCode);
    /** Takes the faults back; files, records and observers stay. */
    static void clearFaults();
    /** How many calls have failed on request since the last reset() or clearFaults(). */
    static unsigned faultsDelivered();
    /** The operation that failed last on request. */
    static Operation lastFault();

    /** Whether an operation can fail: start-up, tag, block, mutex, opening, reading, parser. */
    static bool isFallible(Operation operation);

    /** Serves this name from memory; other names go to the real file system. */
    static FakeFile &file(const std::string &name, std::string bytes);

    /** Begins to note calls, with an empty list. */
    static void record();
    /** The calls noted so far. */
    static std::vector<Call> calls();
    /** The operations of the calls noted so far. */
    static std::vector<Operation> operations();
    /** How many calls of an operation were noted. */
    static unsigned count(Operation operation);

    /** Has the function called at the beginning of each operation, on the thread that makes the call. */
    static void observe(std::function<void(const Call &)> observer);

    static Outstanding outstanding();
};

#endif
