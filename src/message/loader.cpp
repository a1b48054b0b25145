#include "message/loader.h"

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/file_reader.h"
#include "message/pass_guards.h"
#include "message/table_owner.h"
#include "platform/zero_fill.h"

#include <utility>

namespace
{

template <typename Guard>
int runPass(kelto::File &file, kelto::Parser &parser, const kelto::Handlers &handlers, Guard &guard)
{
    if (!parser.restart(&guard))
        return -1;
    XML_SetElementHandler(parser.get(), handlers.start, handlers.end);
    XML_SetCharacterDataHandler(parser.get(), handlers.characterData);
    const int result = kelto::parseFile(file, parser, guard.limits, handlers.isDone, &guard);
    return result != 0 ? result : guard.pass.error;
}

/** Room for the pointers and texts of all messages, every byte zero; empty when it cannot be had. */
kelto::TagBlock<char> allocateMessages(size_t pointerBytes, uint64_t textBytes)
{
    if (textBytes > SIZE_MAX - pointerBytes)
        return nullptr;
    kelto::TagBlock<char> block = kelto::allocate<char>(glbResHandle, pointerBytes + textBytes);
    if (block != nullptr)
        kelto::zeroFill(block.get(), pointerBytes + textBytes);
    return block;
}

/** Fills a table with what the first pass measured and hands it to the list. */
int createTable(kelto::File &file, kelto::Parser &parser, const kelto::FirstPassGuard &measured, MessageTable **created)
{
    kelto::TableOwner table(kelto::allocateZeroed<MessageTable>(glbResHandle, 1).release());
    *created = table.get();
    if (table == nullptr)
        return KT_ERR_NO_MEMORY;
    table->msgCount = static_cast<uint32_t>(measured.pass.highestId);

    const size_t pointerBytes = (size_t{table->msgCount} + 1) * sizeof(char *);
    kelto::TagBlock<char> block = allocateMessages(pointerBytes, measured.pass.textSize);
    if (block == nullptr)
        return KT_ERR_NO_MEMORY;
    auto *const messages = reinterpret_cast<char **>(block.get());
    char *const text = block.get() + pointerBytes;
    kelto::SecondPassGuard guard;
    guard.pass = {measured.pass.raw, 0, false, table.get(), messages, 0, text};
    guard.end = text + measured.pass.textSize;
    guard.index = kelto::SparseIndex::create(table->msgCount, measured.messages);
    const int result = runPass(file, parser, kelto::secondPassHandlers, guard);
    if (result != 0)
        return result;
    if (!guard.isComplete())
        return KT_ERR_BAD_MSG_FILE;

    table->messages = reinterpret_cast<char **>(block.release());
    return kelto::insertTable(std::move(table), std::move(guard.index));
}

} // namespace

int _KTLoadMessages(char *path, MessageTable **table, bool raw)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    kelto::File file;
    int result = kelto::openMessageFile(file, path);
    if (result != 0)
        return result;
    kelto::FirstPassGuard guard;
    guard.pass.raw = raw;
    kelto::Parser parser;
    result = runPass(file, parser, kelto::firstPassHandlers, guard);
    if (result != 0)
        return result;
    result = createTable(file, parser, guard, table);
    if (result != 0)
        *table = nullptr;
    return result;
}

int KTLoadMessages(char *path, MessageTable **table)
{
    return _KTLoadMessages(path, table, false);
}

int KTLoadRawMessages(char *path, MessageTable **table)
{
    return _KTLoadMessages(path, table, true);
}
