/**
 * The loader behind KTLoadMessages() and KTLoadRawMessages(). It parses a file twice: the first pass checks the
 * structure and measures, the second fills one block of exactly the size measured. Below are the states and the XML
 * parser's handlers of both passes. The file may change between them: the second pass relies on no more than what it
 * checks itself, never writes outside the block, and refuses a file that does not fill it exactly.
 */
#ifndef KELTO_MESSAGE_LOADER_H
#define KELTO_MESSAGE_LOADER_H

#include "kelto.h"
#include "message/file_reader.h"
#include "message/structure.h"

/** The first pass, all zero at its start except `raw`. */
struct FirstPassState
{
    bool raw;       /**< placeholders count without their positions */
    int error;      /**< 0, or the result that ends the pass: all handlers return at once */
    int depth;      /**< the elements that are open */
    ElementID last; /**< the element of the latest event that sets it; what may come next depends on it */
    int xliffSeen, fileSeen, headerSeen, bodySeen;
    int sourceSeen;         /**< in the current "trans-unit" */
    int highestId;          /**< of all messages so far */
    uint64_t textSize;      /**< the bytes that all messages need, with two zero bytes after each */
    uint64_t messageOffset; /**< `textSize` where the current message began */
    kelto::Declarations declarations;
};

/** The second pass, which fills `table` and the block behind `messages`. */
struct SecondPassState
{
    bool raw;
    int error;
    bool inSource; /**< text belongs to the current message */
    MessageTable *table;
    char **messages;
    int currentId;   /**< the message being written; 0 when there is none */
    char *cursor;    /**< the next free byte of the block; it and all after it are zero */
    const char *end; /**< the end of the block */
    kelto::Declarations declarations = {};
};

extern "C" {
#pragma GCC visibility push(default)

/**
 * Loads a message file, as KTLoadMessages() (`raw` false) and KTLoadRawMessages() (`raw` true) do.
 * @param path   handed to the platform as it is.
 * @param table  out: the table, which the list owns. Stored from the second pass on, null again when that pass fails.
 * @return as KTLoadMessages().
 */
int _KTLoadMessages(char *path, MessageTable **table, bool raw);

/* Handlers of the first pass; `state` is a FirstPassState. A broken rule makes its error KT_ERR_BAD_MSG_FILE, a message
 * of more than INT_MAX bytes KT_ERR_NO_MEMORY. */
void startElement1(void *state, const char *name, const char **attrs);
void endElement1(void *state, const char *name);
void characterData1(void *state, const char *text, int length);

/* Handlers of the second pass; `state` is a SecondPassState. A duplicate ID, and whatever differs from what the first
 * pass measured, makes its error KT_ERR_BAD_MSG_FILE; KT_ERR_NO_MEMORY when a product text cannot be copied. */
void startElement2(void *state, const char *name, const char **attrs);
void endElement2(void *state, const char *name);
void characterData2(void *state, const char *text, int length);

/**
 * Resolves the escapes \\ \t \r \n \" of a message in place, up to its first zero byte; any other backslash stays. What
 * the message shrinks by becomes zero bytes.
 */
void handleEscape(const char *text);

#pragma GCC visibility pop
}

#endif
