/**
 * What the ladder does, for every interface to it: an interface is a Store, which opens the catalog "store" of the
 * folder "d" and formats its messages, each in all the ways that it knows; what its catalog tells goes into the log.
 */
#ifndef KELTO_TESTS_CATALOG_LADDER_ROWS_H
#define KELTO_TESTS_CATALOG_LADDER_ROWS_H

#include "kelto.h"
#include "support/fake_zel.h"
#include "support/message_file_builder.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

/** What was told, and what is done then. */
struct LadderLog
{
    std::vector<std::string> told, stories;
    std::function<void()> onProblem = [] {};

    void note(const std::string &language, long long id, int result, const std::string &text)
    {
        const char *const name = KTResultName(result);
        told.push_back(language + ' ' + std::to_string(id) + ' ' + (name != nullptr ? name : "?"));
        stories.push_back(text);
        onProblem();
    }
};

/** A message file as a compiled catalog. */
inline std::string compiled(const MessageFile &file)
{
    FakeZel::file("d/source.xlf", file.xml());
    char path[] = "d/source.xlf";
    MessageTable *table = nullptr;
    size_t size = 0;
    EXPECT_EQ(KTInit() + KTLoadMessages(path, &table), 0);
    KTCompileMessages(table, &size, nullptr);
    std::string data(size, '\0');
    EXPECT_EQ(KTCompileMessages(table, &size, data.data()) + KTClean(), 0);
    return data;
}

struct LadderRow
{
    std::string text, given;
};

template <class Store> class Ladder : public testing::Test
{
protected:
    static void language(const std::string &name, const MessageFile &file)
    {
        FakeZel::file("d/" + name + "/store.xlf", file.xml());
    }

    LadderLog log;
};

TYPED_TEST_SUITE_P(Ladder);

TYPED_TEST_P(Ladder, SurvivesHostileTranslations)
{
    const std::string english = "report.txt has 12 pages";
    const std::pair<std::string, std::string> rows[] = {
        {"%s[1] hat %d[2] Seiten", "report.txt hat 12 Seiten"},
        {"%hd[2] Seiten: %5.2s[1]", "12 Seiten:    re"},
        {"%x[2] %!d[2]", english},
        {"%s[1] hat %s[2] Seiten", english},
        {"%d[1] hat %d[2] Seiten", english},
        {"%s[1]", english},
        {"%d[1]", english},
        {"", english},
        {"%s[1] %d[2] %d[3]", english},
        {"%s[1] %d[2] %s[3]%s[4]%s[5]%s[6]%s[7]%s[8]%s[9]%s[10]%s[11]%s[12]", english},
        {"%U[1] %d[2]", english},
        {"%DND[1] %d[2]", english},
        {"%DT[1] %d[2]", english},
        {"%s[1] %T[2]", english},
        {"%s[1] %f[2]", english},
        {"%s[1] %Lf[2]", english},
        {"%s[1] %c[2]", english},
        {"%s[1] %lc[2]", english},
        {"%*s[1] %d[2]", english},
        {"%.*s[1] %d[2]", english},
        {"%*.*s[1] %*.*d[2]", english},
        {"%s[1] %n[2]", english},
        {"%s %d", english},
        {"%", english},
        {"100 %", english},
        {"%s[1] %d[1]", english},
        {"%s[1] %d[0]", english},
        {"%s[1] %d[-2]", english},
        {"%s[1] %d[2", english},
        {"%s[1] %d[2000000000]", english},
        {"%s[1] %d[99999999999999999999]", english},
        {"%2000000000s[1] %d[2]", english},
        {"%99999999999999999999s[1] %d[2]", english},
        {"%s[1] %.2000000000d[2]", english},
        {"%s[1] %02000000000d[2]", english},
        {"%1048700s[1] %d[2]", english},
        {"%aNameThatIsFarTooLong[1] %d[2]", english},
        {"%s[1] %\xC3\xA9[2]", english},
        {"%N[1]%s[2] %d[3]", "report.txt 12"}, // left open
        {"%O[1]%s[2] %d[3]%N[4]", "report.txt 12"},
        {"%N[1] %d[2]", english},
        {"%E[1] %d[2]%IP[3]", english},
        {std::string(300000, 'x') + "%s[1] %n[2]", english},
    };
    this->language("en", MessageFile().unit(3, "%s[1] has %d[2] pages"));
    for (const auto &[translation, expected] : rows)
    {
        SCOPED_TRACE(translation.substr(0, 60));
        this->log.told.clear();
        this->language("de", MessageFile().unit(3, translation));
        const TypeParam store(this->log);
        for (int call = 0; call < 2; ++call)
        {
            EXPECT_EQ(store.format(3, "report.txt", 12), expected);
            EXPECT_EQ(store.formatOr("%s[1]: %d[2]", 3, "report.txt", 12), expected);
        }
        EXPECT_EQ(this->log.told.size(), expected == english ? 1u : 0u);
    }
}

