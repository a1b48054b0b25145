// An input is a message file; where it holds two form feeds, which no XML document can, the file changes while it is
// loaded, from what stands before them to what stands behind. It is loaded, raw and not, every message is read and
// compared with a reading of the file that shares nothing with the loader, and the version query must say what the
// table says.

#include "kelto.h"
#include "message/table_list.h"
#include "support/fake_zel.h"
#include "support/guarded.h"

#include <cstring>
#include <expat.h>
#include <map>

namespace
{

char path[] = "messages.xlf";
constexpr unsigned readOneByOne = 5000;           // the IDs between them and the highest one are only sampled
constexpr size_t largestBlock = size_t{16} << 20; // more is refused, as where memory has run out

// ---- The other reading: in one piece and one pass, with growing strings in place of measuring ----

struct Reading
{
    bool raw;
    std::map<int, std::string> messages = {};
    int id = 0;
    bool inSource = false;
};

std::string unescaped(const std::string &text)
{
    const std::string written = "\\trn\"", meant = "\\\t\r\n\"";
    std::string result;
    for (size_t i = 0; i < text.size(); ++i)
    {
        const size_t escape = text[i] == '\\' && i + 1 < text.size() ? written.find(text[i + 1]) : std::string::npos;
        result += escape != std::string::npos ? meant[escape] : text[i];
        i += escape != std::string::npos ? 1 : 0;
    }
    return result;
}

void startElement(void *state, const char *name, const char **attributes)
{
    auto &reading = *static_cast<Reading *>(state);
    const std::string element = name;
    const auto attribute = [&](const char *wanted) -> const char * {
        for (const char **each = attributes; *each != nullptr; each += 2)
            if (std::strcmp(*each, wanted) == 0)
                return each[1];
        return nullptr;
    };
    const char *const ts = attribute("ts"), *const id = attribute("id");
    reading.inSource = element == "source";
    if (element == "trans-unit")
    {
        const char *const digits = ts != nullptr ? ts : id;
        reading.id = digits != nullptr ? static_cast<int>(std::strtol(digits, nullptr, 10)) : 0;
        reading.messages[reading.id];
    }
    else if (element == "x" && ts != nullptr && id != nullptr)
        reading.messages[reading.id] += reading.raw ? std::string(ts) : ts + ("[" + std::string(id) + "]");
}

void endElement(void *state, const char *name)
{
    auto &reading = *static_cast<Reading *>(state);
    if (std::strcmp(name, "source") == 0)
        reading.messages[reading.id] = unescaped(reading.messages[reading.id]);
    reading.inSource = std::strcmp(name, "x") == 0 || (reading.inSource && std::strcmp(name, "source") != 0);
}

void characterData(void *state, const char *text, int length)
{
    auto &reading = *static_cast<Reading *>(state);
    if (reading.inSource)
        reading.messages[reading.id].append(text, static_cast<size_t>(length));
}

/** The messages, by ID, of a document that the loader accepts. */
std::map<int, std::string> readMessages(const std::string &document, bool raw)
{
    Reading reading = {raw};
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &reading);
    XML_SetElementHandler(parser, startElement, endElement);
    XML_SetCharacterDataHandler(parser, characterData);
    require(XML_Parse(parser, document.data(), static_cast<int>(document.size()), XML_TRUE) == XML_STATUS_OK,
            "a document that loads is well-formed");
    XML_ParserFree(parser);
    return reading.messages;
}

// ---- The checks ----

void checkMessage(MessageTable *table, const char *blockEnd, unsigned id, const std::map<int, std::string> &expected)
{
    char *message = path;
    require(KTGetMessage(table, id, &message) == 0, "an ID up to the highest is found");
    const auto found = expected.find(static_cast<int>(id));
    require((message == nullptr) == (found == expected.end()), "a message is null where the file has none");
    if (message == nullptr)
        return;
    const int length = KTMsgLen(message);
    require(found->second == message, "a message is what the file says");
    require(static_cast<size_t>(length) == found->second.size(), "KTMsgLen is the stored length");
    require(message >= reinterpret_cast<char *>(table->messages) && message + length + 2 <= blockEnd,
            "a message lies in its block");
    Guarded<char> copy(static_cast<size_t>(length) + 2);
    require(KTMsgCpy(message, copy.data()) == message + length, "KTMsgCpy tells the end");
    require(std::memcmp(message, copy.data(), copy.capacity()) == 0, "KTMsgCpy copies with two zero bytes");
}

