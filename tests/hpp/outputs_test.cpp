#include "hpp/texts.h"
#include "support/fake_zel.h"
#include "support/message_file_builder.h"

#include <chrono>
#include <cmath>
#include <filesystem>
#include <list>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace
{

struct Base
{
    int number;
};
struct Derived : Base
{
};

struct Range
{
    int from, to;
};
struct NamedRange
{
    const char *name;
    Range range;
};

} // namespace

template <class T> struct kelto::argument_of<T, std::enable_if_t<std::is_base_of_v<Base, T>>>
{
    static int convert(const T &value) { return value.number; }
};
template <> struct kelto::argument_of<Range>
{
    static std::pair<Base, int> convert(const Range &range) { return {{range.from}, range.to}; }
};
template <> struct kelto::argument_of<NamedRange>
{
    static std::pair<const char *, Range> convert(const NamedRange &named) { return {named.name, named.range}; }
};

namespace
{

kelto::catalog store(const MessageFile &file, const kelto::catalog_options &options = {})
{
    FakeZel::file("d/de/store.xlf", file.xml());
    kelto::catalog_options german = options;
    german.languages = "de";
    return kelto::catalog::find("store", "d", german);
}

const std::string wholeText = "Zürich: 😀"; // 14 bytes, whole characters end at 1, 3, 4, … 9, 13

enum class Count : unsigned char
{
    one = 1,
    several = 9
};

template <class... Arguments>
std::string through(const kelto::catalog &catalog, kelto::source_text_for<Arguments...> text,
                    const Arguments &...arguments)
{
    return catalog.format(2, text, arguments...);
}

TEST(Outputs, CountByTheFileAndElseByTheTwoTextsOfTheProgram)
{
    const kelto::catalog catalog = store(MessageFile()
                                             .attribute("source-language", "pl") // the folder's language counts
                                             .unit(1, "%10plural[1]")
                                             .unit(11, "%!d[1] Datei%.0s[2]")
                                             .unit(15, "%!d[1] Dateien in %s[2]"));
    const auto both = KELTO_PLURAL(1, "%!d[1] file in %s[2]", "%!d[1] files in %s[2]");
    EXPECT_EQ(catalog.format(1, both, 1L, "a"), "1 Datei");
    EXPECT_EQ(catalog.format(1, both, 22L, "a"), "22 Dateien in a");
    EXPECT_EQ(catalog.format(2, both, 1L, "a"), "1 file in a");
    EXPECT_EQ(catalog.format(2, both, -1L, "a"), "-1 files in a");
    EXPECT_EQ(catalog.format(2, KELTO_PLURAL(2, "%s[1] %hu[2]", "%s[1]s %hu[2]"), "a", uint16_t{1}), "a 1");
    EXPECT_EQ(catalog.format(2, KELTO_PLURAL(1, "one%u[1]", "many%u[1]"), Count::several), "many9");
    EXPECT_EQ(through(catalog, KELTO_PLURAL(1, "one%u[1]", "many%u[1]"), Count::one), "one1");
    EXPECT_EQ(catalog.format(2, kelto::source_text_for<long>(KELTO_PLURAL(1, "one%!d[1]", "many%!d[1]")), 1), "one1");
    EXPECT_EQ(catalog.formatted_size(2, both, 1L, "a"), 11U);
    kelto::catalog_options isolating;
    isolating.isolate = true;
    EXPECT_EQ(store(MessageFile().unit(1, "%s[1]."), isolating).format(1, "a"), "\u2068a\u2069.");
}

TEST(Outputs, AreCutAtWholeCharacters)
{
    const kelto::catalog catalog = store(MessageFile().unit(1, "%s[1]: %s[2]"));
    const kelto::prepared_format prepared("%s[1]: %s[2]");
    constexpr size_t ends[] = {0, 1, 1, 3, 4, 5, 6, 7, 8, 9, 9, 9, 9, 13, 13};
    for (size_t room = 0; room < std::size(ends); ++room)
    {
        std::string shortened, same;
        const auto end = catalog.format_to_n(std::back_inserter(shortened), room, 1, "Zürich", "😀");
        std::error_code failure;
        prepared.format_to_n(std::back_inserter(same), room, failure, "Zürich", "😀");
        EXPECT_EQ(shortened, wholeText.substr(0, ends[room])) << room;
        EXPECT_EQ(same, wholeText.substr(0, ends[room])) << room;
        EXPECT_EQ(end.size, catalog.formatted_size(1, "Zürich", "😀"));
    }
}

TEST(Outputs, NeverGoBeyondAnArray)
{
    const kelto::catalog catalog = store(MessageFile().unit(1, "%s[1]: %s[2]").unit(2, "%2000s[1]"));
    const kelto::prepared_format prepared("%s[1]: %s[2]");
    char line[12], all[14];
    const kelto::cut_text cut = catalog.format_to(line, 1, "Zürich", "😀");
    EXPECT_EQ(cut, "Zürich: ");
    EXPECT_TRUE(cut.is_cut());
    EXPECT_EQ(cut.needed, wholeText.size());
    EXPECT_STREQ(line, "Zürich: ");
    EXPECT_EQ(prepared.format_to(line, "Zürich", "😀"), cut);
    const kelto::cut_text whole = catalog.format_to(all, 1, KELTO_DEFAULT("%s[1] %s[2]"), "Zürich", "😀");
    EXPECT_EQ(whole, wholeText);
    EXPECT_FALSE(whole.is_cut());
    EXPECT_EQ(catalog.format_to(line, 3, KELTO_DEFAULT("%s[1]"), "never beyond"), "never beyon");
    EXPECT_EQ(catalog.format_to(line, 4, "never beyond"), "[store 4: n");
    EXPECT_EQ(catalog.format_to(line, 2, "a").needed, 2000);
    EXPECT_EQ(catalog.formatted_size(5), std::string("[store 5]").size());
}

TEST(Outputs, AreOfManyKinds)
{
    const kelto::catalog catalog = store(MessageFile().unit(1, "%s[1]: %s[2]").unit(2, "%1500s[1]"));
    std::list<char> list;
    std::vector<char> vector;
    std::ostringstream stream;
    catalog.format_to(std::back_inserter(list), 1, "Zürich", "😀");
    catalog.format_to(std::back_inserter(vector), 1, "Zürich", "😀");
    catalog.format_to(stream, 1, "Zürich", "😀") << "!";
    kelto::prepared_format("%d[1]").format_to(stream, 7) << "!";
    EXPECT_EQ(std::string(list.begin(), list.end()), wholeText);
    EXPECT_EQ(std::string(vector.begin(), vector.end()), wholeText);
    EXPECT_EQ(stream.str(), wholeText + "!7!");
    const kelto::form_table table =
        kelto::form_table::builder()
            .add<int>("shorter", [size = 3000](int) mutable { return std::string(size /= 2, 'x'); })
            .build();
    EXPECT_EQ(kelto::prepared_format("%shorter[1]", {&table}).format(1), std::string(750, 'x')); // behind a longer one
    EXPECT_EQ(catalog.format_utf16(1, "Zürich", "😀"), u"Zürich: 😀");
    EXPECT_EQ(catalog.format_utf16(2, "x"), std::u16string(1499, u' ') + u'x');
    EXPECT_EQ(kelto::prepared_format("%1500s[1]").format_utf16("x"), catalog.format_utf16(2, "x"));
    std::error_code failure;
    EXPECT_EQ(kelto::prepared_format("%d[1]").format_utf16(failure, "x"), u"");
    EXPECT_EQ(failure, kelto::make_error(KT_ERR_INVALID_PARAMETER));
}

TEST(Outputs, TakePathsDurationsAndFamilies)
{
    using namespace std::chrono;
    const double noNumber = std::nan("");
    const time_point<system_clock, duration<double>> never{duration<double>(noNumber)};
    const kelto::catalog catalog = store(MessageFile());
    const Expected rows[] = {
        {"a/b 90 1.5", catalog.format(1, KELTO_DEFAULT("%s[1] %!d[2] %.1f[3]"), std::filesystem::path("a/b"),
                                      seconds(minutes(1) + seconds(30)), duration<double>(1.5))},
        {"[store 1: a/b, 1500]", catalog.format(1, std::filesystem::path("a/b"), milliseconds(1500))},
        {"7 8", catalog.format(1, KELTO_DEFAULT("%d[1] %d[2]"), Base{7}, Derived{{8}})},
        {"[store 1: a, 1, 2, 3, 4, 5]", catalog.format(1, NamedRange{"a", {1, 2}}, Range{3, 4}, 5)},
        {"a: 1-2, 5", catalog.format(1, KELTO_DEFAULT("%s[1]: %d[2]-%d[3], %d[4]"), NamedRange{"a", {1, 2}}, 5)},
        {"01/01/0000 00:00:00", catalog.format(1, KELTO_DEFAULT("%DT[1]"), never)},
        {"12/31/1969 23:59:58", catalog.format(1, KELTO_DEFAULT("%DT[1]"),
                                               time_point<system_clock, duration<double>>(duration<double>(-1.5)))},
    };
    for (const Expected &row : rows)
        EXPECT_EQ(row.text, row.given);
}

struct Cents
{
    int cents;
};

} // namespace

