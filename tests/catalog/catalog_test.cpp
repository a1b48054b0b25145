// What the C interface of catalogs has beyond the ladder: opening, options, limits, the program's functions.

#include "catalog/store.h"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace
{

KTCatalogOptions sized(size_t size = sizeof(KTCatalogOptions))
{
    KTCatalogOptions options = {};
    options.structSize = size;
    options.languages = "de";
    return options;
}

template <class... Arguments>
std::string text(const KTCatalog *catalog, int64_t id, const char *source, const Arguments &...arguments)
{
    const KTArgument list[] = {typed(arguments)..., KTArgument()};
    return textOf(catalog, {sizeof(KTCatalogRequest), id, false, source, SIZE_MAX, list, sizeof...(arguments)});
}

TEST(Catalog, OpensWhateverTheFileIs)
{
    char folder[] = "/tmp/kelto-catalog-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    FakeZel::file("d/one.xlf", MessageFile().unit(1, "one %d[1]").xml());
    FakeZel::file("d/damaged.xlf", "<xliff>");
    FakeZel::file("d/empty.ktc", "");
    const struct
    {
        std::string path;
        int result;
        std::string text;
    } rows[] = {{"d/one.xlf", 0, "one 7"},
                {"d/damaged.xlf", KT_ERR_BAD_MSG_FILE, "[damaged 1: 7]"},
                {"d/empty.ktc", KT_ERR_BAD_MSG_FILE, "[empty 1: 7]"},
                {"d/missing", KT_ERR_FILE_UNAVAILABLE, "[missing 1: 7]"},
                {"./missing", KT_ERR_FILE_UNAVAILABLE, "[missing 1: 7]"},
                {folder, KT_ERR_FILE_NOT_OPENED, '[' + std::string(folder).substr(5) + " 1: 7]"},
                {"/dev/null", KT_ERR_FILE_NOT_OPENED, "[null 1: 7]"}};
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.path);
        KTCatalog *catalog = nullptr;
        EXPECT_EQ(KTOpenCatalogFile(row.path.c_str(), nullptr, &catalog), row.result);
        EXPECT_EQ(text(catalog, 1, nullptr, 7), row.text);
        EXPECT_EQ(text(catalog, 1, "here %d[1]", 7), row.result == 0 ? "one 7" : "here 7");
        EXPECT_STREQ(KTCatalogLanguage(catalog), row.result == 0 ? "en_US" : "");
        EXPECT_STREQ(KTCatalogText(catalog, 1), row.result == 0 ? "one %d[1]" : nullptr);
        KTCloseCatalog(catalog);
    }
    rmdir(folder);
    KTCatalog *catalog = nullptr;
    EXPECT_EQ(KTOpenCatalogData("data", "KTC?", 4, nullptr, &catalog), KT_ERR_BAD_MSG_FILE);
    EXPECT_EQ(text(catalog, 1, nullptr), "[data 1]");
    KTCloseCatalog(catalog);
}

