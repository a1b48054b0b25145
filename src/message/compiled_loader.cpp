// Loads compiled catalogs, from a file or from memory: every length and offset is checked before it is followed.

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/compiled_layout.h"
#include "message/file_reader.h"
#include "message/stored_message.h"
#include "message/table_owner.h"
#include "platform/zero_fill.h"

#include <algorithm>
#include <utility>

// The parts of a catalog are checked in the order in which they are used: the header, and that the catalog has as many
// bytes as it tells; the highest ID, which the last entry has; where few messages would make a large table, all
// entries. Then memory is taken, and each entry is checked once more as it becomes a pointer, since a file may change.

namespace
{

using kelto::CompiledEntry;
using kelto::CompiledHeader;
using kelto::CompiledParts;

/** Where the bytes of a catalog come from. */
class Source
{
public:
    Source() = default;
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;

    /**
     * Takes bytes from a place: the beginning, or where checkEnd() has found the end behind it.
     * @return 0; KT_ERR_BAD_MSG_FILE where not all are there; a read failure unchanged.
     */
    virtual int take(uint64_t offset, void *to, uint64_t bytes) = 0;
    /** Checks that the bytes end here: 0, or as take(). */
    virtual int checkEnd(uint64_t offset) = 0;

protected:
    ~Source() = default;
};

class Memory final : public Source
{
public:
    Memory(const void *data, size_t size) : m_data(static_cast<const char *>(data)), m_size(size) {}

    int take(uint64_t offset, void *to, uint64_t bytes) override
    {
        if (offset > m_size || bytes > m_size - offset)
            return KT_ERR_BAD_MSG_FILE;
        std::memcpy(to, m_data + offset, bytes);
        return 0;
    }

    int checkEnd(uint64_t offset) override { return offset == m_size ? 0 : KT_ERR_BAD_MSG_FILE; }

private:
    const char *m_data;
    size_t m_size;
};

class CatalogFile final : public Source
{
public:
    int open(const char *path) { return kelto::openMessageFile(m_file, path); }

    int take(uint64_t offset, void *to, uint64_t bytes) override
    {
        uint64_t taken;
        const int result = read(offset, to, bytes, &taken);
        return result != 0 || taken == bytes ? result : KT_ERR_BAD_MSG_FILE;
    }

    int checkEnd(uint64_t offset) override
    {
        char lastAndNext[2];
        uint64_t taken;
        const int result = read(offset - 1, lastAndNext, sizeof lastAndNext, &taken);
        return result != 0 || taken == 1 ? result : KT_ERR_BAD_MSG_FILE;
    }

private:
    int read(uint64_t offset, void *to, uint64_t bytes, uint64_t *taken)
    {
        for (*taken = 0; *taken < bytes;)
        {
            unsigned long part = bytes - *taken;
            const int result = m_file.read(&offset, static_cast<char *>(to) + *taken, &part);
            if (result == ZEL_ERR_END_OF_FILE)
                return 0;
            if (result != 0)
                return result;
            *taken += part;
        }
        return 0;
    }

