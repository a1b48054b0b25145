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

/**
 * What a document type declares, counted. Entities that refer to one another cost stack when they are expanded, and an
 * attribute with a default value costs time and memory with every element that leaves it out; where there are many, the
 * parser stops at once: it may have read far ahead of what it handles.
 */
class Declarations
{
public:
    void attach(XML_Parser parser) noexcept { m_parser = parser; }
    void addEntity() noexcept { add(m_entities); }
    void addDefaultAttribute() noexcept { add(m_defaultAttributes); }

private:
    static constexpr unsigned most = 1000;

    void add(unsigned &count) noexcept
    {
        if (++count > most)
            XML_StopParser(m_parser, XML_FALSE);
    }

    XML_Parser m_parser = nullptr;
    unsigned m_entities = 0;
    unsigned m_defaultAttributes = 0;
};

/** An XML parser for one pass over a document. */
class Parser
{
public:
    /** @param state  what the handlers receive first; has Declarations. Without memory the parser is invalid. */
    template <typename State> explicit Parser(State *state) noexcept : m_parser(XML_ParserCreate(nullptr))
    {
        if (m_parser == nullptr)
            return;
        state->declarations.attach(m_parser);
        XML_SetUserData(m_parser, state);
        XML_SetEntityDeclHandler(m_parser, countEntity<State>);
        XML_SetAttlistDeclHandler(m_parser, countAttribute<State>);
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
    template <typename State>
    static void countEntity(void *state, const char *, int, const char *, int, const char *, const char *, const char *,
                            const char *) noexcept
    {
        static_cast<State *>(state)->declarations.addEntity();
    }

    template <typename State>
    static void countAttribute(void *state, const char *, const char *, const char *, const char *defaultValue,
                               int) noexcept
    {
        if (defaultValue != nullptr)
            static_cast<State *>(state)->declarations.addDefaultAttribute();
    }

    XML_Parser m_parser;
};

/**
 * Parses a file from its beginning until it ends or the handlers have seen enough, which is asked after each chunk.
 * @param isDone  the question, put to `state`, with the bytes read so far.
 * @return 0; KT_ERR_BAD_MSG_FILE for XML that is not well-formed or declares too much; -1 for an invalid parser; a read
 *         failure unchanged.
 */
int parseFile(File &file, const Parser &parser, bool (*isDone)(void *state, uint64_t bytesRead), void *state) noexcept;

} // namespace kelto

#endif
