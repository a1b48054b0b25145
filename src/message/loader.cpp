#include "message/loader.h"

#include "lifecycle/state.h"
#include "message/table_list.h"
#include "platform/zero_fill.h"

#include <climits>
#include <memory>

// The first pass: a row for each element says what must hold at its start and at its end.

namespace
{

struct ElementRule
{
    ElementID mustFollow;      // what `last` has to be at the start; ELM_UNKNOWN: anything
    int FirstPassState::*once; // the flag that the start must not find set, and sets; null: none
    int (*onStart)(FirstPassState &, const char **attrs);
    ElementID lastAtEnd; // what `last` becomes at the end; ELM_UNKNOWN: it stays
    int (*onEnd)(FirstPassState &);
};

int acceptWhen(bool condition)
{
    return condition ? 0 : KT_ERR_BAD_MSG_FILE;
}

int startFile(FirstPassState &, const char **attrs)
{
    kelto::FileAttributes file;
    return acceptWhen(kelto::readFileAttributes(attrs, &file));
}

int startMessage(FirstPassState &state, const char **attrs)
{
    const int id = kelto::readMessageId(attrs);
    if (id > state.highestId)
        state.highestId = id;
    state.sourceSeen = false;
    return acceptWhen(id != 0);
}

int startText(FirstPassState &state, const char **)
{
    state.messageOffset = state.textSize;
    return 0;
}

int countPlaceholder(FirstPassState &state, const char **attrs)
{
    kelto::Placeholder placeholder;
    if (!kelto::readPlaceholder(attrs, &placeholder))
        return KT_ERR_BAD_MSG_FILE;
    state.textSize += placeholder.size(state.raw);
    return 0;
}

int endXliff(FirstPassState &state)
{
    return acceptWhen(state.fileSeen);
}

int endFile(FirstPassState &state)
{
    return acceptWhen(state.headerSeen && state.bodySeen);
}

int endMessage(FirstPassState &state)
{
    return acceptWhen(state.sourceSeen);
}

constexpr uint64_t terminatorBytes = 2;
constexpr uint64_t maxMessageBytes = INT_MAX; // KTMsgLen() returns an int

int endText(FirstPassState &state)
{
    if (state.textSize - state.messageOffset > maxMessageBytes)
        return KT_ERR_NO_MEMORY;
    state.textSize += terminatorBytes;
    return 0;
}

/** By ElementID. */
constexpr ElementRule elementRules[] = {
    /* unknown       */ {},
    /* xliff         */ {ELM_UNKNOWN, &FirstPassState::xliffSeen, nullptr, ELM_UNKNOWN, endXliff},
    /* file          */ {ELM_XLIFF, &FirstPassState::fileSeen, startFile, ELM_XLIFF, endFile},
    /* header        */ {ELM_FILE, &FirstPassState::headerSeen, nullptr, ELM_FILE, nullptr},
    /* body          */ {ELM_FILE, &FirstPassState::bodySeen, nullptr, ELM_FILE, nullptr},
    /* trans-unit    */ {ELM_BODY, nullptr, startMessage, ELM_BODY, endMessage},
    /* source        */ {ELM_TRANS_UNIT, &FirstPassState::sourceSeen, startText, ELM_TRANS_UNIT, endText},
    /* x             */ {ELM_SOURCE, nullptr, countPlaceholder, ELM_SOURCE, nullptr},
    // A message ends at these: what follows them inside it is no part of its text, and no "x" or "source" may follow.
    /* context-group */ {},
    /* context       */ {},
    /* note          */ {},
};
static_assert(sizeof elementRules == (ELM_NOTE + 1) * sizeof(ElementRule));

/** Applies what a rule asks of an element's start; a result code. */
int checkStart(FirstPassState &state, const ElementRule &rule, const char **attrs)
{
    if (rule.mustFollow != ELM_UNKNOWN && state.last != rule.mustFollow)
        return KT_ERR_BAD_MSG_FILE;
    if (rule.once != nullptr)
    {
        if (state.*rule.once)
            return KT_ERR_BAD_MSG_FILE;
        state.*rule.once = true;
    }
    return rule.onStart != nullptr ? rule.onStart(state, attrs) : 0;
}

} // namespace

void startElement1(void *state, const char *name, const char **attrs)
{
    auto &pass = *static_cast<FirstPassState *>(state);
    if (pass.error != 0)
        return;
    const ElementMapRow &element = kelto::findElement(name);
    pass.error = element.level == pass.depth ? checkStart(pass, elementRules[element.id], attrs) : KT_ERR_BAD_MSG_FILE;
    if (pass.error != 0)
        return;
    ++pass.depth;
    pass.last = element.id;
}