    kelto::File m_file;
};

bool isAccepted(const CompiledHeader &header)
{
    constexpr uint64_t mostTextBytes = uint64_t{1} << 60; // no sum of lengths exceeds 64 bits
    const bool isOurs = std::memcmp(header.magic, kelto::compiledMagic, sizeof header.magic) == 0 &&
                        header.byteOrder == kelto::nativeOrder && header.layout == kelto::compiledLayout;
    return isOurs && header.highestId <= INT_MAX && header.messages <= header.highestId &&
           header.textBytes <= mostTextBytes && header.nameBytes > 1 && header.versionBytes > 1 &&
           header.language[2] == '\0' && header.country[2] == '\0' && header.unused[0] == '\0' &&
           header.unused[1] == '\0';
}

/** Takes a text whose `bytes` count its zero byte, which must be the only one. */
int takeText(Source &source, uint64_t offset, size_t bytes, char **text)
{
    *text = kelto::allocate<char>(glbResHandle, bytes).release();
    if (*text == nullptr)
        return KT_ERR_NO_MEMORY;
    const int result = source.take(offset, *text, bytes);
    if (result != 0)
        return result;
    return std::memchr(*text, '\0', bytes) == *text + bytes - 1 ? 0 : KT_ERR_BAD_MSG_FILE;
}

int checkHighestId(Source &source, const CompiledHeader &header, const CompiledParts &layout)
{
    CompiledEntry last = {};
    const int result = header.messages > 0 ? source.take(layout.texts - sizeof last, &last, sizeof last) : 0;
    return result != 0 || last.id == header.highestId ? result : KT_ERR_BAD_MSG_FILE;
}

/** The entry that stands in the place of a pointer. */
CompiledEntry entryAt(char **place)
{
    static_assert(sizeof(CompiledEntry) == sizeof *place);
    CompiledEntry entry;
    std::memcpy(&entry, place, sizeof entry);
    return entry;
}

/** Checks all entries before the pointers are allocated, of which there are far more. */
int checkEntries(Source &source, const CompiledHeader &header, const CompiledParts &layout)
{
    CompiledEntry entries[64];
    uint32_t previous = 0;
    for (uint64_t next = layout.entries; next != layout.texts;)
    {
        const uint64_t bytes = std::min<uint64_t>(sizeof entries, layout.texts - next);
        if (const int result = source.take(next, entries, bytes))
            return result;
        next += bytes;
        for (const CompiledEntry *entry = entries; entry != entries + bytes / sizeof *entries; ++entry)
        {
            if (entry->id <= previous)
                return KT_ERR_BAD_MSG_FILE;
            previous = entry->id;
        }
    }
    return previous == header.highestId ? 0 : KT_ERR_BAD_MSG_FILE;
}

bool endsInZeroBytes(const char *text, uint32_t length)
{
    uint16_t bytes;
    static_assert(sizeof bytes == kelto::terminatorBytes);
    std::memcpy(&bytes, text + length, sizeof bytes);
    return bytes == 0;
}

/**
 * Turns the entries that stand at the end of a table's pointers, right before the texts, into pointers. The entries are
 * in the order of the IDs. So the pointer of an entry belongs to its own place, where no number is left out, or in
 * front of it.
 */
bool turnIntoPointers(char **messages, size_t pointers, size_t entries, uint64_t textBytes)
{
    char *const texts = reinterpret_cast<char *>(messages + pointers);
    uint64_t offset = 0;
    size_t previous = 0; // ID 0 has no message
    for (size_t place = pointers - entries; place != pointers; ++place)
    {
        const CompiledEntry entry = entryAt(messages + place);
        if (entry.id != place)
        {
            if (entry.id <= previous || entry.id > place)
                return false;
            messages[place] = nullptr;
        }
        const uint64_t next = offset + entry.length + kelto::terminatorBytes;
        if (next > textBytes || !endsInZeroBytes(texts + offset, entry.length))
            return false;
        messages[entry.id] = texts + offset;
        previous = entry.id;
        offset = next;
    }
    return offset == textBytes && previous == pointers - 1;
}

/**
 * What few tables need: puts all IDs into the index, if there is one.
 * @return false where a text is longer than KTMsgLen() can tell.
 */
bool acceptAndIndex(char **entries, char **entriesEnd, kelto::SparseIndex *index)
{
    for (char **place = entries; place != entriesEnd; ++place)
    {
        const CompiledEntry entry = entryAt(place);
        if (entry.length > INT_MAX)
            return false;
        if (index != nullptr)
            index->add(entry.id);
    }
    return true;
}

int takeMessages(Source &source, const CompiledHeader &header, const CompiledParts &layout, MessageTable &table,
                 kelto::SparseIndex *index)
{
    const size_t pointers = size_t{header.highestId} + 1;
    if (kelto::SparseIndex::isNeeded(header.highestId, header.messages))
        if (const int result = checkEntries(source, header, layout))
            return result;
    kelto::TagBlock<char> block = kelto::allocate<char>(glbResHandle, pointers * sizeof(char *) + header.textBytes);
    if (block == nullptr)
        return KT_ERR_NO_MEMORY;
    table.messages = reinterpret_cast<char **>(block.release());
    char **const entriesEnd = table.messages + pointers;
    char **const entries = entriesEnd - header.messages;
    kelto::zeroFill(table.messages, (pointers - header.messages) * sizeof(char *));
    if (const int result = source.take(layout.entries, entries, layout.end - layout.entries))
        return result;
    const bool isOrdinary = header.textBytes <= INT_MAX && index == nullptr;
    if (!isOrdinary && !acceptAndIndex(entries, entriesEnd, index))
        return KT_ERR_BAD_MSG_FILE;
    const bool isRight = turnIntoPointers(table.messages, pointers, header.messages, header.textBytes);
    return isRight ? 0 : KT_ERR_BAD_MSG_FILE;
}

int loadFrom(Source &source, MessageTable **loaded)
{
    CompiledHeader header;
    int result = source.take(0, &header, sizeof header);
    if (result != 0 || !isAccepted(header))
        return result != 0 ? result : KT_ERR_BAD_MSG_FILE;
    const CompiledParts layout(header);
    result = source.checkEnd(layout.end);
    if (result == 0)
        result = checkHighestId(source, header, layout);
    if (result != 0)
        return result;

    kelto::TableOwner table(kelto::allocateZeroed<MessageTable>(glbResHandle, 1).release());
    if (table == nullptr)
        return KT_ERR_NO_MEMORY;
    table->msgCount = header.highestId;
    std::memcpy(table->language, header.language, sizeof table->language);
    std::memcpy(table->country, header.country, sizeof table->country);
    std::unique_ptr<kelto::SparseIndex> index = kelto::SparseIndex::create(header.highestId, header.messages);
    result = takeText(source, layout.name, header.nameBytes, &table->productName);
    if (result == 0)
        result = takeText(source, layout.version, header.versionBytes, &table->productVersion);
    if (result == 0)
        result = takeMessages(source, header, layout, *table, index.get());
    if (result != 0)
        return result;

    *loaded = table.get();
    result = kelto::insertTable(std::move(table), std::move(index));
    if (result != 0)
        *loaded = nullptr;
    return result;
}

} // namespace

int KTLoadCompiledMessages(const char *path, MessageTable **table)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (table == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    *table = nullptr;
    CatalogFile file;
    const int result = file.open(path);
    return result != 0 ? result : loadFrom(file, table);
}

int KTLoadCompiledData(const void *data, size_t size, MessageTable **table)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (table == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    *table = nullptr;
    if (data == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    Memory memory(data, size);
    return loadFrom(memory, table);
}