TEST(Catalog, RefusesWhatCannotBeMeant)
{
    KTCatalog *catalog = nullptr;
    KTCatalogOptions unknown = sized(), small = sized(7);
    unknown.formatOptions = 1U << 20;
    for (const KTCatalogOptions *options : {&unknown, &small})
        EXPECT_EQ(KTOpenCatalog("d", "store", options, &catalog), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTOpenCatalog(nullptr, "store", nullptr, &catalog), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTOpenCatalog("d", nullptr, nullptr, &catalog), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTOpenCatalog("d", "store", nullptr, nullptr), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTOpenCatalogFile(nullptr, nullptr, &catalog), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTOpenCatalogData("data", nullptr, 0, nullptr, &catalog), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(catalog, nullptr);
    for (const auto &[directory, name] : {std::pair("", "store"), std::pair("d", ""), std::pair("d", "a/b")})
    {
        EXPECT_EQ(KTOpenCatalog(directory, name, nullptr, &catalog), KT_ERR_INVALID_PARAMETER);
        EXPECT_EQ(text(catalog, 1, "here"), "here"); // there is one all the same
        KTCloseCatalog(catalog);
    }
    size_t size = 5;
    char out[5] = "?";
    KTCatalogRequest request = {sizeof request - 1, 1, false, nullptr, 0, nullptr, 0};
    EXPECT_EQ(KTCatalogFormatRequestUTF8(nullptr, &request, &size, out), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTCatalogFormatRequestUTF8(nullptr, nullptr, &size, out), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTCatalogFormatUTF8(nullptr, 1, nullptr, nullptr, out, nullptr, 0), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTCatalogFormatUTF8(nullptr, 1, nullptr, &size, nullptr, nullptr, 0), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTCatalogFormatUTF8(nullptr, 1, nullptr, &size, out, nullptr, 1), KT_ERR_INVALID_PARAMETER);
    EXPECT_TRUE(size == 5 && out[0] == '?');
}

TEST(Catalog, TakesOptionsOfOtherVersions)
{
    FakeZel::file("d/de/store.xlf", MessageFile().unit(1, "%30s[1]").xml());
    struct
    {
        KTCatalogOptions known;
        char later[64];
    } options = {};
    for (const size_t size : {sizeof options, sizeof options.known, offsetof(KTCatalogOptions, maxSize)})
    {
        options.known = sized(size);
        options.known.maxSize = 8;
        std::memset(options.later, 'x', sizeof options.later);
        KTCatalog *catalog = nullptr;
        ASSERT_EQ(KTOpenCatalog("d", "store", &options.known, &catalog), 0);
        EXPECT_EQ(text(catalog, 1, nullptr, "a").size() == 30, size == offsetof(KTCatalogOptions, maxSize));
        KTCloseCatalog(catalog);
    }
}

TEST(Catalog, MayBeNullOrStopped)
{
    ASSERT_EQ(KTInit(), 0);
    EXPECT_EQ(text(nullptr, 3, "%d[1] pages", 12), "12 pages");
    EXPECT_EQ(text(nullptr, 3, nullptr, 12, "a"), "[3: 12, a]");
    EXPECT_EQ(KTCatalogText(nullptr, 3), nullptr);
    EXPECT_STREQ(KTCatalogLanguage(nullptr), "");
    KTClean();
    KTCloseCatalog(nullptr);
    EXPECT_EQ(text(nullptr, 3, "%d[1] pages", 12), "[3: 12]"); // a format needs the library
    for (unsigned n = 1;; ++n)                                 // each step of the start and of finding fails once
    {
        FakeZel::failNth(n);
        KTCatalog *catalog = nullptr;
        const int result = KTOpenCatalog("d", "store", nullptr, &catalog);
        EXPECT_TRUE(result == 0 || result == KT_ERR_NOT_INITIALIZED);
        EXPECT_EQ(text(catalog, 3, nullptr, 12), "[store 3: 12]");
        KTCloseCatalog(catalog);
        if (FakeZel::clearFaults() == 0)
            break;
    }
}

TEST(Catalog, KeepsSomeNumbersThatNoFileHas)
{
    constexpr int some = 300, many = 5000, kept = 4096;
    FakeZel::file("d/de/store.xlf", MessageFile().unit(1, "eins").unit(900000, "viel").xml());
    FakeZel::file("d/en/store.xlf", MessageFile().unit(2, "two").unit(800000, "lots").xml());
    int told = 0;
    KTCatalogOptions options = sized();
    options.context = &told;
    options.onProblem = [](void *context, const KTCatalogProblem *) { ++*static_cast<int *>(context); };
    KTCatalog *catalog = nullptr;
    ASSERT_EQ(KTOpenCatalog("d", "store", &options, &catalog), 0);
    for (const int count : {some, some, many, many})
    {
        for (int i = 0; i < count; ++i)
        {
            char line[40];
            size_t size = sizeof line;
            KTCatalogFormatUTF8(catalog, 1000 + i * 16LL, "source", &size, line, nullptr, 0);
            ASSERT_STREQ(line, "source");
        }
        EXPECT_EQ(told, 2 * std::min(count, kept)); // once in each language
    }
    for (const auto &[id, expected] : {std::pair(1, "eins"), std::pair(2, "two"), std::pair(800000, "lots"),
                                       std::pair(900000, "viel"), std::pair(3, "[store 3]")})
        EXPECT_EQ(text(catalog, id, nullptr), expected);
    EXPECT_EQ(told, 2 * kept + 2); // of those in the source language
    const Outstanding before = FakeZel::outstanding();
    for (int i = 0; i < 1000; ++i)
        text(catalog, 5000000 + i, "source %d[1]", 1);
    EXPECT_EQ(FakeZel::outstanding(), before);
    KTCloseCatalog(catalog);
}

TEST(Catalog, KeepsEightTextsOfANumber)
{
    KTCatalogOptions options = sized();
    KTCatalog *catalog = nullptr;
    ASSERT_EQ(KTOpenCatalog("d", "store", &options, &catalog), 0);
    for (int round = 0; round < 3; ++round)
    {
        FakeZel::record();
        for (int i = 0; i < 10; ++i)
        {
            // Compared by what they say; the memory may be used again.
            char source[40];
            std::snprintf(source, sizeof source, "%d: %%s[1]", i);
            const KTArgument argument = KT_UTF8("x");
            const KTCatalogRequest request = {sizeof request, 1, false, source, 8, &argument, 1};
            char line[20];
            size_t size = sizeof line;
            KTCatalogFormatRequestUTF8(catalog, &request, &size, line);
            EXPECT_EQ(line, std::to_string(i) + ": x");
        }
        EXPECT_EQ(FakeZel::count(Operation::Malloc), round == 0 ? 10u : 2u);
    }
    KTCloseCatalog(catalog);
}

/** Writes the first letter of its name. */
int writeLetter(const char *name, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    *size = 1;
    if (room < 2)
        return KT_ERR_BUFFER_TOO_SMALL;
    *out = static_cast<unsigned char>(name[0]);
    return 0;
}

constexpr int none[] = {8, KT_ARG_END};

/** A table of one conversion without arguments; `name` may be another one than its record is found by. */
struct LetterTable
{
    KTFormatter list[2];
    formTable table;

    LetterTable(const char *name, formTable *next)
        : list{{name, nullptr, 0, none, writeLetter}, {nullptr, nullptr, 0, nullptr, nullptr}}, table{false,
                                                                                                      {},
                                                                                                      list,
                                                                                                      nullptr,
                                                                                                      next}
    {
    }
};

struct Letters
{
    LetterTable german{"deutsch", &builtInFormTable}, english{"english", &builtInFormTable};
    std::string asked;
};

formTable *lettersOf(void *context, const char *language)
{
    auto &letters = *static_cast<Letters *>(context);
    letters.asked += std::string(language) + ' ';
    if (std::string_view(language).substr(0, 2) == "de")
        return &letters.german.table;
    return *language == 'e' ? &letters.english.table : nullptr;
}

TEST(Catalog, EachLanguageHasItsOwnConversions)
{
    FakeZel::file("l/de/store.xlf",
                  MessageFile().unit(1, "%deutsch[1]%own[2]%d[3]").unit(2, "%english[1]").unit(3, "").xml());
    FakeZel::file("l/en/store.xlf", MessageFile().unit(2, "%english[1]-").unit(3, "%deutsch[1]").xml());
    FakeZel::file("l/de_AT.xlf", MessageFile().unit(1, "%deutsch[1]").xml());
    LetterTable third("third", &builtInFormTable), own("own", &third.table);
    for (formTable *table : {&own.table, static_cast<formTable *>(nullptr)})
    {
        Letters letters;
        KTCatalogOptions options = sized();
        options.table = table;
        options.conversions = lettersOf;
        options.conversionsContext = &letters;
        KTCatalog *catalog = nullptr;
        ASSERT_EQ(KTOpenCatalog("l", "store", &options, &catalog), 0);
        for (int round = 0; round < 2; ++round)
        {
            EXPECT_EQ(text(catalog, 1, nullptr, 7), table != nullptr ? "do7" : "[store 1: 7]");
            EXPECT_EQ(text(catalog, 2, nullptr), "e-");
            EXPECT_EQ(text(catalog, 3, "%english[1]%third[2]"), table != nullptr ? "et" : "[store 3]");
            EXPECT_EQ(text(catalog, 3, "%english[1]"), "e") << "the text in the source is English";
        }
        EXPECT_EQ(letters.asked, "en de en ") << "for the texts in the source, and when a file is loaded";
        KTCloseCatalog(catalog);
        letters.asked.clear();
        EXPECT_EQ(KTOpenCatalogFile("l/de_AT.xlf", &options, &catalog), 0);
        EXPECT_EQ(letters.asked, "en en_US ") << "what the file says of itself";
        EXPECT_EQ(text(catalog, 1, nullptr), "[de_AT 1]");
        KTCloseCatalog(catalog);
    }
    EXPECT_EQ(own.table.nextTable, &third.table);
}

/** What a program's functions do that throw. */
struct Stops
{
    bool isStopped = false;
    int problems = 0;
};

int failing(const char *, int, int, int, KTEncoder, void *passThru, void **slots, unsigned long *size, UCS2 *out)
{
    const auto *const object = static_cast<const char *>(KTPointerOfKind(slots, 1));
    static_cast<Stops *>(passThru)->isStopped = object != nullptr && *object == 't';
    *size = 0;
    return object != nullptr && *object == 'o' ? (*out = 0, 0) : KT_ERR_CONVERSION_FAILED;
}

TEST(Catalog, AsksTheProgramWhetherToGoOn)
{
    static const int pointerList[] = {KT_ARG_POINTER, KT_ARG_END};
    static KTFormatter list[] = {{"own", nullptr, 1, pointerList, failing}, {nullptr, nullptr, 0, nullptr, nullptr}};
    formTable table = {false, {}, list, nullptr, &builtInFormTable};
    FakeZel::file("d/de/store.xlf", MessageFile().unit(1, "a %own[1]").unit(2, "a %s[1]").xml());
    Stops stops;
    KTCatalogOptions options = sized();
    options.table = &table;
    options.passThru = options.context = &stops;
    options.onProblem = [](void *context, const KTCatalogProblem *problem) {
        auto &told = *static_cast<Stops *>(context);
        ++told.problems;
        told.isStopped = told.isStopped || problem->id == 2; // it throws, too
    };
    options.isStopped = [](void *context) { return static_cast<Stops *>(context)->isStopped; };
    options.writeArgument = [](void *, const KTArgument *argument, size_t *size, char *out) {
        const std::string written = static_cast<const char *>(argument->value.p) + std::string(300, '.');
        const bool fits = written.size() < *size;
        if (fits)
            std::strcpy(out, written.c_str());
        *size = written.size();
        return fits ? 0 : KT_ERR_BUFFER_TOO_SMALL;
    };
    KTCatalog *catalog = nullptr;
    ASSERT_EQ(KTOpenCatalog("d", "store", &options, &catalog), 0);
    EXPECT_EQ(text(catalog, 1, nullptr, KT_POINTER(1, "ok")), "a ");
    EXPECT_EQ(text(catalog, 1, nullptr, KT_POINTER(1, "fails")), "[store 1: fails" + std::string(300, '.') + "]");
    EXPECT_EQ(stops.problems, 1);
    for (const int64_t id : {1, 2})
    {
        const KTArgument thrown = KT_POINTER(1, "throws");
        stops = Stops();
        char line[40] = "?";
        size_t size = sizeof line;
        EXPECT_EQ(KTCatalogFormatUTF8(catalog, id, "source", &size, line, &thrown, 1), KT_ERR_CONVERSION_FAILED);
        EXPECT_TRUE(size == 0 && line[0] == '\0');
        EXPECT_EQ(stops.problems, id == 1 ? 0 : 1);
    }
    KTCloseCatalog(catalog);
}

TEST(Catalog, WritesArgumentsForProgramsToo)
{
    const long double real = 0.5L;
    const std::pair<KTArgument, std::string> rows[] = {{KT_INT(-7), "-7"},
                                                       {KT_UTF8("2006-05-17'T08:09:10Z"), "2006-05-17 08:09:10"},
                                                       {KT_UTF8N("ab", 1), "a"},
                                                       {KT_CODE_POINT(0x1F600), "\xF0\x9F\x98\x80"},
                                                       {KT_LONG_DOUBLE(&real), "0.5"},
                                                       {KT_POINTER(1, &real), "(pointer)"}};
    for (const auto &[argument, expected] : rows)
    {
        char text[40], few[3];
        size_t size = sizeof text, need = sizeof few;
        EXPECT_EQ(KTArgumentText(&argument, &size, text), 0);
        EXPECT_EQ(std::string(text, size), expected);
        EXPECT_EQ(KTArgumentText(&argument, &need, few), size < sizeof few ? 0 : KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(need, size);
    }
    size_t noRoom = 0;
    EXPECT_EQ(KTArgumentText(nullptr, &noRoom, nullptr), KT_ERR_INVALID_PARAMETER);
    const KTArgument texts[] = {KT_UTF8("abc"), KT_UCS2N(u"abc", 2), KT_CODE_POINT(0x1F600), KT_INT(5),
                                KT_UTF8(nullptr)};
    EXPECT_EQ(KTTextLimit(10, texts, 5), 10U + 8 * (3 + 3 * 2 + 3 * 2));
    EXPECT_EQ(KTTextLimit(SIZE_MAX, texts, 5), SIZE_MAX / 2);
    EXPECT_EQ(KTTextLimit(10, nullptr, 0), 10U);
}

TEST(Catalog, IsAFormatInThePlaceOfOne)
{
    KTCatalogOptions options = sized();
    options.maxSize = 10;
    KTCatalog *catalog = nullptr;
    ASSERT_EQ(KTOpenCatalogFormat("%s[1] \xC3\xA9 %*d[2]", &options, &catalog), 0);
    EXPECT_EQ(text(catalog, -5, "source", "a", 1, 7), "a \xC3\xA9 7");
    EXPECT_EQ(text(nullptr, 5, nullptr, "a"), "[5: a]");
    KTCatalog *refused = nullptr;
    EXPECT_EQ(KTOpenCatalogFormat("%d", &options, &refused), KT_ERR_FORMAT_SYNTAX);
    EXPECT_TRUE(KTCatalogPrepared(catalog) != nullptr && KTCatalogPrepared(refused) == nullptr);
    const KTArgument arguments[] = {KT_UTF8("a"), KT_INT(2000), KT_INT(7)};
    const struct
    {
        KTCatalog *catalog;
        size_t count;
        int result;
        std::string why;
    } rows[] = {
        {catalog, 3, KT_ERR_BUFFER_TOO_SMALL, "\"%s[1] \xC3\xA9 %*d[2]\": the text is longer than max_size, 10"},
        {catalog, 2, KT_ERR_INVALID_PARAMETER,
         "\"%s[1] \xC3\xA9 %*d[2]\": argument 3, a 32-bit integer here, is not in the call"},
        {refused, 0, KT_ERR_INVALID_PARAMETER,
         "\"%d\": a conversion has no position, as in %s[1] (a percent sign by itself is written %%)"},
    };
    for (const auto &row : rows)
    {
        const KTCatalogRequest request = {sizeof request, 1, false, "source", 6, arguments, row.count};
        char line[200] = "?";
        size_t size = sizeof line;
        EXPECT_EQ(KTCatalogFormatRequestUTF8(row.catalog, &request, &size, line), row.result);
        EXPECT_TRUE(size == 0 && line[0] == '\0');
        size = sizeof line;
        EXPECT_EQ(KTExplainCatalog(row.catalog, &request, row.result, &size, line), 0);
        EXPECT_EQ(line, row.why);
    }
    const KTCatalogRequest request = {sizeof request, 1, false, nullptr, 0, arguments, 1};
    char why[40];
    size_t size = sizeof why;
    EXPECT_EQ(KTExplainCatalog(nullptr, &request, KT_ERR_INVALID_PARAMETER, &size, why), 0);
    EXPECT_STREQ(why, "there is no format");
    size = 0;
    EXPECT_EQ(KTExplainCatalog(nullptr, nullptr, KT_ERR_NO_MEMORY, &size, nullptr), KT_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, std::strlen(KTResultText(KT_ERR_NO_MEMORY)));
    EXPECT_EQ(KTExplainCatalog(catalog, nullptr, 0, nullptr, nullptr), KT_ERR_INVALID_PARAMETER);
    KTCloseCatalog(catalog);
    KTCloseCatalog(refused);
    EXPECT_EQ(KTOpenCatalogFormat(nullptr, nullptr, &catalog), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(catalog, nullptr);
}

TEST(Catalog, SaysWhyAFormatIsOfNoUse)
{
    const struct
    {
        const char *format;
        KTArgument argument;
        int result;
        std::string text;
    } rows[] = {
        {"%s[1] %d[2]", KT_UTF8("a"), 0, "argument 2, a 32-bit integer here, is not in the call"},
        {"%T[1]", KT_UTF8("no\n\xC2\x9B\xE2\x80\xAE!\xE2\x80\xA8"), KT_ERR_INVALID_PARAMETER,
         "%T[1] cannot write argument 1: \"no\\n  ! \""},
        {"%hd[1]", KT_INT(40000), KT_ERR_INVALID_PARAMETER, "%hd[1] cannot write argument 1: 40000"},
        {"%c[1]", KT_CODE_POINT(0x1F600), 0, "argument 1 is an 8-bit character here, a UCS-2 string in the call"},
        {"%d[1]", KT_POINTER(1, nullptr), 0, "argument 1 is a 32-bit integer here, an object in the call"},
        {"%d[1]", KTArgument{99, 0, {0}}, 0, "argument 1, a 32-bit integer here, is not in the call"},
        {"%d[1]", KT_INT(7), KT_ERR_NO_MEMORY, KTResultText(KT_ERR_NO_MEMORY)}, // and not that it is done
        {"%d[1]", KT_INT(7), KT_ERR_BUFFER_TOO_SMALL, "the text is longer than max_size, 1048576"},
        {"%d", KT_INT(7), KT_ERR_FORMAT_SYNTAX,
         "a conversion has no position, as in %s[1] (a percent sign by itself is written %%)"},
    };
    ASSERT_EQ(KTInit(), 0);
    for (const auto &row : rows)
    {
        char story[400];
        size_t size = sizeof story;
        EXPECT_EQ(KTExplainFailure(row.format, row.result, nullptr, &row.argument, 1, &size, story), 0);
        EXPECT_EQ(story, '"' + std::string(row.format) + "\": " + row.text);
        EXPECT_EQ(size, std::strlen(story));
        size_t few = 10;
        char cut[10];
        EXPECT_EQ(KTExplainFailure(row.format, row.result, nullptr, &row.argument, 1, &few, cut),
                  KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(cut, std::string(story, 9));
    }
    KTClean();
}

} // namespace
