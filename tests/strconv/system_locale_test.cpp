#include "strconv/system_locale.h"

#include "kelto.h"

#include <clocale>
#include <cstdlib>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <langinfo.h>
#include <string>

namespace
{

thread_local const char *reportedCodeset = nullptr; // instead of the C library's, where not null

/** Every test starts without a locale in the environment, and leaves none. */
class LocaleTest : public testing::Test
{
protected:
    LocaleTest() { reset(); }
    ~LocaleTest() override { reset(); }

    static void reset()
    {
        for (const char *name : {"LC_CTYPE", "LANG", "LC_ALL"})
            unsetenv(name);
        std::setlocale(LC_CTYPE, "C");
        reportedCodeset = nullptr;
    }
};

std::string answerOf(int (*query)(char *))
{
    char name[256] = "?";
    EXPECT_EQ(query(name), 0);
    return name;
}

TEST_F(LocaleTest, FollowsTheEnvironment)
{
    struct
    {
        const char *label, *lang, *lcCtype, *lcAll, *fullName, *shortName;
    } const rows[] = {
        {"nothing set", "", "", "", "C", "C"},
        {"another name of C", "", "C.UTF-8", "POSIX", "C", "C"},
        {"LANG", "C.UTF-8", "", "", "C.UTF-8", "C.UTF"},
        {"LC_CTYPE wins over LANG", "C", "C.UTF-8", "", "C.UTF-8", "C.UTF"},
        {"LC_ALL wins", "C.UTF-8", "C.UTF-8", "C", "C", "C"},
        {"no such locale", "xx_YY.nothing", "", "", "", ""},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.label);
        setenv("LANG", row.lang, 1);
        setenv("LC_CTYPE", row.lcCtype, 1);
        setenv("LC_ALL", row.lcAll, 1);
        EXPECT_EQ(answerOf(KTGetSystemFullLocale), row.fullName);
        EXPECT_EQ(answerOf(KTGetSystemLocale), row.shortName);
    }
}

TEST_F(LocaleTest, TellsTheCharacterSetOfTheLocaleInForce)
{
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(answerOf(KTGetSystemCharSet), "ANSI_X3.4-1968") << "asking does not set the locale";
    answerOf(KTGetSystemFullLocale);
    EXPECT_EQ(answerOf(KTGetSystemCharSet), "UTF-8");
}

TEST_F(LocaleTest, NamesAsciiAsIcuKnowsIt)
{
    const char *const rows[][2] = {{"646", "ISO8859-1"}, {"6460", "6460"}, {"646 ", "646 "}, {"64", "64"}, {"", ""}};
    for (const auto &row : rows)
    {
        reportedCodeset = row[0];
        EXPECT_EQ(answerOf(KTGetSystemCharSet), row[1]);
    }
}

TEST(MapCharSet, ChangesOneNameOnly)
{
    char mapped[] = "MS932", lower[] = "ms932", longer[] = "MS9320", shorter[] = "MS93";
    EXPECT_STREQ(mapCharSet(mapped), "cp932");
    for (char *const name : {lower, longer, shorter})
        EXPECT_EQ(mapCharSet(name), name);
}

} // namespace

/** The program's own, so that the library can be told what other systems report. */
extern "C" char *nl_langinfo(nl_item item)
{
    static const auto real = reinterpret_cast<char *(*)(nl_item)>(dlsym(RTLD_NEXT, "nl_langinfo"));
    if (item == CODESET && reportedCodeset != nullptr)
        return const_cast<char *>(reportedCodeset);
    return real(item);
}
