/*
 * Reports on a copy, in the words of a catalog that was translated without care:
 *     guarded [FILE]
 *
 * Shows a program that trusts no translation. It has its own English texts, compares each message of the file with
 * them, and refuses those that would take other arguments. What passes is formatted with typed arguments, which the
 * library compares once more, so no file can make it read a number as an address.
 */
#include <kelto.h>
#include <stdio.h>

enum
{
    COPYING = 1,
    COPIED,
    FREE,
    TEXTS
};

static const char *const english[TEXTS] = {
    [COPYING] = "Copying \"%s[1]\" to \"%s[2]\"",
    [COPIED] = "%d[1] of %d[2] files copied",
    [FREE] = "%!u[1] bytes free",
};

/* The catalog's message where it can stand for the English one; else the English one, and on standard error why. */
static const char *guarded(MessageTable *catalog, unsigned int id)
{
    KTProblem problem = {.structSize = sizeof problem};
    char *message = NULL, sentence[200];
    size_t size = sizeof sentence;

    KTGetMessage(catalog, id, &message);
    if (message == NULL || KTCompareFormats(message, english[id], NULL, &problem) == 0)
        return message != NULL ? message : english[id];
    if (KTProblemText(&problem, &size, sentence) == 0)
        fprintf(stderr, "message %u, \"%s\": %s\n", id, message, sentence);
    return english[id];
}

static void say(MessageTable *catalog, unsigned int id, const KTArgument *arguments, size_t count)
{
    KTPreparedFormat *prepared = NULL;
    char line[400];
    size_t size = sizeof line;
    int result = KTPrepareFormat(guarded(catalog, id), NULL, &prepared);

    if (result == 0)
        result = KTFormatPreparedUTF8(prepared, 0, NULL, &size, line, arguments, count);
    puts(result == 0 ? line : KTResultText(result));
    KTFreePrepared(prepared);
}

int main(int argc, char **argv)
{
    char path[] = CARELESS;
    const KTArgument copying[] = {KT_UTF8("atlas.pdf"), KT_UTF8("/media/usb")};
    const KTArgument copied[] = {KT_INT(3), KT_INT(12)};
    const KTArgument left[] = {KT_UINT64(1099511627776)};
    MessageTable *catalog = NULL;
    int result = KTInit();

    if (result == 0)
        result = KTLoadMessages(argc > 1 ? argv[1] : path, &catalog);
    if (result != 0)
        fprintf(stderr, "guarded: %s\n", KTResultText(result)); /* and goes on, in English */
    say(catalog, COPYING, copying, 2);
    say(catalog, COPIED, copied, 2);
    say(catalog, FREE, left, 1);
    KTClean();
    return 0;
}
