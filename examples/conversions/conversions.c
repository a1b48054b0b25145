/*
 * Says how large a file is and when it was read, in a language:
 *     conversions LANGUAGE
 *
 * Shows two conversions of a program's own. "size" writes a count of bytes and "duration" a count of seconds, in
 * units that the catalog names, for they are words too. The call hands the names to the formatters as its
 * pass-through pointer.
 */
#include "catalog.h"
#include "formatted.h"
#include <stdio.h>
#include <string.h>

enum
{
    FILE_SAID = 20,
    DECIMAL_MARK,
    SIZES,
    DURATIONS
};

/* Words of one message, separated by blanks. */
typedef struct Words
{
    const char *decimalMark, *sizes, *durations;
} Words;

/* A piece of a formatter's text: written where it fits, and counted in any case. */
typedef struct Output
{
    UCS2 *out;
    unsigned long room, length;
} Output;

static void add(Output *output, const char *text, size_t bytes)
{
    char copy[64];
    UCS2 units[64];
    size_t count = 64;

    if (bytes >= sizeof copy)
        return;
    memcpy(copy, text, bytes);
    copy[bytes] = '\0';
    if (KTUTF8ToUCS2(copy, &count, units) != 0)
        return;
    for (size_t i = 0; i < count; ++i)
        if (output->length++ < output->room)
            output->out[output->length - 1] = units[i];
}

static void addNumber(Output *output, unsigned long long number)
{
    char digits[24];

    add(output, digits, (size_t)snprintf(digits, sizeof digits, "%llu", number));
}

/* The word of that place in a list, without its neighbours. */
static void addWord(Output *output, const char *words, int place)
{
    for (; place > 0 && *words != '\0'; ++words)
        place -= *words == ' ';
    add(output, words, strcspn(words, " "));
}

/* Ends a formatter: the text fits when there is room for one unit more. */
static int finish(const Output *output, unsigned long *sizeInOut)
{
    *sizeInOut = output->length;
    return output->length + 1 > output->room ? KT_ERR_BUFFER_TOO_SMALL : 0;
}

/* The modifier in the message, which is the translator's, tells how large the value is. */
static uint64_t valueOf(const void *slot, int flags)
{
    if (flags & FLAG_h)
        return *(const uint16_t *)slot;
    return flags & FLAG_BANG ? *(const uint64_t *)slot : *(const uint32_t *)slot;
}

static int formatSize(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                      void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const Words *const words = passThru2;
    Output output = {out, *sizeInOut, 0};
    uint64_t value = valueOf(argSlot[0], flags), tenths = 0;
    int unit = 0;

    (void)convName, (void)width, (void)precision, (void)passThru1;
    for (; value >= 1024 && unit < 3; ++unit)
    {
        tenths = value % 1024 * 10 / 1024;
        value /= 1024;
    }
    addNumber(&output, value);
    if (unit > 0)
    {
        add(&output, words->decimalMark, strlen(words->decimalMark));
        addNumber(&output, tenths);
    }
    add(&output, "\u00A0", 2); /* a blank at which no line breaks */
    addWord(&output, words->sizes, unit);
    return finish(&output, sizeInOut);
}

static int formatDuration(const char *convName, int width, int precision, int flags, KTEncoder passThru1,
                          void *passThru2, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const Words *const words = passThru2;
    Output output = {out, *sizeInOut, 0};
    const uint64_t minutes = valueOf(argSlot[0], flags) / 60;

    (void)convName, (void)width, (void)precision, (void)passThru1;
    if (minutes >= 60)
    {
        addNumber(&output, minutes / 60);
        add(&output, "\u00A0", 2);
        addWord(&output, words->durations, 0);
        add(&output, " ", 1);
    }
    addNumber(&output, minutes % 60);
    add(&output, "\u00A0", 2);
    addWord(&output, words->durations, 1);
    return finish(&output, sizeInOut);
}

int main(int argc, char **argv)
{
    static KTFormatter conversions[] = {{"size", NULL, 1, unsignedIntList, formatSize},
                                        {"duration", NULL, 1, unsignedIntList, formatDuration},
                                        {NULL, NULL, 0, NULL, NULL}};
    formTable mine = {false, {0}, conversions, NULL, &builtInFormTable};
    MessageTable *catalog = NULL;
    Words words;
    char *line;
    int result = KTInit();

    if (result == 0)
        result = openCatalog(argc > 1 ? argv[1] : NULL, &catalog);
    if (result != 0)
    {
        fprintf(stderr, "conversions: %s\n", KTResultText(result));
        return 1;
    }
    words.decimalMark = messageOf(catalog, DECIMAL_MARK);
    words.sizes = messageOf(catalog, SIZES);
    words.durations = messageOf(catalog, DURATIONS);
    line =
        words.decimalMark == NULL || words.sizes == NULL || words.durations == NULL
            ? NULL
            : formatted("UTF-8", &mine, &words, messageOf(catalog, FILE_SAID), "atlas.pdf", (uint64_t)13107200, 7500);
    puts(line != NULL ? line : "the catalog is not complete");
    free(line);
    KTClean();
    return line != NULL ? 0 : 1;
}
