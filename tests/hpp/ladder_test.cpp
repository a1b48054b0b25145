#include "hpp/texts.h"
#include "support/fake_zel.h"
#include "support/message_file_builder.h"

#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>
#include <thread>

namespace
{
thread_local long allocations = 0;
}

// What the C++ side takes from the heap; the C side takes nothing but through ZEL_malloc().
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    ++allocations;
    return std::malloc(size);
}
void *operator new(std::size_t size)
{
    if (void *const block = operator new(size, std::nothrow))
        return block;
    throw std::bad_alloc();
}
void operator delete(void *block) noexcept
{
    std::free(block);
}
void operator delete(void *block, std::size_t) noexcept
{
    std::free(block);
}

namespace
{

constexpr unsigned hugeId = 2147483647;
enum class Message
{
    pages = 3
};

/** A folder "d" with catalogs "store" in memory, and what was told. */
class Ladder : public testing::Test
{
protected:
    Ladder()
    {
        options.languages = "de:fr";
        options.on_problem = [this](const kelto::problem &p) {
            told.push_back(std::string(p.language) + ' ' + std::to_string(p.id) + ' ' + nameOf(p.error));
            stories.push_back(p.text);
        };
    }

    static void language(const std::string &name, const MessageFile &file)
    {
        FakeZel::file("d/" + name + "/store.xlf", file.xml());
    }

    kelto::catalog store() const { return kelto::catalog::find("store", "d", options); }

