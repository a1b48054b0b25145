/**
 * Loading in tests: a file in memory becomes a result and a text that shows all of the table, and whatever the file,
 * what the loader promises of outputs, blocks and messages is checked on the way.
 */
#ifndef KELTO_TESTS_MESSAGE_LOADING_H
#define KELTO_TESTS_MESSAGE_LOADING_H

#include "kelto.h"
#include "message/table_list.h"
#include "support/fake_zel.h"
#include "support/message_file_builder.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

/** A test with the library started. */
class MessageTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(KTInit(), 0); }
    void TearDown() override { KTClean(); }
};

struct Loaded
{
    int result;
    std::string content; // as in: en-US Example 1.0 #5: 2="text" 5="%s[1]"; else what became of the handle

    bool operator==(const Loaded &other) const { return result == other.result && content == other.content; }
};

inline std::ostream &operator<<(std::ostream &out, const Loaded &loaded)
{
    return out << loaded.result << ' ' << loaded.content;
}

/** Refused by the first pass or before it, which leaves the handle alone. */
inline Loaded refused(int result = KT_ERR_BAD_MSG_FILE)
{
    return {result, "untouched"};
}

/** Refused once the table had been allocated. */
inline Loaded refusedLate(int result = KT_ERR_BAD_MSG_FILE)
{
    return {result, "null"};
}

inline Loaded loaded(const std::string &messages)
{
    return {0, "en-US Example 1.0 " + messages};
}

inline char memoryPath[] = "m.xlf";

/** All that a table holds; each message must lie in the block of `blockBytes`, with its own two zero bytes. */
inline std::string describe(MessageTable *table, uint64_t blockBytes)
{
    std::string text = table->language;
    text += *table->country != '\0' ? "-" + std::string(table->country) : "";
    text += std::string(" ") + table->productName + " " + table->productVersion;
    text += " #" + std::to_string(table->msgCount) + ":";
    const char *const end = reinterpret_cast<const char *>(table->messages) + blockBytes;
    std::vector<bool> taken(blockBytes);
    EXPECT_EQ(table->messages[0], nullptr);
    for (unsigned id = 1; id <= table->msgCount; ++id)
    {
        char *message = nullptr;
        EXPECT_EQ(KTGetMessage(table, id, &message), 0);
        if (message == nullptr)
            continue;
        const auto length = static_cast<size_t>(KTMsgLen(message));
        EXPECT_LE(message + length + 2, end) << "message " << id;
        const auto first = static_cast<size_t>(message - reinterpret_cast<char *>(table->messages));
        for (size_t i = first; i < first + length + 2; ++i)
        {
            EXPECT_FALSE(taken[i]) << "message " << id << " lies over another";
            taken[i] = true;
        }
        text += " " + std::to_string(id) + "=\"" + std::string(message, length) + "\"";
    }
    return text;
}

/** Loads the file that stands at memoryPath. */
inline Loaded loadFile(bool raw = false)
{
    auto *const untouched = reinterpret_cast<MessageTable *>(0x10);
    MessageTable *table = untouched;
    const Outstanding before = FakeZel::outstanding();
    FakeZel::record();
    Loaded outcome = {raw ? KTLoadRawMessages(memoryPath, &table) : KTLoadMessages(memoryPath, &table), ""};
    const std::vector<uint64_t> sizes = FakeZel::blockSizes();
    if (outcome.result != 0)
    {
        outcome.content = table == untouched ? "untouched" : table == nullptr ? "null" : "left pointing somewhere";
        EXPECT_EQ(table == untouched, sizes.empty());
        EXPECT_EQ(FakeZel::outstanding(), before);
        EXPECT_EQ(KTFreeMessages(table), KT_ERR_TABLE_NOT_FOUND);
        return outcome;
    }
    outcome.content = describe(table, sizes.at(1));
    EXPECT_EQ(KTFreeMessages(table), 0);
    EXPECT_EQ(KTFreeMessages(table), KT_ERR_TABLE_NOT_FOUND);
    return outcome;
}

inline Loaded load(const std::string &xml, bool raw = false)
{
    FakeZel::file(memoryPath, xml);
    return loadFile(raw);
}

#endif
