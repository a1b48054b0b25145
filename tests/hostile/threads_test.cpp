// Everything at once: eight threads do all that the library allows them to do at the same time, and check what they
// get.

#include "message/loading.h"
#include "support/ucs2.h"

#include <array>
#include <cstdarg>
#include <thread>

namespace
{

/** Writes a '!' in place of the text. */
int encode(const void *, int, unsigned long *size, UCS2 *out)
{
    const bool fits = *size > 1;
    *size = 1;
    if (fits)
        *out = u'!';
    return fits ? 0 : KT_ERR_BUFFER_TOO_SMALL;
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

MessageTable *shared; // by all threads

void loadAndRead(int)
{
    MessageTable *own = nullptr;
    ASSERT_EQ(KTLoadMessages(memoryPath, &own), 0);
    for (MessageTable *const table : {own, shared})
    {
        char *message = nullptr;
        ASSERT_EQ(KTGetMessage(table, 2, &message), 0);
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
    EXPECT_EQ(format(copy, "%N[1]%s[2]%O[3]%c[4]", "hidden", 'a' + number),
              u"!" + std::u16string(1, static_cast<UCS2>(u'a' + number)));
    EXPECT_EQ(KTFreeFormTable(copy), 0);

    EXPECT_EQ(KTRegisterEncoder(number % 2 == 0 ? encode : nullptr), 0);
    const std::u16string text = format(&builtInFormTable, "%N[1]%s[2]", "plain");
    EXPECT_TRUE(text == u"plain" || text == u"!") << "either encoder, and nothing else";
}

KTPreparedFormat *sharedFormat; // "%s[2]: %*d[1]"

void formatPrepared(int number)
{
    const KTArgument arguments[] = {KT_INT(3), KT_INT(number), KT_UTF8("thread")};
    char utf8[20];
    UCS2 units[20];
    size_t bytes = sizeof utf8, length = std::size(units);
    EXPECT_EQ(KTFormatPreparedUTF8(sharedFormat, 0, nullptr, &bytes, utf8, arguments, 3), 0);
    EXPECT_EQ(KTFormatPrepared(sharedFormat, 0, nullptr, &length, units, arguments, 3), 0);
    const std::string expected = "thread:   " + std::to_string(number);
    EXPECT_EQ(utf8, expected);
    EXPECT_EQ(asString(units), std::u16string(expected.begin(), expected.end()));
}

KTPreparedFormat *sharedMessage; // message 3

void selectAndFormat(int number)
{
    const KTArgument argument = KT_INT(number);
    unsigned id = 3;
    char *message = nullptr, utf8[20];
    size_t bytes = sizeof utf8;
    EXPECT_EQ(KTSelectMessage(shared, &id, nullptr, &argument, 1, &message), 0);
    EXPECT_EQ(id, number == 1 ? 11U : 15U);
    EXPECT_EQ(KTFormatPreparedUTF8(sharedMessage, 0, nullptr, &bytes, utf8, &argument, 1), 0);
    EXPECT_EQ(utf8, std::to_string(number) + (number == 1 ? " file" : " files"));
}

void convert(int)
{
    std::array<char, 20> bytes{};
    size_t size = bytes.size();
    EXPECT_EQ(KTUTF8ToMultiByte("shift_jis", 0, 0, "\xE3\x81\x82", &size, bytes.data()), 0);
    EXPECT_STREQ(bytes.data(), "\x82\xA0");
    EXPECT_EQ(KTMultiByteStrclen("EUC-JP", "a\xA4\xA2"), 2);
}

void askForVersion(int)
{
    std::array<char, 20> version{};
    EXPECT_EQ(KTGetMsgFileVer(memoryPath, version.data()), 0);
    EXPECT_STREQ(version.data(), "1.0");
}

void comeAndGo(int number)
{
    ASSERT_EQ(KTInit(), 0);
    loadAndRead(number);
    ASSERT_EQ(KTClean(), 0);
}

class HostileThreads : public MessageTest
{
};

TEST_F(HostileThreads, DoEverythingAtOnce)
{
    FakeZel::file(memoryPath, MessageFile()
                                  .unit(2, placeholder("%s", "2") + " of " + placeholder("%d", "1"))
                                  .unit(3, "%10plural[1]")
                                  .unit(11, "%d[1] file")
                                  .unit(15, "%d[1] files")
                                  .xml());
    ASSERT_EQ(KTLoadMessages(memoryPath, &shared), 0);
    ASSERT_EQ(KTPrepareFormat("%s[2]: %*d[1]", nullptr, &sharedFormat), 0);
    ASSERT_EQ(KTPrepareMessage(shared, 3, nullptr, nullptr, &sharedMessage), 0);
    static constexpr void (*works[])(int) = {loadAndRead, formatWithTables, formatPrepared, selectAndFormat,
                                             convert,     askForVersion,    comeAndGo};
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([number] {
            for (int round = 0; round < 300; ++round)
                works[static_cast<size_t>(round + number) % std::size(works)](number);
        });
    for (std::thread &thread : threads)
        thread.join();
    KTFreePrepared(sharedFormat);
    KTFreePrepared(sharedMessage);
    EXPECT_EQ(KTRegisterEncoder(nullptr), 0);
    EXPECT_EQ(KTFreeMessages(shared), 0) << "the table of the user who stayed";
}

} // namespace
