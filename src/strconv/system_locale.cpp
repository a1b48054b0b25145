#include "strconv/system_locale.h"

#include "kelto.h"

#include <clocale>
#include <cstring>
#include <langinfo.h>

int KTGetSystemFullLocale(char *locale)
{
    const char *const name = std::setlocale(LC_CTYPE, "");
    std::strcpy(locale, name != nullptr ? name : "");
    return 0;
}

int KTGetSystemLocale(char *locale)
{
    constexpr size_t languageAndTerritory = 5; // as in "ja_JP"
    const int result = KTGetSystemFullLocale(locale);
    if (std::strlen(locale) > languageAndTerritory)
        locale[languageAndTerritory] = '\0';
    return result;
}

int KTGetSystemCharSet(char *charSet)
{
    std::strcpy(charSet, nl_langinfo(CODESET));
    if (std::strcmp(charSet, "646") == 0) // some systems' name of ASCII, unknown to ICU
        std::strcpy(charSet, "ISO8859-1");
    return 0;
}

char *mapCharSet(char *charSet)
{
    static const char cp932[] = "cp932";
    return std::strcmp(charSet, "MS932") == 0 ? const_cast<char *>(cp932) : charSet;
}
