// Messages that select others, on the ladder: each language has the rules of its own, and what it cannot say is said by
// the next.

#include "catalog/store.h"

#include <vector>

namespace
{

std::string told;

void note(void *, const KTCatalogProblem *problem)
{
    const std::string text = problem->text;
    const size_t quoted = text.find("\": ");
    told += std::string(problem->language) + " " + std::to_string(problem->id) + ": " +
            text.substr(quoted != std::string::npos ? quoted + 3 : 0) + "\n";
}

TEST(Selectors, FollowTheRulesOfEachLanguage)
{
    // The "source-language" of the first is wrong: the folder counts.
    FakeZel::file("d/ru/store.xlf", MessageFile()
                                        .attribute("source-language", "en")
                                        .unit(1, "%10plural[1]")
                                        .unit(11, "%d[1] файл%.0s[2]")
                                        .unit(14, "%d[1] файлов: %s[2]")
                                        .unit(2, "%20plural[2]")
                                        .unit(25, "%d[1]%s[2]")
                                        .unit(3, "%30plural[1]")
                                        .unit(31, "%d[1]")
                                        .unit(35, "%d[1]%d[2]")
                                        .unit(4, "x %40plural[1]")
                                        .xml());
    FakeZel::file(
        "d/fil/store.xlf",
        MessageFile().unit(1, "%10plural[1]").unit(11, "%d[1] tl%.0s[2]").unit(15, "%d[1] tl-other%.0s[2]").xml());
    KTCatalogOptions options = {};
    options.structSize = sizeof options;
    options.languages = "ru:fil";
    options.sourceLanguage = "";
    options.onProblem = note;
    KTCatalog *catalog = nullptr;
    ASSERT_EQ(KTOpenCatalog("d", "store", &options, &catalog), 0);
    const struct
    {
        int64_t id;
        std::vector<KTArgument> arguments;
        std::string text, told;
    } rows[] = {
        {1, {KT_INT(21), KT_UTF8("a")}, "21 файл", ""},
        {1, {KT_INT(11), KT_UTF8("a")}, "11 файлов: a", ""},
        {1,
         {KT_INT(2), KT_UTF8("a")},
         "2 tl",
         "ru 1: there is no variant for these arguments, and none for any other\n"},
        {1, {KT_INT(4), KT_UTF8("a")}, "4 tl-other", ""},
        {2,
         {KT_INT(1), KT_UTF8("a")},
         "1 source: a",
         "ru 2: argument 2 selects and is a text\nfil 2: the catalog has no such message\n"},
        {3,
         {KT_INT(1), KT_UTF8("a")},
         "1 source: a",
         "ru 3: argument 2 is a 32-bit integer in message 35, missing in those before it\nfil 3: the catalog has no "
         "such message\n"},
        {4,
         {KT_INT(1), KT_UTF8("a")},
         "1 source: a",
         "ru 4: a message that selects another is one conversion such as %101plural[1], and nothing else\nfil 4: the "
         "catalog has no such message\n"},
    };
    for (const auto &row : rows)
    {
        told.clear();
        const KTCatalogRequest request = {sizeof(KTCatalogRequest), row.id,   false,
                                          "%d[1] source: %s[2]",    SIZE_MAX, row.arguments.data(),
                                          row.arguments.size()};
        EXPECT_EQ(textOf(catalog, request), row.text);
        EXPECT_EQ(told, row.told);
    }
    KTCloseCatalog(catalog);
}

} // namespace
