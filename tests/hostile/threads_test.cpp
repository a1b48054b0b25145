// Everything at once: eight threads do all that the library allows them to do at the same time, and check what they
// get.

#include "message/loading.h"
#include "support/ucs2.h"

#include <array>
#include <cstdarg>
#include <thread>

namespace
{

constexpr int threadCount = 8;
constexpr int rounds = 200;

template <typename Work> void inThreads(Work work)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number)
        threads.emplace_back(work, number);
    for (std::thread &thread : threads)
        thread.join();
}

/** Writes a '!' in place of the text. */
int encode(const void *, int, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    *size = 1;
    if (room < 2)
        return KT_ERR_BUFFER_TOO_SMALL;
    *out = u'!';
    return 0;
}

std::u16string format(formTable *table, const char *text, ...)
{
    Ucs2Buffer out(60);
    unsigned long size = out.capacity();
    va_list arguments;
    va_start(arguments, text);
    EXPECT_EQ(KTvFormatStringWithPassThru(nullptr, false, table, nullptr, &size, out.data(), const_cast<char *>(text),
                                          arguments),
              0);
    va_end(arguments);
    return asString(out.data(), size);
}

void loadAndRead(MessageTable *shared)
{
    MessageTable *own = nullptr;
    ASSERT_EQ(KTLoadMessages(memoryPath, &own), 0);
    for (MessageTable *const table : {own, shared})
    {
        char *message = nullptr;
        ASSERT_EQ(KTGetMessage(table, 2, &message), 0);
        EXPECT_STREQ(message, "%s[2] of %d[1]");
        EXPECT_EQ(format(nullptr, message, 7, "text"), u"text of 7");
    }
    EXPECT_EQ(KTFreeMessages(own), 0);
    EXPECT_EQ(KTFreeMessages(own), KT_ERR_TABLE_NOT_FOUND);
}

void formatWithTables(int number)
{
    formTable *copy = nullptr;
    ASSERT_EQ(KTGetBuiltInFormTable(1, &copy), 0);
    copy->encoder = encode;
    EXPECT_EQ(format(copy, "%N[1]%s[2]%O[3]%d[4]", "hidden", number),
              u"!" + std::u16string(1, char16_t(u'0' + number)));
    EXPECT_EQ(KTFreeFormTable(copy), 0);

    EXPECT_EQ(KTRegisterEncoder(number % 2 == 0 ? encode : nullptr), 0);
    const std::u16string text = format(&builtInFormTable, "%N[1]%s[2]", "plain");
    EXPECT_TRUE(text == u"plain" || text == u"!") << "either encoder, and nothing else";
}

void convert()
{
    std::array<char, 20> bytes{};
    size_t size = bytes.size();
    EXPECT_EQ(KTUTF8ToMultiByte("shift_jis", 0, 0, "\xE3\x81\x82", &size, bytes.data()), 0);
    EXPECT_STREQ(bytes.data(), "\x82\xA0");
    EXPECT_EQ(KTMultiByteStrclen("EUC-JP", "a\xA4\xA2"), 2);
}

void askForVersion()
{
    std::array<char, 20> version{};
    EXPECT_EQ(KTGetMsgFileVer(memoryPath, version.data()), 0);
    EXPECT_STREQ(version.data(), "1.0");
}

class HostileThreads : public MessageTest
{
protected:
    void SetUp() override
    {
        MessageTest::SetUp();
        FakeZel::file(memoryPath,
                      MessageFile().unit(2, placeholder("%s", "2") + " of " + placeholder("%d", "1")).xml());
        ASSERT_EQ(KTLoadMessages(memoryPath, &m_shared), 0);
    }
    void TearDown() override
    {
        EXPECT_EQ(KTRegisterEncoder(nullptr), 0);
        MessageTest::TearDown();
    }

    MessageTable *m_shared = nullptr;
};

TEST_F(HostileThreads, DoEverythingAtOnce)
{
    inThreads([&](int number) {
        for (int round = 0; round < rounds; ++round)
            switch ((round + number) % 4)
            {
            case 0:
                loadAndRead(m_shared);
                break;
            case 1:
                formatWithTables(number);
                break;
            case 2:
                convert();
                break;
            default:
                askForVersion();
            }
    });
}

TEST_F(HostileThreads, ComeAndGoWhileAnotherUserKeepsTheLibraryUp)
{
    inThreads([&](int) {
        for (int round = 0; round < rounds; ++round)
        {
            ASSERT_EQ(KTInit(), 0);
            loadAndRead(m_shared);
            ASSERT_EQ(KTClean(), 0);
        }
    });
    char *message = nullptr;
    EXPECT_EQ(KTGetMessage(m_shared, 2, &message), 0) << "the table of the user who stayed";
}

} // namespace