template <> struct kelto::argument_of<Cents> : kelto::by_identity<Cents>
{
};

namespace
{

std::string bracketed(std::string_view plain)
{
    return '<' + std::string(plain) + '>';
}

TEST(Outputs, AreEncodedEverywhereWhateverATranslationSays)
{
    const kelto::form_table table = kelto::form_table::builder()
                                        .add<Cents>("money", [](const Cents &m) { return std::to_string(m.cents); })
                                        .with_encoder(bracketed)
                                        .encode_everywhere()
                                        .build();
    kelto::catalog_options options;
    options.table = &table;
    const kelto::catalog catalog = store(
        MessageFile().unit(1, "%s[1]: %d[2] %money[3]").unit(2, "%N[1]%s[2]%O[3] %money[4]").unit(3, "%E[1]"), options);
    const Expected rows[] = {
        {"<a>: <7> <5>", catalog.format(1, "a", 7, Cents{5})},
        {"<a> <5>", catalog.format(2, "a", Cents{5})},
        {"<a>", catalog.format(3, "a")},
        {"and <a>", catalog.format(4, KELTO_DEFAULT("and %s[1]"), "a")},
        {"[store 5: <a>, <7>]", catalog.format(5, "a", 7)},
        {"<a>", kelto::prepared_format("%s[1]", options).format("a")},
    };
    for (const Expected &row : rows)
        EXPECT_EQ(row.text, row.given);
    EXPECT_THROW(kelto::form_table::builder().encode_everywhere().build(), kelto::error);
}

// Without encode_everywhere(), the text in the source is what a translation is held against.
TEST(Outputs, LoseNoEncodingToATranslation)
{
    const kelto::form_table table = kelto::form_table::builder().with_encoder(bracketed).build();
    kelto::catalog_options options;
    options.table = &table;
    std::vector<std::string> told;
    options.on_problem = [&](const kelto::problem &p) { told.push_back(p.text); };
    const kelto::catalog catalog = store(MessageFile().unit(1, "%N[1]%O[2]%s[3]").unit(2, "%N[1]%s[2]%O[3]"), options);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(catalog.format(1, KELTO_DEFAULT("in %N[1]%s[2]%O[3]"), "a"), "in <a>");
    EXPECT_EQ(catalog.format(2, KELTO_DEFAULT("in %N[1]%s[2]%O[3]"), "a"), "<a>");
    EXPECT_EQ(catalog.format(1, "a"), "a");
    EXPECT_EQ(told.size(), 1);
}

TEST(Outputs, AreLeftByWhatOnProblemThrows)
{
    kelto::catalog_options options;
    options.on_problem = [](const kelto::problem &p) { throw std::runtime_error(p.text); };
    EXPECT_THROW(kelto::catalog::find("store", "nowhere", options), std::runtime_error);
    const kelto::catalog catalog = store(MessageFile().unit(1, "%d[1]"), options);
    EXPECT_THROW(catalog.format(1, KELTO_DEFAULT("%s[1]"), "a"), std::runtime_error);
    EXPECT_EQ(catalog.format(1, KELTO_DEFAULT("%s[1]"), "a"), "a"); // it was told
    EXPECT_EQ(catalog.format(1, 7), "7");
}

} // namespace