void checkTable(MessageTable *table, uint64_t blockBytes, const std::map<int, std::string> &expected)
{
    const char *const blockEnd = reinterpret_cast<char *>(table->messages) + blockBytes;
    const unsigned highest = table->msgCount;
    for (unsigned id = 1; id <= highest && id <= readOneByOne; ++id)
        checkMessage(table, blockEnd, id, expected);
    for (const auto &[id, text] : expected)
        checkMessage(table, blockEnd, static_cast<unsigned>(id), expected);
    char *message = path;
    require(KTGetMessage(table, 0, &message) == KT_ERR_INVALID_MSG_ID && message == nullptr, "0 is no ID");
    require(KTGetMessage(table, highest + 1, &message) == KT_ERR_INVALID_MSG_ID, "the highest ID is the last");
    require(std::strlen(table->language) <= 2 && std::strlen(table->country) <= 2, "language and country end");
    require(*table->productName != '\0' && *table->productVersion != '\0', "a product has a name and a version");
}

/** Loads the file; the version that the table has, or none. */
std::string load(const std::string &later, bool raw)
{
    auto *const untouched = reinterpret_cast<MessageTable *>(path);
    MessageTable *table = untouched;
    const Outstanding before = FakeZel::outstanding();
    FakeZel::record();
    const int result = raw ? KTLoadRawMessages(path, &table) : KTLoadMessages(path, &table);
    const std::vector<uint64_t> blocks = FakeZel::blockSizes();
    std::string version;
    if (result == 0)
    {
        checkTable(table, blocks.at(1), readMessages(later, raw));
        version = table->productVersion;
        require(KTFreeMessages(table) == 0, "a table is released");
    }
    else
    {
        const bool hasRefused = !blocks.empty() && blocks.back() > largestBlock;
        require(result == (hasRefused ? KT_ERR_NO_MEMORY : KT_ERR_BAD_MSG_FILE), "a file is refused by its code");
        require(table == (blocks.empty() ? untouched : nullptr), "a failure gives no table");
    }
    require(KTFreeMessages(table) == KT_ERR_TABLE_NOT_FOUND, "what is no table, or no more, is not found");
    require(FakeZel::outstanding() == before, "nothing is left behind");
    return version;
}

void checkVersion(const std::string &loaded)
{
    const Outstanding before = FakeZel::outstanding();
    Guarded<char> version(20);
    const int result = KTGetMsgFileVer(path, version.data());
    require(FakeZel::outstanding() == before, "the query leaves nothing behind");
    require(result == 0 || result == KT_ERR_BAD_MSG_FILE, "a file is refused by its code");
    require(version.isTerminated(), "the version ends in its buffer");
    require(version.text().empty() == (result != 0), "there is a version where there is no failure");
    require(loaded.empty() || version.text() == (loaded.size() < version.capacity() ? loaded : ""),
            "the version is that of the table, unless it is too long");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    const std::string input(reinterpret_cast<const char *>(data), size);
    const size_t border = input.find("\f\f");
    const bool changes = border != std::string::npos;
    const std::string later = changes ? input.substr(border + 2) : input;
    FakeZel::reset();
    FakeZel::refuseAbove(largestBlock);
    FakeZel::file(path, input.substr(0, border)).thenBytes(later);
    const std::string plain = load(later, false), raw = load(later, true);
    require(changes || plain == raw, "both ways to load accept the same files");
    if (!changes)
        checkVersion(plain);
    return 0;
}
