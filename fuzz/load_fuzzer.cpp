// Loads a message file, raw and not, reads every message, and compares them with a reading of the file that shares nothing
// with the loader.

#include "kelto.h"
#include "message/table_list.h"
#include "support/guarded.h"
#include "support/platform.h"
#include "support/require.h"
#include "support/xliff.h"

#include <cstring>
#include <unicode/ustring.h>

namespace
{

char path[] = "messages.xlf";
constexpr unsigned readOneByOne = 5000; // the IDs between them and the highest one are only sampled

bool isUTF8(const char *text, int length)
{
    UErrorCode status = U_ZERO_ERROR;
    int32_t units = 0;
    u_strFromUTF8(nullptr, 0, &units, text, length, &status);
    return status == U_BUFFER_OVERFLOW_ERROR || U_SUCCESS(status);
}

void checkMessage(MessageTable *table, unsigned id, const std::map<int, std::string> &expected)
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
    require(static_cast<size_t>(length) + 2 <= Platform::bytesLeftInBlock(message), "a message lies in its block");
    require(isUTF8(message, length), "a message is UTF-8");
    Guarded<char> copy(static_cast<size_t>(length) + 2);
    require(KTMsgCpy(message, copy.data()) == message + length, "KTMsgCpy tells the end");
    require(std::memcmp(message, copy.data(), copy.capacity()) == 0, "KTMsgCpy copies with two zero bytes");
}

void checkTable(MessageTable *table, const std::map<int, std::string> &expected)
{
    const unsigned highest = table->msgCount;
    for (unsigned id = 1; id <= highest && id <= readOneByOne; ++id)
        checkMessage(table, id, expected);
    for (const auto &[id, text] : expected)
        checkMessage(table, static_cast<unsigned>(id), expected);
    char *message = path;
    require(KTGetMessage(table, 0, &message) == KT_ERR_INVALID_MSG_ID && message == nullptr, "0 is no ID");
    require(KTGetMessage(table, highest + 1, &message) == KT_ERR_INVALID_MSG_ID, "the highest ID is the last");
    require(std::strlen(table->language) <= 2 && std::strlen(table->country) <= 2, "language and country end");
    require(*table->productName != '\0' && *table->productVersion != '\0', "a product has a name and a version");
}

int load(const MessageFileInput &input, bool raw)
{
    auto *const untouched = reinterpret_cast<MessageTable *>(path);
    MessageTable *table = untouched;
    const long before = Platform::outstanding();
    const int result = raw ? KTLoadRawMessages(path, &table) : KTLoadMessages(path, &table);
    const bool hasRefused = Platform::hasRefused();
    if (result != 0)
    {
        require(result == (hasRefused ? KT_ERR_NO_MEMORY : KT_ERR_BAD_MSG_FILE), "a file is refused by its code");
        require(table == untouched || table == nullptr, "a failure gives no table");
        require(Platform::outstanding() == before, "a failure leaves nothing behind");
        require(KTFreeMessages(table) == KT_ERR_TABLE_NOT_FOUND, "what is no table is not found");
        return result;
    }
    const auto expected = readMessages(input.later, raw);
    require(expected.has_value(), "a document that loads is well-formed");
    checkTable(table, *expected);
    require(KTFreeMessages(table) == 0, "a table is released");
    require(KTFreeMessages(table) == KT_ERR_TABLE_NOT_FOUND, "a table is released once");
    require(Platform::outstanding() == before, "a released table leaves nothing behind");
    return 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    const MessageFileInput input(data, size);
    Platform::serve(input.first, input.later);
    const int plain = load(input, false);
    const int raw = load(input, true);
    require(input.changes || plain == raw, "both ways to load accept the same files");
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize, unsigned seed)
{
    return mutateMessageFile(data, size, maxSize, seed);
}
