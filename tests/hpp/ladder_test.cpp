#include "catalog/ladder_rows.h"
#include "hpp/texts.h"

#include <cstdlib>
#include <new>

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

/** A catalog of the C++ layer, for the rows that both interfaces have. */
class CppStore
{
public:
    explicit CppStore(LadderLog &log, const char *languages = "de:fr", std::size_t maxSize = 1 << 20,
                      std::function<void()> onProblem = nullptr)
        : m_catalog(kelto::catalog::find("store", "d", optionsFor(log, languages, maxSize, std::move(onProblem))))
    {
    }

    template <class Id, class... Arguments> std::string format(Id id, const Arguments &...arguments) const
    {
        return m_catalog.format(id, arguments...);
    }
    template <class Id, class... Arguments>
    std::string formatOr(const char *source, Id id, const Arguments &...arguments) const
    {
        return m_catalog.format(id, kelto::unchecked(source), arguments...);
    }
    std::string text(unsigned id) const { return std::string(m_catalog.text(id)); }
    std::string language() const { return m_catalog.language(); }

private:
    static kelto::catalog_options optionsFor(LadderLog &log, const char *languages, std::size_t maxSize,
                                             std::function<void()> onProblem)
    {
        kelto::catalog_options options;
        options.languages = languages;
        options.max_size = maxSize != 0 ? maxSize : options.max_size;
        options.on_problem = [&log, onProblem](const kelto::problem &p) {
            if (onProblem)
                return onProblem();
            log.note(std::string(p.language), p.id, p.error.value(), p.text);
        };
        return options;
    }

    kelto::catalog m_catalog;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Cpp, Ladder, CppStore);

enum class Message
{
    pages = 3
};

/** A folder "d" with catalogs "store" in memory, and what was told. */
class CppLadder : public testing::Test
{
protected:
    CppLadder()
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

TEST_F(CppLadder, TakesEnumeratorsTextsOfTheSourceAndTimes)
{
    language("de", MessageFile().unit(3, "%d[1] Seiten"));
    const kelto::catalog catalog = store();
    const Expected rows[] = {
        {"12 Seiten", catalog.format(Message::pages, KELTO_DEFAULT("%d[1] pages"), 12)},
        {"No. 7", catalog.format(4, KELTO_DEFAULT("No. %d[1]"), 7)},
        {"[store 4: x, 1970-01-01 00:00:00]", catalog.format(4, "x", std::chrono::system_clock::time_point())},
    };
    for (const Expected &row : rows)
        EXPECT_EQ(row.text, row.given);
}

TEST_F(CppLadder, LoadsOneFileOrData)
{
    const std::string data = compiled(MessageFile().unit(1, "compiled %d[1]"));
    FakeZel::file("d/de/store.ktc", data);
    EXPECT_EQ(kelto::catalog::load("d/de/store.ktc").format(1, 7), "compiled 7");
    EXPECT_EQ(kelto::catalog::load("d/de/store.ktc").language(), "en_US");
    EXPECT_EQ(kelto::catalog::embedded("store", data.data(), data.size()).format(1, 7), "compiled 7");
    FakeZel::file("d/de/store.ktc", data.substr(0, data.size() - 1));
    std::error_code failure;
    EXPECT_EQ(kelto::catalog::load("d/de/store.ktc", failure).format(1, 7), "[store 1: 7]");
    EXPECT_EQ(failure, kelto::make_error(KT_ERR_BAD_MSG_FILE));
    EXPECT_EQ(kelto::catalog::embedded("x", "", 0, failure).format(1, KELTO_DEFAULT("%d[1]"), 7), "7");
    EXPECT_EQ(failure, kelto::make_error(KT_ERR_BAD_MSG_FILE));
}

TEST_F(CppLadder, NeedsNoFile)
{
    std::error_code failure;
    EXPECT_FALSE(options.on_problem = std::function<void(const kelto::problem &)>());
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

TEST_F(CppLadder, HoldsTheLibraryAsLongAsItNeedsIt)
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

TEST_F(CppLadder, TakesNothingFromTheHeapButItsResult)
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

} // namespace
