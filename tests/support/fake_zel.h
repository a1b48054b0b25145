/**
 * The platform as the tests see it. A test program defines every ZEL_ operation itself, and XML_ParserCreate() with
 * them, so the library calls these; each goes on to the real one unless a test has told it otherwise. A test can
 *
 * - let operations fail: FakeZel::fail(Operation::Malloc, 2) is the second block of the memory tag from here on
 *   (allocations that do not come from it fail in heap_faults.h);
 * - serve files from memory: FakeZel::file("messages.xlf", bytes);
 * - see what was called: FakeZel::record(), then FakeZel::calls(); or act in the middle of a call: FakeZel::Observer.
 *
 * Every test starts with none of this in force, and fails when blocks, files, mutexes, tags or parsers are left over at
 * its end. Blocks are handed out dirty. All of it may be used from many threads; while nothing is asked for, an
 * operation costs no more than a counter or two, and orders no memory between threads that the real one would not
 * order.
 */
#ifndef KELTO_TESTS_SUPPORT_FAKE_ZEL_H
#define KELTO_TESTS_SUPPORT_FAKE_ZEL_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#define KELTO_FALLIBLE(X) X(Startup) X(AllocMemTag) X(Malloc) X(MutexCreate) X(FileOpen) X(FileRead) X(ParserCreate)
#define KELTO_INFALLIBLE(X)                                                                                            \
    X(Cleanup)                                                                                                         \
    X(FreeMemTag)                                                                                                      \
    X(Free) X(MutexDestroy) X(MutexAcquire) X(MutexRelease) X(EnterSpinLock) X(LeaveSpinLock) X(FileClose) X(ParserFree)
#define KELTO_NAME(name) name,
enum class Operation
{
    KELTO_FALLIBLE(KELTO_NAME) KELTO_INFALLIBLE(KELTO_NAME)
};

/** One call as the library made it; what an operation does not have is zero. */
struct Call
{
    Operation operation;
    const void *object = nullptr; // the tag, mutex, lock, block or handle; for creation and destruction its address
    uint64_t number = 0;          // a block's or read's size, a mutex's parameter, the platform handle, a file's mode
    uint64_t offset = 0;          // the position of a read
};

std::ostream &operator<<(std::ostream &out, Operation operation);
std::ostream &operator<<(std::ostream &out, const Call &call);

/** The objects that exist: blocks, files, mutexes, tags, parsers, locks that are held. */
using Outstanding = std::array<long, 6>;

/** A file in memory, and how reading it goes. Reads are counted from 1 over all passes of one opening. */
struct FakeFile
{
    std::string bytes;
    std::string laterBytes = bytes; // what every pass after the first finds; a pass begins with a read at position 0
    std::map<unsigned, unsigned long> shortReads = {}; // the n-th read hands out at most this many bytes
    uint64_t blanksAt = 0,
             blanks = 0; // this many blanks stand in front of the byte at this position, and take no memory

    FakeFile &thenBytes(std::string later) { return laterBytes = std::move(later), *this; }

    /** Serves one read as ZEL_FileRead() does. */
    int read(unsigned pass, unsigned n, uint64_t *offset, void *buffer, unsigned long *length) const;
};

class FakeZel
{
public:
    /** A negative code that no real operation has, to be seen passed through. */
    static constexpr int defaultCode = -4242;

    /** Forgets faults, files and records; the counts of what exists stay. Done before every test. */
    static void reset();

    /** Lets the n-th call of an operation from here on fail once (n from 1): null for Malloc, else with the code. */
    static void fail(Operation operation, unsigned n = 1, int code = defaultCode);
    /** Lets the n-th fallible operation from here on fail once, whichever it is. */
    static void failNth(unsigned n, int code = defaultCode);
    /** Lets the next opening fail with the code and store an open handle nevertheless, which the caller must close. */
    static void failOpenKeepingHandle(int code = defaultCode);
    /** Refuses every block of more bytes than these, until reset(). */
    static void refuseAbove(uint64_t bytes);
    /** Takes the faults back; files and records stay. @return how many calls have failed. */
    static unsigned clearFaults();
    /** The operation that failed last on request. */
    static Operation lastFault();

    /** Serves this name from memory; other names go to the real file system. */
    static FakeFile &file(const std::string &name, std::string bytes);

    /** Begins to note calls, with an empty list. */
    static void record();
    static std::vector<Call> calls();
    static std::vector<Operation> operations();
    static unsigned count(Operation operation);
    /** The sizes of the blocks that were asked for. */
    static std::vector<uint64_t> blockSizes();

    /** While it lives, calls the function at the beginning of each operation, on the thread that makes the call. */
    class Observer
    {
    public:
        explicit Observer(std::function<void(const Call &)> function);
        ~Observer();
        Observer(const Observer &) = delete;
        Observer &operator=(const Observer &) = delete;
    };

    static Outstanding outstanding();
};

#endif
