#include "message/loading.h"

#include <cstdlib>

namespace
{

constexpr const char *unset = nullptr;

/** What a call gives at every capacity up to the one that suffices: its text, or its result. */
template <typename Call> std::string atEveryCapacity(Call call)
{
    size_t need = 0;
    const int measured = call(&need, nullptr);
    if (measured != KT_ERR_BUFFER_TOO_SMALL)
        return std::to_string(measured);
    for (size_t capacity = 1; capacity <= need; ++capacity)
    {
        std::string buffer(capacity, 'x');
        size_t size = capacity;
        EXPECT_EQ(call(&size, buffer.data()), KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(size, need);
        EXPECT_EQ(buffer[0], '\0');
    }
    std::string buffer(need + 1, 'x');
    size_t size = need + 1;
    EXPECT_EQ(call(&size, buffer.data()), 0);
    EXPECT_EQ(size, need);
    EXPECT_EQ(buffer[need], '\0');
    return buffer.substr(0, need);
}

std::string languages(const char *list)
{
    return atEveryCapacity([&](size_t *size, char *out) { return KTLanguages(list, size, out); });
}

TEST(Languages, StandInTheOrderOfSearch)
{
    const std::string longest(63, 'x');
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {"de", "de"},
        {"de_AT.UTF-8@euro:fr", "de_AT@euro:de_AT:de@euro:de:fr"},
        {"zh-Hant_TW.Big5", "zh-Hant_TW:zh-Hant:zh"},
        {":de::fr:", "de:fr"},
        {"de:C:fr", "de"},
        {"POSIX:de", ""},
        {"C.UTF-8", ""},
        {"sr@latin", "sr@latin:sr"},
        {"..:../../etc:/etc:de/../..:.:de@../x:de@:@euro:_x:-:d\xC3\xA9:d e:fr", "fr"},
        {"de.../../etc", "de"},
        {longest + ":" + longest + "x:de", longest + ":de"},
        {longest + "@y:de", "de"},
        {std::string("de\0fr", 5), "de"},
    };
    for (const auto &[list, expected] : rows)
        EXPECT_EQ(languages(list.c_str()), expected) << list;
    size_t size = 1;
    EXPECT_EQ(KTLanguages("de", nullptr, nullptr), KT_ERR_INVALID_PARAMETER);
    EXPECT_EQ(KTLanguages("de", &size, nullptr), KT_ERR_INVALID_PARAMETER);
}

TEST(Languages, AreTheUsers)
{
    struct Row
    {
        const char *all, *messages, *lang, *language, *expected;
    };
    constexpr const char *names[] = {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE"};
    for (const Row &row :
         {Row{unset, unset, unset, unset, ""}, Row{unset, unset, unset, "de", ""},
          Row{"fr_FR", "de", "de", unset, "fr_FR:fr"}, Row{"", "de", "fr", unset, "de"}, Row{unset, "", "fr", "", "fr"},
          Row{unset, unset, "fr", "de:en", "de:en"}, Row{"C", "fr", "fr", "de", ""},
          Row{unset, unset, "POSIX", "de", ""}, Row{unset, unset, "C.UTF-8", "de", "de"}})
    {
        size_t i = 0;
        for (const char *value : {row.all, row.messages, row.lang, row.language})
            ++i, value != unset ? setenv(names[i - 1], value, 1) : unsetenv(names[i - 1]);
        EXPECT_EQ(languages(nullptr), row.expected);
        for (const char *name : names)
            unsetenv(name);
    }
}

class FindCatalog : public MessageTest
{
protected:
    static std::string find(const char *languages, const char *name = "store", const char *directory = "/d")
    {
        return atEveryCapacity(
            [&](size_t *size, char *path) { return KTFindCatalog(directory, name, languages, size, path); });
    }
};

TEST_F(FindCatalog, TakesTheFirstFileThatCanBeOpened)
{
    for (const char *file : {"/d/de/store.xlf", "/d/de@euro/store.xlf", "/d/fr/store.xlf", "/d/fr/store.ktc",
                             "/store.xlf", "/d/store.xlf", "/d/../store.xlf", "/etc/store.xlf"})
        FakeZel::file(file, "");
    const std::string missing = std::to_string(KT_ERR_FILE_UNAVAILABLE);
    for (const auto &[list, expected] : {std::pair<const char *, std::string>{"de_AT", "/d/de/store.xlf"},
                                         {"de_AT@euro:fr", "/d/de@euro/store.xlf"},
                                         {"nl:fr_CA:de", "/d/fr/store.ktc"},
                                         {"nl", missing},
                                         {"", missing},
                                         {"..:.:../../etc:/etc:de/../..", missing}})
        EXPECT_EQ(find(list), expected) << list;
    EXPECT_EQ(find("de:fr", "other"), missing);
    const std::string longest(63, 'x'), file = "/d/" + longest + "/store.xlf";
    FakeZel::file(file, "");
    EXPECT_EQ(find(longest.c_str()), file);
}

TEST_F(FindCatalog, TellsWhatStandsInTheWay)
{
    FakeZel::file("/d/fr/store.xlf", "");
    FakeZel::fail(Operation::FileOpen, 1, -5993); // ZEL_FileOpen()'s result for a file that may not be read
    size_t size = 0;
    EXPECT_EQ(KTFindCatalog("/d", "store", "de", &size, nullptr), KT_ERR_FILE_NOT_OPENED);
    FakeZel::fail(Operation::FileOpen, 1, -5993);
    EXPECT_EQ(KTFindCatalog("/d", "store", "fr", &size, nullptr), KT_ERR_BUFFER_TOO_SMALL);
    FakeZel::fail(Operation::Malloc);
    EXPECT_EQ(KTFindCatalog("/d", "store", "fr", &size, nullptr), KT_ERR_INVALID_PARAMETER); // a size, no buffer
    size = 0;
    EXPECT_EQ(KTFindCatalog("/d", "store", "fr", &size, nullptr), KT_ERR_NO_MEMORY);
    const std::string invalid = std::to_string(KT_ERR_INVALID_PARAMETER);
    for (const char *name : {"", "a/b", "../store", static_cast<const char *>(nullptr)})
        EXPECT_EQ(find("de", name), invalid);
    EXPECT_EQ(find("de", "store", ""), invalid);
    EXPECT_EQ(find("de", "store", nullptr), invalid);
    EXPECT_EQ(KTFindCatalog("/d", "store", "fr", nullptr, nullptr), KT_ERR_INVALID_PARAMETER);
    char path[] = "x";
    size = 1;
    EXPECT_EQ(KTFindCatalog("/d", "store", "nl", &size, path), KT_ERR_FILE_UNAVAILABLE);
    EXPECT_STREQ(path, "");
    KTClean();
    EXPECT_EQ(KTFindCatalog("/d", "store", "fr", &size, nullptr), KT_ERR_NOT_INITIALIZED);
    EXPECT_EQ(KTInit(), 0);
}

} // namespace