void endElement1(void *state, const char *name)
{
    auto &pass = *static_cast<FirstPassState *>(state);
    if (pass.error != 0)
        return;
    const ElementMapRow &element = kelto::findElement(name);
    const ElementRule &rule = elementRules[element.id];
    if (rule.lastAtEnd != ELM_UNKNOWN)
        pass.last = rule.lastAtEnd;
    if (element.id == ELM_UNKNOWN)
        pass.error = KT_ERR_BAD_MSG_FILE;
    else if (rule.onEnd != nullptr)
        pass.error = rule.onEnd(pass);
    if (pass.error == 0)
        --pass.depth;
}

void characterData1(void *state, const char *, int length)
{
    auto &pass = *static_cast<FirstPassState *>(state);
    if (pass.error == 0 && pass.last == ELM_SOURCE)
        pass.textSize += static_cast<unsigned>(length);
}

// The second pass. It asks for an open message and for room in the block wherever it writes; with that, whatever the
// file has become since, every message ends inside the block with its own two zero bytes.

namespace
{

size_t room(const SecondPassState &pass)
{
    return static_cast<size_t>(pass.end - pass.cursor);
}

void append(SecondPassState &pass, const char *bytes, size_t length)
{
    std::memcpy(pass.cursor, bytes, length);
    pass.cursor += length;
}

/** A zero-terminated copy from the memory tag. */
char *copyText(const char *text)
{
    const size_t bytes = std::strlen(text) + 1;
    kelto::TagBlock<char> copy = kelto::allocate<char>(glbResHandle, bytes);
    if (copy != nullptr)
        std::memcpy(copy.get(), text, bytes);
    return copy.release();
}

int fillFile(MessageTable &table, const char **attrs)
{
    kelto::FileAttributes file;
    if (table.productName != nullptr || !kelto::readFileAttributes(attrs, &file))
        return KT_ERR_BAD_MSG_FILE;
    std::memcpy(table.language, file.language, 2);
    if (file.namesCountry)
        std::memcpy(table.country, file.language + 3, 2);
    table.productName = copyText(file.productName);
    table.productVersion = table.productName != nullptr ? copyText(file.productVersion) : nullptr;
    return table.productVersion != nullptr ? 0 : KT_ERR_NO_MEMORY;
}

int openMessage(SecondPassState &pass, const char **attrs)
{
    const int id = kelto::readMessageId(attrs);
    const bool isNew = id != 0 && static_cast<unsigned>(id) <= pass.table->msgCount && pass.messages[id] == nullptr;
    if (pass.currentId != 0 || !isNew)
        return KT_ERR_BAD_MSG_FILE;
    pass.currentId = id;
    pass.messages[id] = pass.cursor;
    return 0;
}

int closeMessage(SecondPassState &pass)
{
    if (pass.currentId == 0 || room(pass) < terminatorBytes)
        return KT_ERR_BAD_MSG_FILE;
    const char *const message = pass.messages[pass.currentId];
    if (static_cast<uint64_t>(pass.cursor - message) > maxMessageBytes)
        return KT_ERR_BAD_MSG_FILE;
    pass.cursor += terminatorBytes;
    pass.currentId = 0;
    handleEscape(message);
    return 0;
}

int appendPlaceholder(SecondPassState &pass, const char **attrs)
{
    kelto::Placeholder placeholder;
    if (pass.currentId == 0 || !kelto::readPlaceholder(attrs, &placeholder) || placeholder.size(pass.raw) > room(pass))
        return KT_ERR_BAD_MSG_FILE;
    append(pass, placeholder.text, placeholder.textLength);
    if (pass.raw)
        return 0;
    append(pass, "[", 1);
    append(pass, placeholder.position, placeholder.positionLength);
    append(pass, "]", 1);
    return 0;
}

/** Whether the pass has filled all that the first one measured. */
bool isComplete(const SecondPassState &pass)
{
    const MessageTable &table = *pass.table;
    return table.productVersion != nullptr && pass.currentId == 0 && room(pass) == 0 &&
           (table.msgCount == 0 || pass.messages[table.msgCount] != nullptr);
}

} // namespace

void startElement2(void *state, const char *name, const char **attrs)
{
    auto &pass = *static_cast<SecondPassState *>(state);
    if (pass.error != 0)
        return;
    const ElementMapRow &element = kelto::findElement(name);
    pass.inSource = element.id == ELM_SOURCE;
    if (element.id == ELM_TRANS_UNIT)
        pass.error = openMessage(pass, attrs);
    else if (element.id == ELM_X)
        pass.error = appendPlaceholder(pass, attrs);
    else if (element.id == ELM_FILE)
        pass.error = fillFile(*pass.table, attrs);
}

void endElement2(void *state, const char *name)
{
    auto &pass = *static_cast<SecondPassState *>(state);
    if (pass.error != 0)
        return;
    const ElementMapRow &element = kelto::findElement(name);
    if (element.id == ELM_X)
        pass.inSource = true;
    else if (element.id == ELM_SOURCE)
    {
        pass.inSource = false;
        pass.error = closeMessage(pass);
    }
}

