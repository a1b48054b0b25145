/**
 * How a message file is read: opened through the platform, then parsed from its beginning in small chunks, as often as
 * the caller likes. The loader and the version query share it; handles and parsers release themselves.
 */
#ifndef KELTO_MESSAGE_FILE_READER_H
#define KELTO_MESSAGE_FILE_READER_H

#include "platform/scoped.h"

#include <expat.h>

namespace kelto
{

/** Opens a message file. @return 0, KT_ERR_FILE_NOT_OPENED, KT_ERR_FILE_UNAVAILABLE, or the platform's own value. */
int openMessageFile(File &file, const char *path) noexcept;

/** An XML parser for one pass over a document. */
class Parser
{
public:
    /** @param state  what the handlers receive first. Without memory the parser is invalid. */
    explicit Parser(void *state) noexcept : m_parser(XML_ParserCreate(nullptr))
    {
        if (m_parser != nullptr)
            XML_SetUserData(m_parser, state);
    }
    ~Parser()
    {
        if (m_parser != nullptr)
            XML_ParserFree(m_parser);
    }
    Parser(const Parser &) = delete;
    Parser &operator=(const Parser &) = delete;

    bool isValid() const noexcept { return m_parser != nullptr; }
    XML_Parser get() const noexcept { return m_parser; }

private:
    XML_Parser m_parser;
};

/**
 * Parses a file from its beginning until it ends or the handlers have seen enough, which is asked after each chunk.
 * @param isDone  the question, put to `state`.
 * @return 0; KT_ERR_BAD_MSG_FILE for XML that is not well-formed; -1 for an invalid parser; a read failure unchanged.
 */
int parseFile(File &file, const Parser &parser, bool (*isDone)(const void *state), const void *state) noexcept;

} // namespace kelto

#endif
