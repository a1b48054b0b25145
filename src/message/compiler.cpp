// KTCompileMessages(): a loaded table as a compiled catalog.

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/compiled_layout.h"
#include "message/stored_message.h"
#include "message/table_walk.h"
#include "platform/scoped.h"

namespace
{

using kelto::CompiledEntry;
using kelto::CompiledHeader;
using kelto::CompiledParts;

CompiledHeader describe(const kelto::TableWalk &walk)
{
    const MessageTable &table = walk.table();
    CompiledHeader header = {};
    std::memcpy(header.magic, kelto::compiledMagic, sizeof header.magic);
    header.byteOrder = kelto::nativeOrder;
    header.layout = kelto::compiledLayout;
    header.highestId = table.msgCount;
    for (uint32_t id = walk.next(0); id != 0; id = walk.next(id))
    {
        ++header.messages;
        header.textBytes += static_cast<size_t>(KTMsgLen(table.messages[id])) + kelto::terminatorBytes;
    }
    header.nameBytes = static_cast<uint32_t>(std::strlen(table.productName) + 1);
    header.versionBytes = static_cast<uint32_t>(std::strlen(table.productVersion) + 1);
    std::memcpy(header.language, table.language, sizeof header.language);
    std::memcpy(header.country, table.country, sizeof header.country);
    return header;
}

void write(const CompiledHeader &header, const kelto::TableWalk &walk, char *data)
{
    const MessageTable &table = walk.table();
    const CompiledParts layout(header);
    std::memcpy(data, &header, sizeof header);
    std::memcpy(data + layout.name, table.productName, header.nameBytes);
    std::memcpy(data + layout.version, table.productVersion, header.versionBytes);
    char *entries = data + layout.entries;
    char *text = data + layout.texts;
    for (uint32_t id = walk.next(0); id != 0; id = walk.next(id))
    {
        const char *const end = KTMsgCpy(table.messages[id], text);
        const CompiledEntry entry = {id, static_cast<uint32_t>(end - table.messages[id])};
        std::memcpy(entries, &entry, sizeof entry);
        entries += sizeof entry;
        text += entry.length + kelto::terminatorBytes;
    }
}

} // namespace

int KTCompileMessages(MessageTable *table, size_t *size, void *data)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (size == nullptr || (data == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    const kelto::MutexGuard lock(tableListMutex);
    kelto::TableWalk walk;
    if (!walk.start(table))
        return KT_ERR_TABLE_NOT_FOUND;
    const CompiledHeader header = describe(walk);
    const size_t capacity = *size;
    *size = CompiledParts(header).end;
    if (*size > capacity)
        return KT_ERR_BUFFER_TOO_SMALL;
    write(header, walk, static_cast<char *>(data));
    return 0;
}