void characterData2(void *state, const char *text, int length)
{
    auto &pass = *static_cast<SecondPassState *>(state);
    if (pass.error != 0 || !pass.inSource || length < 1)
        return;
    if (pass.currentId == 0 || static_cast<size_t>(length) > room(pass))
        pass.error = KT_ERR_BAD_MSG_FILE;
    else
        append(pass, text, static_cast<size_t>(length));
}

namespace
{

struct Escape
{
    char written, meant;
};

constexpr Escape escapes[] = {{'\\', '\\'}, {'t', '\t'}, {'r', '\r'}, {'n', '\n'}, {'"', '"'}};

/** What a backslash and this character stand for; 0 when they stand for themselves. */
char resolveEscape(char written)
{
    for (const Escape &escape : escapes)
        if (escape.written == written)
            return escape.meant;
    return '\0';
}

} // namespace

void handleEscape(const char *text)
{
    auto *from = const_cast<char *>(std::strchr(text, '\\'));
    if (from == nullptr)
        return;
    char *to = from;
    while (*from != '\0')
    {
        const char meant = *from == '\\' ? resolveEscape(from[1]) : '\0';
        *to++ = meant != '\0' ? meant : *from;
        from += meant != '\0' ? 2 : 1;
    }
    std::memset(to, 0, static_cast<size_t>(from - to));
}

// Both passes, one after the other.

namespace
{

struct TableFree
{
    void operator()(MessageTable *table) const noexcept { kelto::freeTable(table); }
};

using TableOwner = std::unique_ptr<MessageTable, TableFree>;

struct Handlers
{
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    XML_CharacterDataHandler characterData;
    bool (*endStep)(void *state, uint64_t bytesRead);
};

constexpr uint64_t unquestionedTextBytes = uint64_t{8} << 20;
constexpr uint64_t maxExpansion = 100;

/** Whether a text is far longer than the file it stands in, as entities and default attributes can make it. */
bool isOutOfProportion(uint64_t textBytes, uint64_t bytesRead)
{
    return textBytes > unquestionedTextBytes && textBytes / maxExpansion > bytesRead;
}

/** What follows each step of the first pass: whether it is over. */
bool endStep1(void *state, uint64_t bytesRead)
{
    auto &pass = *static_cast<FirstPassState *>(state);
    if (pass.error == 0 && isOutOfProportion(pass.textSize, bytesRead))
        pass.error = KT_ERR_BAD_MSG_FILE;
    return pass.error != 0;
}

/** The same of the second, whose text is bounded by what the first measured. */
bool endStep2(void *state, uint64_t /*bytesRead*/)
{
    return static_cast<SecondPassState *>(state)->error != 0;
}

constexpr Handlers firstPass = {startElement1, endElement1, characterData1, endStep1};
constexpr Handlers secondPass = {startElement2, endElement2, characterData2, endStep2};

template <typename State> int runPass(kelto::File &file, kelto::Parser &parser, const Handlers &handlers, State &state)
{
    if (!parser.restart(&state))
        return -1;
    XML_SetElementHandler(parser.get(), handlers.start, handlers.end);
    XML_SetCharacterDataHandler(parser.get(), handlers.characterData);
    const int result = kelto::parseFile(file, parser, handlers.endStep, &state);
    return result != 0 ? result : state.error;
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
int createTable(kelto::File &file, kelto::Parser &parser, const FirstPassState &measured, MessageTable **created)
{
    TableOwner table(kelto::allocateZeroed<MessageTable>(glbResHandle, 1).release());
    *created = table.get();
    if (table == nullptr)
        return KT_ERR_NO_MEMORY;
    table->msgCount = static_cast<uint32_t>(measured.highestId);

    const size_t pointerBytes = (size_t{table->msgCount} + 1) * sizeof(char *);
    kelto::TagBlock<char> block = allocateMessages(pointerBytes, measured.textSize);
    if (block == nullptr)
        return KT_ERR_NO_MEMORY;
    auto *const messages = reinterpret_cast<char **>(block.get());
    char *const text = block.get() + pointerBytes;
    SecondPassState pass = {measured.raw, 0, false, table.get(), messages, 0, text, text + measured.textSize};
    int result = runPass(file, parser, secondPass, pass);
    if (result == 0 && !isComplete(pass))
        result = KT_ERR_BAD_MSG_FILE;
    if (result != 0)
        return result;

    table->messages = reinterpret_cast<char **>(block.release());
    result = msgTableList->Insert(table.get());
    if (result == 0)
        static_cast<void>(table.release()); // the list's now, which may have freed it already
    return result;
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
    FirstPassState measured = {};
    measured.raw = raw;
    kelto::Parser parser;
    result = runPass(file, parser, firstPass, measured);
    if (result != 0)
        return result;
    result = createTable(file, parser, measured, table);
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