TYPED_TEST_P(Ladder, GoesFromLanguageToLanguageToTheSource)
{
    this->language("de", MessageFile().unit(1, "eins").unit(3, "%s[1]").unit(4, "").unit(5, ""));
    this->language("fr", MessageFile().unit(1, "un").unit(2, "deux").unit(3, "%n[1]").unit(4, "").unit(5, "cinq"));
    FakeZel::file("d/en/store.xlf", "<damaged");
    const TypeParam store(this->log);
    EXPECT_EQ(store.language(), "de");
    const LadderRow rows[] = {
        {"eins", store.format(1)},
        {"deux", store.format(2)},
        {"Number 7", store.formatOr("Number %d[1]", 3, 7)},
        {"No. 7", store.formatOr("No. %d[1]", 3, 7)}, // another text for the same message
        {"Number 7", store.formatOr("Number %d[1]", 3, 7)},
        {"[store 3: x, 7]", store.formatOr("%own[1] %d[2]", 3, "x", 7)},
        {"[store 3: x, 7, -1, \xC3\xA9, あ, 1.5, 2.5, wide, ]",
         store.format(3, std::string("x"), 7U, -1L, '\xE9', u'あ', 1.5, 2.5L, u"wide", std::string_view())},
        {"[store 9: a, \xEF\xBF\xBD\xEF\xBF\xBD]", store.format(9, std::string("a\0b", 3), "\xF0\x9F\xFF")},
        {"[store 2147483647]", store.format(2147483647)},
        {"[store -1]", store.format(-1)},
        {"[store 4294967298]", store.format((1LL << 32) + 2)},
        {"[store 18446744073709551615: x]", store.format(~0ULL, "x")},
        {"", store.format(4)}, // empty everywhere
        {"vier", store.formatOr("vier", 4)},
        {"[store 4: x, 1970-01-01 00:00:00]", store.format(4, "x", "1970-01-01'T00:00:00Z")},
        {"cinq", store.format(5)},
        {"", store.formatOr("", 6)},
        {"deux", store.text(2)},
        {"", store.text(7)},
    };
    for (const LadderRow &row : rows)
        EXPECT_EQ(row.text, row.given);
    const std::vector<std::string> expected = {"de 2 KT_ERR_INVALID_MSG_ID",
                                               "de 3 KT_ERR_INVALID_PARAMETER",
                                               "fr 3 KT_ERR_FORMAT_SYNTAX",
                                               "en 0 KT_ERR_BAD_MSG_FILE",
                                               " 3 KT_ERR_FORMAT_SYNTAX",
                                               "de 9 KT_ERR_INVALID_MSG_ID",
                                               "fr 9 KT_ERR_INVALID_MSG_ID",
                                               "de 2147483647 KT_ERR_INVALID_MSG_ID",
                                               "fr 2147483647 KT_ERR_INVALID_MSG_ID",
                                               "de 4294967295 KT_ERR_INVALID_MSG_ID",
                                               "fr 4294967295 KT_ERR_INVALID_MSG_ID",
                                               "de 4 KT_ERR_INVALID_MSG_ID",
                                               "fr 4 KT_ERR_INVALID_MSG_ID",
                                               "de 5 KT_ERR_INVALID_MSG_ID",
                                               "de 6 KT_ERR_INVALID_MSG_ID",
                                               "fr 6 KT_ERR_INVALID_MSG_ID"};
    EXPECT_EQ(this->log.told, expected);
    EXPECT_EQ(this->log.stories[1], "\"%s[1]\": argument 1 is a UTF-8 string here, a 32-bit integer in the call");
    EXPECT_EQ(this->log.stories[2], "\"%n[1]\": no conversion has this name");
    EXPECT_EQ(this->log.stories[9], "no message has the number -1");
}

