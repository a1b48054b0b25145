// An input is a compiled catalog. It is loaded from memory and as a file, with the same answer; every text of one that
// is accepted lies in its block, and the table compiled again is what it was. Whatever it is, it gives a text for each
// number.

#include "kelto.h"
#include "message/table_list.h"
#include "support/fake_zel.h"
#include "support/require.h"

#include <cstring>
#include <vector>

namespace
{

char path[] = "messages.ktc";
constexpr uint64_t largestBlock = uint64_t{16} << 20; // more is refused, as where memory has run out

/** All that a table holds. */
std::string readAll(MessageTable *table)
{
    const char *const block = reinterpret_cast<char *>(table->messages);
    const char *const end = block + FakeZel::blockSizes().at(3);
    std::string all = table->language + std::string(table->country) + table->productName + table->productVersion;
    unsigned id = 0;
    char *message = nullptr;
    while (KTNextMessage(table, id, &id, &message) == 0)
    {
        const int length = KTMsgLen(message);
        require(message > block && message + length + 2 <= end, "a message lies in its block");
        all += std::to_string(id) + "=" + std::string(message, static_cast<size_t>(length));
    }
    return all;
}

std::vector<char> compile(MessageTable *table)
{
    size_t size = 0;
    require(KTCompileMessages(table, &size, nullptr) == KT_ERR_BUFFER_TOO_SMALL, "a catalog tells its size");
    std::vector<char> data(size);
    require(KTCompileMessages(table, &size, data.data()) == 0, "a catalog fits where it says so");
    return data;
}

struct Answer
{
    int result;
    std::string messages;
    std::vector<char> compiled;
};

/** Loads a catalog; from the file where there is no data. */
Answer load(const std::vector<char> *data)
{
    MessageTable *table = nullptr;
    const Outstanding before = FakeZel::outstanding();
    FakeZel::record();
    Answer answer = {};
    if (data != nullptr) // an empty one has no address
        answer.result = KTLoadCompiledData(data->empty() ? path : data->data(), data->size(), &table);
    else
        answer.result = KTLoadCompiledMessages(path, &table);
    require((table == nullptr) == (answer.result != 0), "a failure gives no table");
    if (answer.result == 0)
    {
        answer.messages = readAll(table);
        answer.compiled = compile(table);
        require(KTFreeMessages(table) == 0, "a table is released");
    }
    else
    {
        const std::vector<uint64_t> blocks = FakeZel::blockSizes();
        const bool hasRefused = !blocks.empty() && blocks.back() > largestBlock;
        require(answer.result == (hasRefused ? KT_ERR_NO_MEMORY : KT_ERR_BAD_MSG_FILE),
                "a catalog is refused by its code");
    }
    require(FakeZel::outstanding() == before, "nothing is left behind");
    return answer;
}

/** A catalog of these bytes gives a text for each number, the same in every room, or the beginning of it. */
void formatMessages(const std::vector<char> &data)
{
    const Outstanding before = FakeZel::outstanding();
    KTCatalog *catalog = nullptr;
    KTOpenCatalogData("store", data.empty() ? path : data.data(), data.size(), nullptr, &catalog);
    const KTArgument arguments[] = {KT_INT(7), KT_UTF8("\xC3\xA9<\xF0\x9F\x98\x80"), KT_DOUBLE(1.5)};
    for (const int64_t id : {1, 2, 3, 4, 5, 70000, -1})
        for (size_t count = 0; count <= 3; ++count)
        {
            size_t need = 0;
            KTCatalogFormatUTF8(catalog, id, "%d[1]", &need, nullptr, arguments, count);
            std::string whole(need + 1, '?');
            size_t size = whole.size();
            require(KTCatalogFormatUTF8(catalog, id, "%d[1]", &size, whole.data(), arguments, count) == 0 &&
                        size == need && whole[need] == '\0',
                    "a text fits where it says so");
            char few[9];
            size = sizeof few;
            KTCatalogFormatUTF8(catalog, id, "%d[1]", &size, few, arguments, count);
            require(size == need && whole.compare(0, std::strlen(few), few) == 0, "what is cut is the beginning");
        }
    KTCloseCatalog(catalog);
    require(FakeZel::outstanding() == before, "a catalog leaves nothing over");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    FakeZel::reset();
    FakeZel::refuseAbove(largestBlock);
    const std::vector<char> input(data, data + size); // a block of just this size
    FakeZel::file(path, {input.begin(), input.end()});
    formatMessages(input);
    const Answer answer = load(&input), fromFile = load(nullptr);
    require(fromFile.result == answer.result && fromFile.messages == answer.messages, "a file is what its bytes are");
    if (answer.result == 0)
        require(load(&answer.compiled).messages == answer.messages, "a table compiled again is what it was");
    return 0;
}
