/* A message, formatted, in a block of its own and in any character set: what the programs here share. */
#ifndef EXAMPLES_FORMATTED_H
#define EXAMPLES_FORMATTED_H

#include <kelto.h>
#include <stdlib.h>

/* UCS-2 text in a character set; null where it cannot be converted. Free it with free(). */
static char *encoded(const UCS2 *text, const char *charSet)
{
    size_t bytes = 8 * KTUCS2strlen(text) + 2; /* suffices in every character set */
    char *const result = malloc(bytes);

    if (result != NULL && KTUCS2ToMultiByte(charSet, 0, 0, text, &bytes, result) == 0)
        return result;
    free(result);
    return NULL;
}

/*
 * A message with its arguments, in a character set. table and passThru are for programs with conversions or an
 * encoder of their own. Null where the message is none, is malformed, or memory runs out. Free it with free().
 */
static char *vformatted(const char *charSet, formTable *table, void *passThru, const char *message, va_list arguments)
{
    char *const format = (char *)message; /* is not changed */
    unsigned long units = 0;
    UCS2 *text = NULL;
    char *line = NULL;

    if (message != NULL && KTvFormatStringWithPassThru(NULL, false, table, passThru, &units, NULL, format, arguments) ==
                               KT_ERR_BUFFER_TOO_SMALL) /* nothing written; units is what it takes */
        text = malloc(++units * sizeof *text);
    if (text != NULL && KTvFormatStringWithPassThru(NULL, false, table, passThru, &units, text, format, arguments) == 0)
        line = encoded(text, charSet);
    free(text);
    return line;
}

static inline char *formatted(const char *charSet, formTable *table, void *passThru, const char *message, ...)
{
    va_list arguments;
    char *line;

    va_start(arguments, message);
    line = vformatted(charSet, table, passThru, message, arguments);
    va_end(arguments);
    return line;
}

#endif