TYPED_TEST_P(Ladder, TellsWhatIsTooLong)
{
    this->language("de", MessageFile().unit(1, "%28s[1]").unit(2, "%29s[1]"));
    const TypeParam store(this->log, "de:fr", 20);
    EXPECT_EQ(store.format(1, "a").size(), 28u);
    EXPECT_EQ(store.format(2, "a"), "[store 2: a]");
    EXPECT_EQ(store.formatOr("%29s[1]", 2, "a").size(), 29u); // the program's own may be longer
    EXPECT_EQ(this->log.told, std::vector<std::string>{"de 2 KT_ERR_BUFFER_TOO_SMALL"});
    EXPECT_EQ(this->log.stories, std::vector<std::string>{"\"%29s[1]\": the text is longer than max_size, 20"});
    this->log.told.clear();
    const std::string text(3000, 'x');
    EXPECT_EQ(store.format(1, text), text);
    EXPECT_EQ(store.formatOr("%s[1]", 1, text.c_str()), text);
    this->language("de", MessageFile().unit(1, "%9000U[1]"));
    EXPECT_EQ(TypeParam(this->log, "de", 20).format(1, std::u16string(400, u'x')).size(), 9000u); // 3 bytes for a unit
    EXPECT_EQ(this->log.told.size(), 0u);
    EXPECT_EQ(TypeParam(this->log, "de", 20).format(1, u"a"), "[store 1: a]");
    EXPECT_EQ(this->log.told, std::vector<std::string>{"de 1 KT_ERR_BUFFER_TOO_SMALL"});
}

TYPED_TEST_P(Ladder, PrefersCompiledCatalogs)
{
    const std::string data = compiled(MessageFile().unit(1, "compiled %d[1]"));
    this->language("de", MessageFile().unit(1, "source %d[1]"));
    FakeZel::file("d/de/store.ktc", data);
    EXPECT_EQ(TypeParam(this->log).format(1, 7), "compiled 7");
    std::unique_ptr<TypeParam> store;
    std::string nested; // who is told may ask for a message
    this->log.onProblem = [&] { nested += store != nullptr ? store->format(1, 8) : ""; };
    FakeZel::file("d/de/store.ktc", data.substr(0, data.size() - 1));
    FakeZel::file("d/fr/store.ktc", "");
    store = std::make_unique<TypeParam>(this->log);
    EXPECT_EQ(store->format(1, 7), "source 7");
    EXPECT_EQ(store->format(2, 7), "[store 2: 7]");
    EXPECT_EQ(nested, "source 8source 8");
    EXPECT_EQ(this->log.told, (std::vector<std::string>{"de 0 KT_ERR_BAD_MSG_FILE", "de 2 KT_ERR_INVALID_MSG_ID",
                                                        "fr 0 KT_ERR_BAD_MSG_FILE"}));
    EXPECT_EQ(this->log.stories[0], std::string("d/de/store.ktc: ") + KTResultText(KT_ERR_BAD_MSG_FILE));
}

TYPED_TEST_P(Ladder, NeedsNoFile)
{
    const TypeParam store(this->log, "..:../../etc:/etc");
    EXPECT_EQ(store.formatOr("%d[1]", 1, 7), "7");
    EXPECT_EQ(store.format(1, 7), "[store 1: 7]");
    EXPECT_EQ(store.language(), "");
    EXPECT_EQ(this->log.told, std::vector<std::string>{" 0 KT_ERR_FILE_UNAVAILABLE"});
    EXPECT_EQ(this->log.stories, std::vector<std::string>{"there is no catalog \"store\" in \"d\" for en"});
}

TYPED_TEST_P(Ladder, ServesManyThreadsAtOnce)
{
    MessageFile german, source;
    for (int id = 1; id <= 300; ++id)
    {
        source.unit(id, "%d[1] of %s[2]");
        german.unit(id, id % 3 == 0 ? "%s[1]" : "%d[1] von %s[2]");
    }
    this->language("de", german); // the other one is loaded in the middle
    this->language("en", source);
    std::atomic<int> problems{0};
    const TypeParam store(this->log, "de", 0, [&] { ++problems; });
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            for (int id = 1; id <= 301; ++id)
            {
                const std::string expected = id > 300      ? std::to_string(t) + " in all"
                                             : id % 3 == 0 ? std::to_string(t) + " of x"
                                                           : std::to_string(t) + " von x";
                EXPECT_EQ(store.formatOr("%d[1] in all%.0s[2]", id, t, "x"), expected);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(problems, 102);
}

REGISTER_TYPED_TEST_SUITE_P(Ladder, SurvivesHostileTranslations, GoesFromLanguageToLanguageToTheSource,
                            TellsWhatIsTooLong, PrefersCompiledCatalogs, NeedsNoFile, ServesManyThreadsAtOnce);

#endif
