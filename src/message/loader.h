/**
 * The loader behind KTLoadMessages() and KTLoadRawMessages(). It parses a file twice: the first pass checks the
 * structure and measures, the second fills one block of exactly the size measured. The file may change in between: the
 * second pass refuses a file that does not fill the block exactly.
 */
#ifndef KELTO_MESSAGE_LOADER_H
#define KELTO_MESSAGE_LOADER_H

#include "message/table_list.h"

extern "C" {
#pragma GCC visibility push(default)

/**
 * Loads a message file, as KTLoadMessages() (`raw` false) and KTLoadRawMessages() (`raw` true) do.
 * @param path   handed to the platform as it is.
 * @param table  out: the table, which the list owns. Stored from the second pass on, null again when that pass fails.
 * @return as KTLoadMessages().
 */
int _KTLoadMessages(char *path, MessageTable **table, bool raw);

#pragma GCC visibility pop
}

#endif