    std::vector<std::string> told, stories;
    kelto::catalog_options options;
};

const std::string english = "report.txt has 12 pages";

TEST_F(Ladder, SurvivesHostileTranslations)
{
    const std::pair<const char *, std::string> rows[] = {
        {"%s[1] hat %d[2] Seiten", "report.txt hat 12 Seiten"},
        {"%hd[2] Seiten: %5.2s[1]", "12 Seiten:    re"},
        {"%x[2] %!d[2]", english},
        {"%s[1] hat %s[2] Seiten", english},
        {"%d[1] hat %d[2] Seiten", english},
        {"%s[1]", english},
        {"", english},
        {"%s[1] %d[2] %d[3]", english},
        {"%U[1] %d[2]", english},
        {"%DT[1] %d[2]", english},
        {"%s[1] %f[2]", english},
        {"%*s[1] %d[2]", english},
        {"%s[1] %n[2]", english},
        {"%s %d", english},
        {"%s[1] %d[1]", english},
        {"%s[1] %d[2000000000]", english},
        {"%2000000000s[1] %d[2]", english},
        {"%s[1] %.2000000000d[2]", english},
    };
    language("en", MessageFile().unit(3, "%s[1] has %d[2] pages"));
    for (const auto &[translation, expected] : rows)
    {
        told.clear();
        language("de", MessageFile().unit(3, translation));
        const kelto::catalog catalog = store();
        for (int call = 0; call < 3; ++call)
        {
            EXPECT_EQ(catalog.format(3, "report.txt", 12), expected) << translation;
            EXPECT_EQ(catalog.format(Message::pages, KELTO_DEFAULT("%s[1]: %d[2]"), "report.txt", 12), expected);
        }
        EXPECT_EQ(told.size(), expected == english ? 1 : 0) << translation;
    }
}

TEST_F(Ladder, GoesFromLanguageToLanguageToTheSource)
{
    language("de", MessageFile().unit(1, "eins").unit(3, "%s[1]").unit(4, "").unit(5, ""));
    language("fr", MessageFile().unit(1, "un").unit(2, "deux").unit(3, "%n[1]").unit(4, "").unit(5, "cinq"));
    FakeZel::file("d/en/store.xlf", "<damaged");
    const kelto::catalog catalog = store();
    EXPECT_EQ(catalog.language(), "de");
    const Expected rows[] = {
        {"eins", catalog.format(1)},
        {"deux", catalog.format(2)},
        {"Number 7", catalog.format(3, KELTO_DEFAULT("Number %d[1]"), 7)},
        {"No. 7", catalog.format(3, KELTO_DEFAULT("No. %d[1]"), 7)}, // another text for the same message
        {"Number 7", catalog.format(3, KELTO_DEFAULT("Number %d[1]"), 7)},
        {"[store 3: x, 7]", catalog.format(3, kelto::unchecked("%own[1] %d[2]"), "x", 7)},
        {"[store 3: x, 7, -1, \xC3\xA9, あ, 1.5, 2.5, wide, ]",
         catalog.format(3, std::string("x"), 7U, -1L, '\xE9', u'あ', 1.5, 2.5L, u"wide", std::string_view())},
        {"[store 9: a, \xEF\xBF\xBD\xEF\xBF\xBD]",
         catalog.format(hugeId / hugeId * 9, std::string("a\0b", 3), "\xF0\x9F\xFF")},
        {"[store 2147483647]", catalog.format(hugeId)},
        {"[store -1]", catalog.format(-1)},
        {"[store 4294967298]", catalog.format((1LL << 32) + 2)},
        {"[store 18446744073709551615: x]", catalog.format(~0ULL, "x")},
        {"", catalog.format(4)}, // empty everywhere
        {"vier", catalog.format(4, KELTO_DEFAULT("vier"))},
        {"[store 4: x, 1970-01-01 00:00:00]", catalog.format(4, "x", std::chrono::system_clock::time_point())},
        {"cinq", catalog.format(5)},
        {"", catalog.format(6, KELTO_DEFAULT(""))},
        {"deux", std::string(catalog.text(2))},
        {"", std::string(catalog.text(7))},
    };
    for (const Expected &row : rows)
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
    EXPECT_EQ(told, expected);
    EXPECT_EQ(stories[1], "\"%s[1]\": argument 1 is a UTF-8 string here, a 32-bit integer in the call");
    EXPECT_EQ(stories[2], "\"%n[1]\": no conversion has this name");
}

TEST_F(Ladder, TellsWhatIsTooLong)
{
    language("de", MessageFile().unit(1, "%28s[1]").unit(2, "%29s[1]"));
    options.max_size = 20;
    const kelto::catalog catalog = store();
    EXPECT_EQ(catalog.format(1, "a").size(), 28);
    EXPECT_EQ(catalog.format(2, "a"), "[store 2: a]");
    EXPECT_EQ(catalog.format(2, KELTO_DEFAULT("%29s[1]"), "a").size(), 29); // the program's own may be longer
    EXPECT_EQ(told, std::vector<std::string>{"de 2 KT_ERR_BUFFER_TOO_SMALL"});
    told.clear();
    const std::string text(3000, 'x');
    EXPECT_EQ(catalog.format(1, text), text);
    EXPECT_EQ(catalog.format(1, KELTO_DEFAULT("%s[1]"), text.c_str()), text);
    language("de", MessageFile().unit(1, "%9000U[1]"));
    EXPECT_EQ(store().format(1, std::u16string(400, u'x')).size(), 9000); // 3 bytes of UTF-8 for a unit
    EXPECT_EQ(told.size(), 0);
    EXPECT_EQ(store().format(1, u"a"), "[store 1: a]");
    EXPECT_EQ(told, std::vector<std::string>{"de 1 KT_ERR_BUFFER_TOO_SMALL"});
}

/** A message file as a compiled catalog. */
std::string compiled(const MessageFile &file)
{
    FakeZel::file("d/source.xlf", file.xml());
    char path[] = "d/source.xlf";
    const kelto::library library;
    MessageTable *table = nullptr;
    EXPECT_EQ(KTLoadMessages(path, &table), 0);
    std::size_t size = 0;
    KTCompileMessages(table, &size, nullptr);
    std::string data(size, '\0');
    EXPECT_EQ(KTCompileMessages(table, &size, data.data()), 0);
    KTFreeMessages(table);
    return data;
}

TEST_F(Ladder, PrefersCompiledCatalogs)
{
    const std::string data = compiled(MessageFile().unit(1, "compiled %d[1]"));
    language("de", MessageFile().unit(1, "source %d[1]"));
    FakeZel::file("d/de/store.ktc", data);
    EXPECT_EQ(store().format(1, 7), "compiled 7");
    EXPECT_EQ(kelto::catalog::load("d/de/store.ktc").format(1, 7), "compiled 7");
    EXPECT_EQ(kelto::catalog::load("d/de/store.ktc").language(), "en_US");
    EXPECT_EQ(kelto::catalog::embedded("store", data.data(), data.size()).format(1, 7), "compiled 7");
    std::unique_ptr<kelto::catalog> catalog;
    std::string nested; // who is told may ask for a message
    options.on_problem = [&](const kelto::problem &p) {
        told.push_back(std::string(p.file) + ' ' + nameOf(p.error));
        nested += catalog != nullptr ? catalog->format(1, 8) : "";
    };
    FakeZel::file("d/de/store.ktc", data.substr(0, data.size() - 1));
    FakeZel::file("d/fr/store.ktc", "");
    catalog = std::make_unique<kelto::catalog>(store());
    EXPECT_EQ(catalog->format(1, 7), "source 7");
    EXPECT_EQ(catalog->format(2, 7), "[store 2: 7]");
    EXPECT_EQ(nested, "source 8source 8");
    EXPECT_EQ(told,
              (std::vector<std::string>{"d/de/store.ktc KT_ERR_BAD_MSG_FILE", "d/de/store.xlf KT_ERR_INVALID_MSG_ID",
                                        "d/fr/store.ktc KT_ERR_BAD_MSG_FILE"}));
    std::error_code failure;
    EXPECT_EQ(kelto::catalog::load("d/de/store.ktc", failure).format(1, 7), "[store 1: 7]");
    EXPECT_EQ(failure, kelto::make_error(KT_ERR_BAD_MSG_FILE));
    EXPECT_EQ(kelto::catalog::embedded("x", "", 0, failure).format(1, KELTO_DEFAULT("%d[1]"), 7), "7");
    EXPECT_EQ(failure, kelto::make_error(KT_ERR_BAD_MSG_FILE));
}

TEST_F(Ladder, NeedsNoFile)
{
    std::error_code failure;
    options.languages = "..:../../etc:/etc";
    EXPECT_EQ(store().format(1, KELTO_DEFAULT("%d[1]"), 7), "7");
    EXPECT_EQ(told, std::vector<std::string>{" 0 KT_ERR_FILE_UNAVAILABLE"});
    EXPECT_EQ(stories, std::vector<std::string>{"there is no catalog \"store\" in \"d\" for en"});
    EXPECT_FALSE(options.on_problem = std::function<void(const kelto::problem &)>());
    EXPECT_EQ(store().language(), "");
    EXPECT_THROW(kelto::catalog::find("../store", "d"), kelto::error);
    EXPECT_EQ(kelto::catalog::find("", "d", failure).format(1), "[1]");
    EXPECT_EQ(failure, std::errc::invalid_argument);
    EXPECT_EQ(kelto::catalog::load("d/missing.xlf", failure).format(1, 7), "[missing 1: 7]");
    EXPECT_EQ(failure, std::errc::no_such_file_or_directory);
    EXPECT_STREQ(failure.category().name(), "kelto");
    EXPECT_EQ(failure.message(), KTResultText(KT_ERR_FILE_UNAVAILABLE));
    FakeZel::file("d/one.xlf", MessageFile().unit(1, "%d[1]").xml());
    kelto::catalog one = kelto::catalog::load("d/one.xlf"), other = std::move(one);
    EXPECT_EQ(other.format(1, 7), "7");
    EXPECT_EQ(other.format(2), "[one 2]");
    EXPECT_EQ(one.format(1, 7), "[1: 7]");
    EXPECT_EQ(one.format(1, KELTO_DEFAULT("%d[1] in all"), 7), "7 in all");
}

TEST_F(Ladder, HoldsTheLibraryAsLongAsItNeedsIt)
{
    language("de", MessageFile().unit(1, "%d[1]"));
    std::unique_ptr<kelto::catalog> catalog;
    formTable *table = nullptr;
    {
        const kelto::library library;
        catalog = std::make_unique<kelto::catalog>(store());
        EXPECT_EQ(KTGetBuiltInFormTable(0, &table), 0);
    }
    EXPECT_EQ(catalog->format(1, 7), "7");
    catalog = nullptr;
    EXPECT_EQ(KTGetBuiltInFormTable(0, &table), KT_ERR_NOT_INITIALIZED);
    for (unsigned n = 1;; ++n) // each step of the start and of finding fails once
    {
        FakeZel::failNth(n);
        std::error_code failure;
        const kelto::catalog started = kelto::catalog::find("store", "d", options, failure);
        const std::string text = started.format(1, 7);
        EXPECT_TRUE(text == "7" || text == "[store 1: 7]") << text;
        if (FakeZel::clearFaults() == 0)
            break;
    }
}

TEST_F(Ladder, TakesNothingFromTheHeapButItsResult)
{
    language("de", MessageFile().unit(1, "%.1000s[2] %d[1]"));
    const kelto::catalog catalog = store();
    const std::string text(2000, 'x');
    std::string out;
    out.reserve(2000);
    char array[2100];
    catalog.format(1, 7, text);
    FakeZel::record();
    allocations = 0;
    catalog.format_to(std::back_inserter(out), 1, 7, text);
    catalog.format_to(array, 1, KELTO_DEFAULT("%d[1]%s[2]"), 7, text);
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(catalog.format(1, 7, text), out);
    EXPECT_EQ(allocations, 1);
    EXPECT_EQ(FakeZel::count(Operation::Malloc), 0);
}

TEST_F(Ladder, ServesManyThreadsAtOnce)
{
    MessageFile german, source;
    for (int id = 1; id <= 300; ++id)
    {
        source.unit(id, "%d[1] of %s[2]");
        german.unit(id, id % 3 == 0 ? "%s[1]" : "%d[1] von %s[2]");
    }
    language("de", german);
    language("en", source);
    std::atomic<int> problems{0};
    options.on_problem = [&](const kelto::problem &) { ++problems; };
    const kelto::catalog catalog = store();
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            for (int id = 1; id <= 301; ++id)
            {
                const std::string expected = id > 300      ? std::to_string(t) + " in all"
                                             : id % 3 == 0 ? std::to_string(t) + " of x"
                                                           : std::to_string(t) + " von x";
                EXPECT_EQ(catalog.format(id, KELTO_DEFAULT("%d[1] in all%.0s[2]"), t, "x"), expected);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(problems, 102);
}

} // namespace
