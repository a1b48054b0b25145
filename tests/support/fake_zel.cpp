#include "support/fake_zel.h"

#include "platform/zel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <expat.h>
#include <mutex>
#include <ostream>
#include <utility>

namespace
{

// ---- The real operations ----

/** The next definition of a symbol after the test program's own: the library's. */
template <typename Function> Function *real(const char *name)
{
    void *const symbol = dlsym(RTLD_NEXT, name);
    if (symbol == nullptr)
    {
        std::fprintf(stderr, "no library defines %s\n", name);
        std::abort();
    }
    return reinterpret_cast<Function *>(symbol);
}

// Looked up once per operation; a macro, since the name is needed as a text and as a declaration.
#define REAL(name)                                                                                                     \
    (*[] {                                                                                                             \
        static auto *const found = real<decltype(name)>(#name);                                                        \
        return found;                                                                                                  \
    }())

// ---- What exists ----

using Counter = std::atomic<long>;
Counter blocks, files, mutexes, tags, parsers;

void add(Counter &counter, long change)
{
    counter.fetch_add(change, std::memory_order_relaxed);
}

long read(const Counter &counter)
{
    return counter.load(std::memory_order_relaxed);
}

// ---- What a test asked for ----

struct Fault
{
    bool anyOperation;
    Operation operation;
    unsigned remaining; // calls up to and including the first that fails
    bool lasting;
    int code;
};

struct Requests
{
    std::mutex guard;
    std::vector<Fault> faults;
    unsigned delivered = 0;
    Operation lastFault = Operation::Startup;
    bool keepHandle = false;
    bool recording = false;
    std::vector<Call> calls;
    std::function<void(const Call &)> observer;
    std::map<std::string, std::shared_ptr<FakeFile>> files;
};

Requests &requests()
{
    static Requests instance;
    return instance;
}

std::atomic<bool> watching{false};

using Lock = std::lock_guard<std::mutex>;

/** Counts one call against the fault; whether the fault strikes now. */
bool strikes(Fault &fault, Operation operation)
{
    if (fault.anyOperation ? !FakeZel::isFallible(operation) : fault.operation != operation)
        return false;
    if (fault.remaining > 1)
    {
        --fault.remaining;
        return false;
    }
    const bool due = fault.remaining == 1;
    fault.remaining = fault.lasting ? 1 : 0;
    return due;
}

/** Notes the call and shows it to the observer; the code with which it is to fail, or 0. */
int enterWatched(const Call &call)
{
    Requests &asked = requests();
    std::function<void(const Call &)> observer;
    int code = 0;
    {
        const Lock lock(asked.guard);
        if (asked.recording)
            asked.calls.push_back(call);
        observer = asked.observer;
        for (Fault &fault : asked.faults)
            if (strikes(fault, call.operation) && code == 0)
                code = fault.code;
        if (code != 0)
        {
            ++asked.delivered;
            asked.lastFault = call.operation;
        }
    }
    if (observer)
        observer(call);
    return code;
}

int enter(Operation operation, const void *object, uint64_t number = 0, uint64_t offset = 0, const char *path = "")
{
    if (!watching.load(std::memory_order_relaxed))
        return 0;
    return enterWatched({operation, object, number, offset, path});
}

void addFault(const Fault &fault)
{
    const Lock lock(requests().guard);
    requests().faults.push_back(fault);
    watching = true;
}

// ---- Blocks ----

// Enough to show any reliance on zeros, without touching all of a block that only costs address space.
constexpr size_t dirtyBytes = 4096;
constexpr int dirt = 0xA5;

// ---- Files ----

/** What the library holds as a file's handle. */
struct OpenFile
{
    void *real = nullptr;
    std::shared_ptr<const FakeFile> fake;
    unsigned pass = 0;
    unsigned reads = 0;
};

std::shared_ptr<const FakeFile> findFake(const char *path)
{
    if (!watching.load(std::memory_order_relaxed))
        return nullptr;
    const Lock lock(requests().guard);
    const auto found = requests().files.find(path);
    return found != requests().files.end() ? found->second : nullptr;
}

void storeHandle(void **handle, OpenFile file)
{
    *handle = new OpenFile(std::move(file));
    add(files, 1);
}

bool takeKeepHandle()
{
    const Lock lock(requests().guard);
    return std::exchange(requests().keepHandle, false);
}

} // namespace

// ---- The operations, in the library's place ----

extern "C" {

int ZEL_Startup(long handle, long reserved)
{
    const int fault = enter(Operation::Startup, nullptr, static_cast<uint64_t>(handle));
    return fault != 0 ? fault : REAL(ZEL_Startup)(handle, reserved);
}

int ZEL_Cleanup(long handle)
{
    enter(Operation::Cleanup, nullptr, static_cast<uint64_t>(handle));
    return REAL(ZEL_Cleanup)(handle);
}

int ZEL_AllocMemTag(long handle, void **tag)
{
    if (const int fault = enter(Operation::AllocMemTag, tag, static_cast<uint64_t>(handle)))
        return fault;
    const int result = REAL(ZEL_AllocMemTag)(handle, tag);
    add(tags, result == 0 ? 1 : 0);
    return result;
}

int ZEL_FreeMemTag(void **tag)
{
    enter(Operation::FreeMemTag, tag);
    add(tags, -1);
    return REAL(ZEL_FreeMemTag)(tag);
}

void *ZEL_malloc(void *tag, unsigned long size)
{
    if (enter(Operation::Malloc, tag, size) != 0)
        return nullptr;
    void *const block = REAL(ZEL_malloc)(tag, size);
    if (block != nullptr)
    {
        add(blocks, 1);
        std::memset(block, dirt, std::min<size_t>(size, dirtyBytes));
    }
    return block;
}

int ZEL_free(void *block)
{
    enter(Operation::Free, block);
    add(blocks, block != nullptr ? -1 : 0);
    return REAL(ZEL_free)(block);
}

int ZEL_LMutexCreate(void **mutex, long parameter)
{
    if (const int fault = enter(Operation::MutexCreate, mutex, static_cast<uint64_t>(parameter)))
        return fault;
    const int result = REAL(ZEL_LMutexCreate)(mutex, parameter);
    add(mutexes, result == 0 ? 1 : 0);
    return result;
}

int ZEL_LMutexDestroy(void **mutex)
{
    enter(Operation::MutexDestroy, mutex);
    add(mutexes, -1);
    return REAL(ZEL_LMutexDestroy)(mutex);
}

int ZEL_LMutexAcquire(void *mutex)
{
    enter(Operation::MutexAcquire, mutex);
    return REAL(ZEL_LMutexAcquire)(mutex);
}

int ZEL_LMutexRelease(void *mutex)
{
    enter(Operation::MutexRelease, mutex);
    return REAL(ZEL_LMutexRelease)(mutex);
}

int ZEL_EnterSpinLock(void **lock)
{
    enter(Operation::EnterSpinLock, lock);
    return REAL(ZEL_EnterSpinLock)(lock);
}

int ZEL_LeaveSpinLock(void **lock)
{
    enter(Operation::LeaveSpinLock, lock);
    return REAL(ZEL_LeaveSpinLock)(lock);
}

int ZEL_FileOpen(const char *path, int mode, int first, int second, void **handle)
{
    const int fault = enter(Operation::FileOpen, handle, static_cast<uint64_t>(mode), 0, path);
    if (fault != 0 && !takeKeepHandle())
    {
        *handle = nullptr;
        return fault;
    }
    OpenFile file;
    file.fake = findFake(path);
    if (file.fake == nullptr)
    {
        const int result = REAL(ZEL_FileOpen)(path, mode, first, second, &file.real);
        if (result != 0)
        {
            *handle = file.real; // null, as the real operation promises
            return result;
        }
    }
    storeHandle(handle, std::move(file));
    return fault;
}

int ZEL_FileRead(void *handle, uint64_t *offset, void *buffer, unsigned long *length)
{
    auto &file = *static_cast<OpenFile *>(handle);
    if (const int fault = enter(Operation::FileRead, handle, *length, *offset))
        return fault;
    file.pass += *offset == 0 ? 1 : 0;
    ++file.reads;
    if (file.fake != nullptr)
        return file.fake->read(file.pass, file.reads, offset, buffer, length);
    return REAL(ZEL_FileRead)(file.real, offset, buffer, length);
}

int ZEL_FileClose(void **handle)
{
    auto *const file = static_cast<OpenFile *>(*handle);
    enter(Operation::FileClose, file);
    add(files, -1);
    const int result = file->fake != nullptr ? 0 : REAL(ZEL_FileClose)(&file->real);
    delete file;
    *handle = nullptr;
    return result;
}

XML_Parser XML_ParserCreate(const XML_Char *encoding)
{
    if (enter(Operation::ParserCreate, nullptr) != 0)
        return nullptr;
    const XML_Parser parser = REAL(XML_ParserCreate)(encoding);
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

FakeFile &FakeFile::thenBytes(std::string bytes)
{
    m_laterBytes = std::make_shared<std::string>(std::move(bytes));
    return *this;
}

FakeFile &FakeFile::shortRead(unsigned n, unsigned long bytes)
{
    m_shortReads[n] = bytes;
    return *this;
}

FakeFile &FakeFile::readError(unsigned n, int code)
{
    m_errors[n] = code;
    return *this;
}

FakeFile &FakeFile::withBlanks(uint64_t position, uint64_t count)
{
    m_blanksAt = position;
    m_blanks = count;
    return *this;
}

int FakeFile::read(unsigned pass, unsigned n, uint64_t *offset, void *buffer, unsigned long *length) const
{
    if (const auto error = m_errors.find(n); error != m_errors.end())
        return error->second;
    const std::string &bytes = pass > 1 && m_laterBytes != nullptr ? *m_laterBytes : m_bytes;
    if (*offset >= bytes.size() + m_blanks)
        return ZEL_ERR_END_OF_FILE;
    unsigned long limit = *length;
    if (const auto shortened = m_shortReads.find(n); shortened != m_shortReads.end())
        limit = std::min(limit, shortened->second);
    auto *const to = static_cast<char *>(buffer);
    unsigned long done = 0;
    if (*offset < m_blanksAt)
        done = bytes.copy(to, std::min(limit, m_blanksAt - *offset), *offset);
    if (const uint64_t position = *offset + done; done < limit && position < m_blanksAt + m_blanks)
    {
        const uint64_t blanks = std::min(limit - done, m_blanksAt + m_blanks - position);
        std::memset(to + done, ' ', blanks);
        done += blanks;
    }
    if (done < limit)
        done += bytes.copy(to + done, limit - done, *offset + done - m_blanks);
    *length = done;
    *offset += done;
    return 0;
}

void FakeZel::reset()
{
    Requests &asked = requests();
    const Lock lock(asked.guard);
    watching = false;
    asked.faults.clear();
    asked.delivered = 0;
    asked.keepHandle = false;
    asked.recording = false;
    asked.calls.clear();
    asked.observer = nullptr;
    asked.files.clear();
}

void FakeZel::fail(Operation operation, unsigned n, int code)
{
    addFault({false, operation, n, false, code});
}

void FakeZel::failFrom(Operation operation, unsigned n, int code)
{
    addFault({false, operation, n, true, code});
}

void FakeZel::failNth(unsigned n, int code)
{
    addFault({true, Operation::Startup, n, false, code});
}

void FakeZel::failOpenKeepingHandle(int code)
{
    {
        const Lock lock(requests().guard);
        requests().keepHandle = true;
    }
    fail(Operation::FileOpen, 1, code);
}

void FakeZel::clearFaults()
{
    const Lock lock(requests().guard);
    requests().faults.clear();
    requests().delivered = 0;
    requests().keepHandle = false;
}

unsigned FakeZel::faultsDelivered()
{
    const Lock lock(requests().guard);
    return requests().delivered;
}

Operation FakeZel::lastFault()
{
    const Lock lock(requests().guard);
    return requests().lastFault;
}

bool FakeZel::isFallible(Operation operation)
{
    switch (operation)
    {
    case Operation::Startup:
    case Operation::AllocMemTag:
    case Operation::Malloc:
    case Operation::MutexCreate:
    case Operation::FileOpen:
    case Operation::FileRead:
    case Operation::ParserCreate:
        return true;
    default:
        return false;
    }
}

FakeFile &FakeZel::file(const std::string &name, std::string bytes)
{
    const Lock lock(requests().guard);
    watching = true;
    std::shared_ptr<FakeFile> &entry = requests().files[name];
    entry = std::make_shared<FakeFile>(std::move(bytes));
    return *entry;
}

void FakeZel::record()
{
    const Lock lock(requests().guard);
    watching = true;
    requests().recording = true;
    requests().calls.clear();
}

std::vector<Call> FakeZel::calls()
{
    const Lock lock(requests().guard);
    return requests().calls;
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

void FakeZel::observe(std::function<void(const Call &)> observer)
{
    const Lock lock(requests().guard);
    watching = true;
    requests().observer = std::move(observer);
}

Outstanding FakeZel::outstanding()
{
    return {read(blocks), read(files), read(mutexes), read(tags), read(parsers)};
}

bool Outstanding::operator==(const Outstanding &other) const
{
    return blocks == other.blocks && files == other.files && mutexes == other.mutexes && tags == other.tags &&
           parsers == other.parsers;
}

std::ostream &operator<<(std::ostream &out, const Outstanding &outstanding)
{
    return out << outstanding.blocks << " blocks, " << outstanding.files << " files, " << outstanding.mutexes
               << " mutexes, " << outstanding.tags << " tags, " << outstanding.parsers << " parsers";
}

std::ostream &operator<<(std::ostream &out, Operation operation)
{
    static constexpr std::array names = {
        "Startup",     "Cleanup",      "AllocMemTag",  "FreeMemTag",   "Malloc",        "Free",
        "MutexCreate", "MutexDestroy", "MutexAcquire", "MutexRelease", "EnterSpinLock", "LeaveSpinLock",
        "FileOpen",    "FileRead",     "FileClose",    "ParserCreate", "ParserFree"};
    return out << names.at(static_cast<size_t>(operation));
}

std::ostream &operator<<(std::ostream &out, const Call &call)
{
    return out << call.operation << '(' << call.object << ", " << call.number << ", " << call.offset << ", \""
               << call.path << "\")";
}
