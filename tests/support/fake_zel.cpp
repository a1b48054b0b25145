#include "support/fake_zel.h"

#include "platform/zel.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <dlfcn.h>
#include <expat.h>
#include <mutex>
#include <utility>

namespace
{

// The next definition of a symbol after the test program's own: the library's. Looked up once per operation.
#define REAL(name)                                                                                                     \
    (*[] {                                                                                                             \
        static auto *const found = reinterpret_cast<decltype(name) *>(dlsym(RTLD_NEXT, #name));                        \
        return found;                                                                                                  \
    }())

std::atomic<long> blocks, files, mutexes, tags, parsers, locked;

void add(std::atomic<long> &counter, long change)
{
    counter.fetch_add(change, std::memory_order_relaxed);
}

// ---- What a test asked for ----

struct Fault
{
    bool anyOperation;
    Operation operation;
    unsigned remaining; // calls up to and including the one that fails
    int code;
};

struct Requests
{
    std::vector<Fault> faults;
    unsigned delivered = 0;
    Operation lastFault = Operation::Startup;
    uint64_t largestBlock = UINT64_MAX;
    bool keepHandle = false;
    bool recording = false;
    std::vector<Call> calls;
    std::function<void(const Call &)> observer;
    std::map<std::string, std::shared_ptr<FakeFile>> files;
} asked;

std::mutex guard;
std::atomic<bool> watching{false};

/** The requests, held; from now on every operation looks at them. */
template <typename Use> auto withRequests(Use use)
{
    const std::lock_guard<std::mutex> lock(guard);
    watching = true;
    return use(asked);
}

/** Notes the call and shows it to the observer; the code with which it is to fail, or 0. */
int enter(Operation operation, const void *object, uint64_t number = 0, uint64_t offset = 0)
{
    if (!watching.load(std::memory_order_relaxed))
        return 0;
    const Call call = {operation, object, number, offset};
    std::function<void(const Call &)> observer;
    const int code = withRequests([&](Requests &requests) {
        if (requests.recording)
            requests.calls.push_back(call);
        observer = requests.observer;
        for (Fault &fault : requests.faults)
            if ((fault.anyOperation ? operation < Operation::Cleanup : fault.operation == operation) &&
                fault.remaining > 0 && --fault.remaining == 0)
            {
                ++requests.delivered;
                requests.lastFault = operation;
                return fault.code;
            }
        return operation == Operation::Malloc && number > requests.largestBlock ? FakeZel::defaultCode : 0;
    });
    if (observer)
        observer(call);
    return code;
}

/** What the library holds as a file's handle. */
struct OpenFile
{
    void *real = nullptr;
    std::shared_ptr<const FakeFile> fake = {};
    unsigned pass = 0;
    unsigned reads = 0;
};

} // namespace

// ---- The operations, in the library's place ----

extern "C" {

#define FORWARD(operation, name, parameters, arguments, object, number, lockedChange)                                  \
    int name parameters                                                                                                \
    {                                                                                                                  \
        const int fault = enter(Operation::operation, object, static_cast<uint64_t>(number));                          \
        add(locked, lockedChange);                                                                                     \
        return fault != 0 ? fault : REAL(name) arguments;                                                              \
    }
// What fails may have stored something all the same, and what destroys leaves something where a test looks.
#define CREATE(operation, name, parameters, arguments, object, number, counter)                                        \
    int name parameters                                                                                                \
    {                                                                                                                  \
        if (const int fault = enter(Operation::operation, object, static_cast<uint64_t>(number)))                      \
            return *(object) = reinterpret_cast<void *>(0x10), fault;                                                  \
        const int result = REAL(name) arguments;                                                                       \
        add(counter, result == 0 ? 1 : 0);                                                                             \
        return result;                                                                                                 \
    }
#define DESTROY(operation, name, counter)                                                                              \
    int name(void **object)                                                                                            \
    {                                                                                                                  \
        enter(Operation::operation, object);                                                                           \
        add(counter, -1);                                                                                              \
        const int result = REAL(name)(object);                                                                         \
        if (watching.load(std::memory_order_relaxed))                                                                  \
            *(object) = reinterpret_cast<void *>(0x10);                                                                \
        return result;                                                                                                 \
    }
FORWARD(Startup, ZEL_Startup, (long handle, long reserved), (handle, reserved), nullptr, handle + (reserved << 32), 0)
FORWARD(Cleanup, ZEL_Cleanup, (long handle), (handle), nullptr, handle, 0)
FORWARD(MutexAcquire, ZEL_LMutexAcquire, (void *mutex), (mutex), mutex, 0, 1)
FORWARD(MutexRelease, ZEL_LMutexRelease, (void *mutex), (mutex), mutex, 0, -1)
FORWARD(EnterSpinLock, ZEL_EnterSpinLock, (void **lock), (lock), lock, 0, 1)
FORWARD(LeaveSpinLock, ZEL_LeaveSpinLock, (void **lock), (lock), lock, 0, -1)
CREATE(AllocMemTag, ZEL_AllocMemTag, (long handle, void **tag), (handle, tag), tag, handle, tags)
CREATE(MutexCreate, ZEL_LMutexCreate, (void **mutex, long parameter), (mutex, parameter), mutex, parameter, mutexes)
DESTROY(FreeMemTag, ZEL_FreeMemTag, tags)
DESTROY(MutexDestroy, ZEL_LMutexDestroy, mutexes)

void *ZEL_malloc(void *tag, unsigned long size)
{
    void *const block = enter(Operation::Malloc, tag, size) == 0 ? REAL(ZEL_malloc)(tag, size) : nullptr;
    if (block == nullptr)
        return nullptr;
    add(blocks, 1);
    // Enough to show any reliance on zeros, without touching all of a block that only costs address space.
    return std::memset(block, 0xA5, std::min<size_t>(size, 4096));
}

int ZEL_free(void *block)
{
    enter(Operation::Free, block);
    add(blocks, block != nullptr ? -1 : 0);
    return REAL(ZEL_free)(block);
}

int ZEL_FileOpen(const char *path, int mode, int first, int second, void **handle)
{
    *handle = nullptr;
    const int fault = enter(Operation::FileOpen, handle, static_cast<uint64_t>(mode + 100 * first + 200 * second));
    OpenFile file;
    bool isKept = false;
    if (watching.load(std::memory_order_relaxed))
        withRequests([&](Requests &requests) {
            const auto found = requests.files.find(path);
            file.fake = found != requests.files.end() ? found->second : nullptr;
            isKept = fault != 0 && std::exchange(requests.keepHandle, false);
        });
    if (fault != 0 && !isKept)
        return fault;
    if (file.fake == nullptr)
        if (const int result = REAL(ZEL_FileOpen)(path, mode, first, second, &file.real))
            return result;
    *handle = new OpenFile(std::move(file));
    add(files, 1);
    return fault;
}

int ZEL_FileRead(void *handle, uint64_t *offset, void *buffer, unsigned long *length)
{
    auto &file = *static_cast<OpenFile *>(handle);
    if (const int fault = enter(Operation::FileRead, handle, *length, *offset))
        return fault;
    file.pass += *offset == 0 ? 1 : 0;
    ++file.reads;
    return file.fake != nullptr ? file.fake->read(file.pass, file.reads, offset, buffer, length)
                                : REAL(ZEL_FileRead)(file.real, offset, buffer, length);
}

int ZEL_FileClose(void **handle)
{
    const std::unique_ptr<OpenFile> file(static_cast<OpenFile *>(*handle));
    enter(Operation::FileClose, file.get());
    add(files, -1);
    const int result = file->fake != nullptr ? 0 : REAL(ZEL_FileClose)(&file->real);
    *handle = file->real; // null, if the real one does its work
    return result;
}

XML_Parser XML_ParserCreate(const XML_Char *encoding)
{
    const XML_Parser parser = enter(Operation::ParserCreate, nullptr) == 0 ? REAL(XML_ParserCreate)(encoding) : nullptr;
    add(parsers, parser != nullptr ? 1 : 0);
    return parser;
}

void XML_ParserFree(XML_Parser parser)
{
    enter(Operation::ParserFree, parser);
    add(parsers, parser != nullptr ? -1 : 0);
    REAL(XML_ParserFree)(parser);
}

} // extern "C"

// ---- What tests call ----

int FakeFile::read(unsigned pass, unsigned n, uint64_t *offset, void *buffer, unsigned long *length) const
{
    const std::string &content = pass > 1 ? laterBytes : bytes;
    if (*offset >= content.size() + blanks)
        return ZEL_ERR_END_OF_FILE;
    if (const auto shortened = shortReads.find(n); shortened != shortReads.end())
        *length = std::min(*length, shortened->second);
    // Before, in and behind the blanks.
    auto *const to = static_cast<char *>(buffer);
    unsigned long done = *offset < blanksAt ? content.copy(to, std::min(*length, blanksAt - *offset), *offset) : 0;
    const uint64_t at = *offset + done;
    const uint64_t filled = at < blanksAt + blanks ? std::min(*length - done, blanksAt + blanks - at) : 0;
    std::memset(to + done, ' ', filled);
    done += filled;
    if (done < *length)
        done += content.copy(to + done, *length - done, *offset + done - blanks);
    *length = done;
    *offset += done;
    return 0;
}

void FakeZel::reset()
{
    withRequests([](Requests &requests) { requests = {}; });
    watching = false;
}

void FakeZel::fail(Operation operation, unsigned n, int code)
{
    withRequests([&](Requests &requests) { requests.faults.push_back({false, operation, n, code}); });
}

void FakeZel::failNth(unsigned n, int code)
{
    withRequests([&](Requests &requests) { requests.faults.push_back({true, Operation::Startup, n, code}); });
}

void FakeZel::failOpenKeepingHandle(int code)
{
    withRequests([](Requests &requests) { requests.keepHandle = true; });
    fail(Operation::FileOpen, 1, code);
}

void FakeZel::refuseAbove(uint64_t bytes)
{
    withRequests([&](Requests &requests) { requests.largestBlock = bytes; });
}

unsigned FakeZel::clearFaults()
{
    return withRequests([](Requests &requests) {
        requests.faults.clear();
        requests.keepHandle = false;
        return std::exchange(requests.delivered, 0);
    });
}

Operation FakeZel::lastFault()
{
    return withRequests([](Requests &requests) { return requests.lastFault; });
}

FakeFile &FakeZel::file(const std::string &name, std::string bytes)
{
    return *withRequests([&](Requests &requests) {
        return requests.files[name] = std::make_shared<FakeFile>(FakeFile{std::move(bytes)});
    });
}

void FakeZel::record()
{
    withRequests([](Requests &requests) {
        requests.recording = true;
        requests.calls.clear();
    });
}

std::vector<Call> FakeZel::calls()
{
    return withRequests([](Requests &requests) { return requests.calls; });
}

std::vector<Operation> FakeZel::operations()
{
    std::vector<Operation> found;
    for (const Call &call : calls())
        found.push_back(call.operation);
    return found;
}

unsigned FakeZel::count(Operation operation)
{
    const std::vector<Operation> found = operations();
    return static_cast<unsigned>(std::count(found.begin(), found.end(), operation));
}

std::vector<uint64_t> FakeZel::blockSizes()
{
    std::vector<uint64_t> sizes;
    for (const Call &call : calls())
        if (call.operation == Operation::Malloc)
            sizes.push_back(call.number);
    return sizes;
}

FakeZel::Observer::Observer(std::function<void(const Call &)> function)
{
    withRequests([&](Requests &requests) { requests.observer = std::move(function); });
}

FakeZel::Observer::~Observer()
{
    withRequests([](Requests &requests) { requests.observer = nullptr; });
}

Outstanding FakeZel::outstanding()
{
    return {blocks, files, mutexes, tags, parsers, locked};
}

std::ostream &operator<<(std::ostream &out, Operation operation)
{
#define KELTO_TEXT(name) #name,
    static constexpr const char *names[] = {KELTO_FALLIBLE(KELTO_TEXT) KELTO_INFALLIBLE(KELTO_TEXT)};
    return out << names[static_cast<size_t>(operation)];
}

std::ostream &operator<<(std::ostream &out, const Call &call)
{
    return out << call.operation << '(' << call.object << ", " << call.number << ", " << call.offset << ')';
}
