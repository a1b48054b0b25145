/*
 * Writes a web page about some documents, in a language:
 *     webpage LANGUAGE >page.html
 *
 * Shows an encoder. The titles come from anywhere, and the messages put them between the markers %N and %O, so that
 * they go through the encoder of the form table, which escapes what HTML gives a meaning to.
 */
#include "catalog.h"
#include "formatted.h"
#include <stdio.h>

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

static void print(const char *before, char *text, const char *after)
{
    printf("%s%s%s", before, text != NULL ? text : "?", after);
    free(text);
}

int main(int argc, char **argv)
{
    formTable html = {false, {0}, NULL, escapeHtml, &builtInFormTable};
    MessageTable *catalog = NULL;
    int result = KTInit();

    if (result == 0)
        result = openCatalog(argc > 1 ? argv[1] : NULL, &catalog);
    if (result != 0)
    {
        fprintf(stderr, "webpage: %s\n", KTResultText(result));
        return 1;
    }
    print("<!DOCTYPE html>\n<html lang=\"", formatted("UTF-8", NULL, NULL, messageOf(catalog, LANGUAGE)), "\"");
    print(" dir=\"", formatted("UTF-8", NULL, NULL, messageOf(catalog, DIRECTION)), "\">\n<meta charset=\"utf-8\">\n");
    print("<title>", formatted("UTF-8", &html, NULL, messageOf(catalog, TITLE), "R&D"), "</title>\n<ul>\n");
    for (size_t i = 0; i < sizeof documents / sizeof documents[0]; ++i)
        print("<li>",
              formatted("UTF-8", &html, NULL, messageOf(catalog, DOCUMENT), documents[i].title, documents[i].pages),
              "\n");
    puts("</ul>");
    KTClean();
    return 0;
}
