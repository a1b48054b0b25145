/*
 * Says how many records were copied, in eight languages:
 *     plurals [LANGUAGE...]
 *
 * Shows that a program says a number and a message, and nothing of grammar: Japanese has one sentence for all numbers,
 * Arabic six, and that stands in the message files. Where there is none, the program chooses between its own two.
 */
#include <kelto.h>
#include <stdio.h>

enum
{
    COPIED = 1
};

static void say(const char *language)
{
    static const int numbers[] = {0, 1, 2, 3, 5, 6, 11, 21, 22, 100, 1000000};
    KTCatalogOptions options = {0};
    KTCatalog *catalog = NULL;
    size_t i;

    options.structSize = sizeof options;
    options.languages = language;
    options.sourceLanguage = "";
    if (KTOpenCatalog(CATALOGS, "plurals", &options, &catalog) != 0)
        return;
    printf("%s\n", language);
    for (i = 0; i < sizeof numbers / sizeof numbers[0]; ++i)
    {
        const int n = numbers[i];
        const char *source = n == 1 ? "%d[1] record copied to %s[2]" : "%d[1] records copied to %s[2]";
        const KTArgument arguments[] = {KT_INT(n), KT_UTF8("A1")};
        char line[200];
        size_t size = sizeof line;

        KTCatalogFormatUTF8(catalog, COPIED, source, &size, line, arguments, 2);
        printf("  %s\n", line);
    }
    KTCloseCatalog(catalog);
}

int main(int argc, char **argv)
{
    static const char *const languages[] = {"ar", "cy", "de", "en", "fr", "ja", "pl", "ru"};
    int i;

    for (i = 1; i < argc; ++i)
        say(argv[i]);
    for (i = 0; argc == 1 && i < 8; ++i)
        say(languages[i]);
    return 0;
}
