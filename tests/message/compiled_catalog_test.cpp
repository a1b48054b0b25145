#include "message/compiled_layout.h"
#include "message/loading.h"
#include "message/stored_message.h"
#include "support/guarded.h"

#include <algorithm>
#include <climits>

namespace
{

class CompiledCatalogTest : public MessageTest
{
};

/** The table of a file, compiled: a block of just the bytes that are asked for. */
std::string compile(const std::string &xml, bool raw = false)
{
    MessageTable *table = nullptr;
    FakeZel::file(memoryPath, xml);
    EXPECT_EQ(raw ? KTLoadRawMessages(memoryPath, &table) : KTLoadMessages(memoryPath, &table), 0);
    size_t size = 0;
    EXPECT_EQ(KTCompileMessages(table, &size, nullptr), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(KTCompileMessages(table, &size, nullptr), KT_ERR_INVALID_PARAMETER) << "null for a capacity";
    EXPECT_EQ(KTCompileMessages(table, nullptr, nullptr), KT_ERR_INVALID_PARAMETER);
    std::vector<char> data(size);
    size_t capacity = size - 1;
    EXPECT_EQ(KTCompileMessages(table, &capacity, data.data()), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(capacity, size);
    EXPECT_EQ(std::count(data.begin(), data.end(), '\0'), static_cast<long>(size)) << "untouched";
    EXPECT_EQ(KTCompileMessages(table, &capacity, data.data()), 0);
    EXPECT_EQ(KTFreeMessages(table), 0);
    EXPECT_EQ(KTCompileMessages(table, &capacity, data.data()), KT_ERR_TABLE_NOT_FOUND);
    return std::string(data.begin(), data.end());
}

/** Loads a catalog from memory at an odd address, or as a file. */
Loaded loadCompiled(const std::string &data, bool fromFile = false)
{
    auto *table = reinterpret_cast<MessageTable *>(0x10);
    if (fromFile)
        FakeZel::file(memoryPath, data).shortReads = {{1, 30}, {2, 1}, {5, 3}}; // which go on
    std::vector<char> shifted(data.size() + 1);
    std::copy(data.begin(), data.end(), shifted.begin() + 1);
    FakeZel::record();
    const int result = fromFile ? KTLoadCompiledMessages(memoryPath, &table)
                                : KTLoadCompiledData(shifted.data() + 1, data.size(), &table);
    if (result != 0)
        return {result, table == nullptr ? "null" : "left pointing somewhere"};
    const Loaded outcome = {0, describe(table, FakeZel::blockSizes().at(3))};
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 5u) << "four blocks, and the node of the list";
    EXPECT_EQ(KTFreeMessages(table), 0);
    return outcome;
}

TEST_F(CompiledCatalogTest, HoldsWhatTheFileHolds)
{
    const std::string longText(70000, 'x');
    for (const std::string &xml :
         {MessageFile().xml(),
          MessageFile()
              .attribute("source-language", "de")
              .attribute("product-name", "P")
              .unit(2, "")
              .unit(1, "a\\n")
              .xml(),
          MessageFile().unit(1, "only").xml(),
          MessageFile().unit(9, placeholder("%s", "1") + longText).unit(3, "b").unit(4, "c").xml()})
        for (const bool raw : {false, true})
        {
            const std::string data = compile(xml, raw);
            EXPECT_EQ(compile(xml, raw), data) << "the same bytes again";
            const Loaded expected = load(xml, raw);
            EXPECT_EQ(loadCompiled(data), expected);
            EXPECT_EQ(loadCompiled(data, true), expected);
        }
    const std::string sparse = compile(MessageFile().unit(4194304, "b").unit(1, "a").xml());
    EXPECT_LT(sparse.size(), 200u);
    MessageTable *table = nullptr;
    EXPECT_EQ(KTLoadCompiledData(nullptr, sparse.size(), &table), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTLoadCompiledData(sparse.data(), sparse.size(), nullptr), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTLoadCompiledMessages(memoryPath, nullptr), KT_ERR_INVALID_PARAMETER);
    ASSERT_EQ(KTLoadCompiledData(sparse.data(), sparse.size(), &table), 0);
    unsigned id = 1;
    char *message = nullptr;
    EXPECT_EQ(KTNextMessage(table, 1, &id, &message), 0);
    EXPECT_EQ(id, 4194304u);
    EXPECT_STREQ(message, "b");
}

/** A catalog with one number, or all bytes from a place on, replaced. */
template <typename Value> std::string with(std::string data, size_t offset, Value value)
{
    std::memcpy(&data[offset], &value, sizeof value);
    return data;
}

TEST_F(CompiledCatalogTest, RefusesWhateverIsNotAsItShouldBe)
{
    using Header = kelto::CompiledHeader;
    constexpr uint32_t many = 0xFFFFFFFF;
    constexpr size_t name = sizeof(Header), entries = name + sizeof "Example" + sizeof "1.0";
    const std::string data = compile(MessageFile().unit(1, "abc").unit(3, "def").xml());
    const size_t texts = entries + 2 * sizeof(kelto::CompiledEntry);
    const std::string sparse = compile(MessageFile().unit(4194304, "0123456").xml());
    ASSERT_EQ(loadCompiled(data), loaded("#3: 1=\"abc\" 3=\"def\""));
    ASSERT_EQ(data.substr(0, 16), std::string("\x89KTC\r\n\x1A\n\4\3\2\1\1\0\0\0", 16)) << "so that older ones load";
    struct Row
    {
        const char *label;
        std::string data;
    };
    for (const Row &row : {
             Row{"nothing", ""},
             {"a message file", MessageFile().xml()},
             {"no magic", with(data, 0, 'k')},
             {"another byte order", with(data, offsetof(Header, byteOrder), uint32_t{0x04030201})},
             {"a newer layout", with(data, offsetof(Header, layout), kelto::compiledLayout + 1)},
             {"a byte less", data.substr(0, data.size() - 1)},
             {"a byte more", data + '\0'},
             {"the header alone", data.substr(0, name)},
             {"another highest ID", with(data, offsetof(Header, highestId), uint32_t{4})},
             {"a negative highest ID", with(with(data, offsetof(Header, highestId), many), entries + 8, many)},
             {"more messages than IDs", with(data, offsetof(Header, messages), many)},
             {"fewer entries", with(data, offsetof(Header, messages), uint32_t{1})},
             {"texts without end", with(data, offsetof(Header, textBytes), ~uint64_t{0})},
             {"texts that wrap around", with(data, offsetof(Header, textBytes), ~uint64_t{0} - 50)},
             {"no name",
              with(with(with(data, offsetof(Header, nameBytes), uint64_t{11} << 32 | 1), name, '\0'), name + 7, '.')},
             {"no version", with(with(with(data, offsetof(Header, nameBytes), uint64_t{1} << 32 | 11), name + 7, '.'),
                                 name + 10, '\0')},
             {"a shorter name", with(data, name + 2, '\0')},
             {"a name without end", with(data, name + 7, 'x')},
             {"a language without end", with(data, offsetof(Header, language) + 2, 'x')},
             {"a country without end", with(data, offsetof(Header, country) + 2, 'x')},
             {"an unused byte", with(data, offsetof(Header, unused), 'x')},
             {"another", with(data, offsetof(Header, unused) + 1, 'x')},
             {"ID 0", with(data, entries, uint32_t{0})},
             {"the same ID twice", with(with(data, entries, uint32_t{1}), entries + 8, uint32_t{1})},
             {"an ID that leaves no room for the next", with(data, entries, uint32_t{3})},
             {"a text that is too long", with(data, entries + 4, many)},
             {"a text that takes the next one's bytes", with(data, entries + 4, uint32_t{8})},
             {"a text that ends too early", with(data, entries + 4, uint32_t{2})},
             {"a last text that ends too early", with(data, entries + 12, uint32_t{2})},
             {"bytes behind the last text", with(with(data, entries + 12, uint32_t{1}), texts + 6, uint16_t{0})},
             {"a text of a table with an index that is too long", with(sparse, sparse.size() - 12, many)},
             {"a first zero byte that is none", with(data, texts + 3, 'x')},
             {"a second zero byte that is none", with(data, texts + 9, 'x')},
         })
    {
        EXPECT_EQ(loadCompiled(row.data), refusedLate()) << row.label;
        EXPECT_EQ(loadCompiled(row.data, true), refusedLate()) << row.label;
    }
    // What a text holds is nobody's business, and a length is not believed before the file has it.
    EXPECT_EQ(loadCompiled(with(data, texts + 1, '\0')), loaded(std::string("#3: 1=\"a\0c\" 3=\"def\"", 19)));
    FakeZel::refuseAbove(1 << 20);
    EXPECT_EQ(loadCompiled(with(data, offsetof(Header, textBytes), uint64_t{1} << 40), true), refusedLate());
    const std::string highest = with(data, offsetof(Header, highestId), INT_MAX);
    EXPECT_EQ(loadCompiled(highest, true), refusedLate());
    const std::string high = with(highest, entries + 8, INT_MAX);
    EXPECT_EQ(loadCompiled(high, true).result, KT_ERR_NO_MEMORY);
    EXPECT_EQ(loadCompiled(with(high, entries, INT_MAX), true), refusedLate()) << "before the pointers are asked for";

    // What was looked at before the messages are read counts no more.
    FakeFile &file = FakeZel::file(memoryPath, data);
    const FakeZel::Observer observer([&](const Call &call) {
        if (call.operation == Operation::FileRead && call.offset == entries)
            file.bytes = with(data, entries + 8, uint32_t{2});
    });
    MessageTable *table = nullptr;
    EXPECT_EQ(KTLoadCompiledMessages(memoryPath, &table), KT_ERR_BAD_MSG_FILE);
}

} // namespace
