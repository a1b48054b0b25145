/*
 * Writes a web page about some documents, in a language:
 *     webpage LANGUAGE >page.html
 *
 * Shows an encoder, which escapes what HTML gives a meaning to. The titles come from anywhere and the messages from
 * translators, so every argument goes through it: no translation can leave that out.
 */
#include <kelto.h>
#include <stdio.h>
#include <stdlib.h>

#ifndef CATALOGS
#define CATALOGS "catalogs" /* the build tells the folder */
#endif

enum
{
    TITLE = 10,
    DOCUMENT,
    DIRECTION,
    LANGUAGE
};

static const struct
{
    const char *title;
    int pages;
} documents[] = {{"Tom & Jerry <draft>", 12}, {"\"Über Bücher\"", 240}, {"東京の地図", 8}};

static const char *entityOf(UCS2 unit)
{
    switch (unit)
    {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return NULL;
    }
}

/* Writes as much as fits, and tells the length of the whole. */
static int escapeHtml(const void *value, int dataType, unsigned long *sizeInOut, UCS2 *out)
{
    const unsigned long room = *sizeInOut;
    UCS2 character[2] = {0, 0};
    const UCS2 *text = dataType == KT_ENCODE_UCS2 ? value : character;
    unsigned long length = 0;

    if (dataType == KT_ENCODE_UNIT)
        character[0] = *(const UCS2 *)value;
    else if (dataType == KT_ENCODE_CHARACTER)
        character[0] = *(const unsigned char *)value;
    for (; *text != 0; ++text)
    {
        const char *entity = entityOf(*text);

        if (entity == NULL && length++ < room)
            out[length - 1] = *text;
        for (; entity != NULL && *entity != '\0'; ++entity)
            if (length++ < room)
                out[length - 1] = (unsigned char)*entity;
    }
    *sizeInOut = length;
    return 0;
}

/* A message with its arguments, as long as it may be; the text in the source is what is printed without a catalog. */
static void print(const KTCatalog *catalog, int message, const char *source, const KTArgument *arguments, size_t count)
{
    char usual[200], *text = usual, *whole = NULL;
    size_t size = sizeof usual;

    if (KTCatalogFormatUTF8(catalog, message, source, &size, usual, arguments, count) == KT_ERR_BUFFER_TOO_SMALL)
    {
        /* What fits is cut, perhaps between '&' and ';', where a page must not be. */
        text = whole = malloc(++size);
        if (whole == NULL || KTCatalogFormatUTF8(catalog, message, source, &size, whole, arguments, count) != 0)
            text = "?";
    }
    fputs(text, stdout);
    free(whole);
}

int main(int argc, char **argv)
{
    formTable html = {false, {0}, NULL, escapeHtml, &builtInFormTable};
    const KTArgument department = KT_UTF8("R&D");
    KTCatalogOptions options = {.structSize = sizeof options};
    KTCatalog *catalog = NULL;
    int result;

    options.languages = argc > 1 ? argv[1] : NULL;
    options.table = &html;
    options.formatOptions = KT_ENCODE_ALL;
    result = KTOpenCatalog(CATALOGS, "examples", &options, &catalog);
    if (result != 0)
    {
        fprintf(stderr, "webpage: %s\n", KTResultText(result));
        KTCloseCatalog(catalog);
        return 1;
    }
    fputs("<!DOCTYPE html>\n<html lang=\"", stdout);
    print(catalog, LANGUAGE, "en", NULL, 0);
    fputs("\" dir=\"", stdout);
    print(catalog, DIRECTION, "ltr", NULL, 0);
    fputs("\">\n<meta charset=\"utf-8\">\n<title>", stdout);
    print(catalog, TITLE, "Documents of the department %s[1]", &department, 1);
    puts("</title>\n<ul>");
    for (size_t i = 0; i < sizeof documents / sizeof documents[0]; ++i)
    {
        const KTArgument arguments[] = {KT_UTF8(documents[i].title), KT_INT(documents[i].pages)};

        fputs("<li>", stdout);
        print(catalog, DOCUMENT, "%s[1], pages: %d[2]", arguments, 2);
        puts("");
    }
    puts("</ul>");
    KTCloseCatalog(catalog);
    return 0;
}
