/**
 * How a message file is read: opened through the platform, then parsed from its beginning in small chunks, as often as
 * the caller likes. The loader and the version query share it; the loader of compiled catalogs opens its files here,
 * too. Handles release themselves.
 */
#ifndef KELTO_MESSAGE_FILE_READER_H
#define KELTO_MESSAGE_FILE_READER_H

#include "message/grammar/xml_parser.h"
#include "platform/scoped.h"

namespace kelto
{

/** The bytes that are read at once; a step of the parser is a whole number of such chunks. */
constexpr unsigned long chunkBytes = 300;

/** Opens a message file. @return 0, KT_ERR_FILE_NOT_OPENED, KT_ERR_FILE_UNAVAILABLE, or the platform's own value. */
int openMessageFile(File &file, const char *path) noexcept;

/**
 * Parses a file from its beginning until it ends or the handlers have seen enough; `isDone` is asked after each step. A
 * step is one chunk, or several where tags and comments are so long that the parser reads too much again
 * (reparse_budget.h).
 * @param isDone  whether the handlers have seen enough; called with `state`.
 * @return 0; KT_ERR_BAD_MSG_FILE for XML that is not well-formed, exceeds a limit or has too long a tag;
 *         KT_ERR_NO_MEMORY; a read failure unchanged.
 */
int parseFile(File &file, const Parser &parser, XmlLimits &limits, bool (*isDone)(const void *state),
              const void *state) noexcept;

} // namespace kelto

#endif
