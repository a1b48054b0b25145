/*
 * Counts the lines and characters of texts, and speaks the user's language:
 *     count [--lang LANGUAGE] FILE...
 *
 * Shows a program that always speaks. Its language is the one asked for, or else the user's; where there is no catalog,
 * or a translation is wrong, it has its own English.
 */
#include "catalog.h"
#include "formatted.h"
#include <errno.h>
#include <stdio.h>
#include <string.h>

enum
{
    USAGE = 1,
    COUNTED,
    UNREADABLE,
    NO_CATALOG
};

static const char *const english[] = {
    [USAGE] = "Usage: count [--lang LANGUAGE] FILE...\nCounts the lines and characters of texts in UTF-8.",
    [COUNTED] = "%s[1]: lines: %d[2], characters: %d[3]",
    [UNREADABLE] = "Cannot read \"%s[1]\": %E[2]",
    [NO_CATALOG] = "There is no catalog for \"%s[1]\".",
};

static MessageTable *catalog;
static char charSet[256];

/* Prints a message: the catalog's, or in its place the English one. */
static void say(FILE *stream, unsigned int id, ...)
{
    va_list arguments;
    char *line;

    va_start(arguments, id);
    line = vformatted(charSet, NULL, NULL, messageOf(catalog, id), arguments);
    if (line == NULL)
        line = vformatted(charSet, NULL, NULL, english[id], arguments);
    va_end(arguments);
    fprintf(stream, "%s\n", line != NULL ? line : english[id]);
    free(line);
}

static int countFile(const char *name)
{
    FILE *const file = fopen(name, "rb");
    int lines = 0, characters = 0, byte;

    if (file == NULL)
    {
        say(stderr, UNREADABLE, name, strerror(errno));
        return 1;
    }
    while ((byte = getc(file)) != EOF)
    {
        lines += byte == '\n';
        characters += (byte & 0xC0) != 0x80; /* all but the second and further bytes of a character */
    }
    fclose(file);
    say(stdout, COUNTED, name, lines, characters);
    return 0;
}

int main(int argc, char **argv)
{
    const char *language = NULL;
    int first = 1, status = 0, result = KTInit();

    if (result != 0)
    {
        fprintf(stderr, "count: %s\n", KTResultText(result));
        return 2;
    }
    KTGetSystemCharSet(charSet);
    if (argc > 2 && strcmp(argv[1], "--lang") == 0)
    {
        language = argv[2];
        first = 3;
    }
    if (openCatalog(language, &catalog) != 0 && language != NULL)
    {
        say(stderr, NO_CATALOG, language);
        openCatalog(NULL, &catalog);
    }
    if (first == argc)
    {
        say(stderr, USAGE);
        status = 2;
    }
    for (; first < argc; ++first)
        status |= countFile(argv[first]);
    KTClean();
    return status;
}
