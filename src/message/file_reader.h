/**
 * How a message file is read: opened through the platform, then parsed from its beginning in small chunks, as often as
 * the caller likes. The loader and the version query share it; handles and parsers release themselves.
 */
#ifndef KELTO_MESSAGE_FILE_READER_H
#define KELTO_MESSAGE_FILE_READER_H

#include "platform/scoped.h"

#include <cstring>
#include <expat.h>
#include <memory>
#include <type_traits>

namespace kelto
{

/** Opens a message file. @return 0, KT_ERR_FILE_NOT_OPENED, KT_ERR_FILE_UNAVAILABLE, or the platform's own value. */
int openMessageFile(File &file, const char *path) noexcept;

/**
 * What a document type declares that costs more than its length, counted: an entity that refers to another costs stack
 * when it is expanded, an attribute with a default value costs time and memory with every element that leaves it out.
 * Where there are too many, the parser stops at once: it may have read far ahead of what it handles.
 */
class Declarations
{
public:
    void attach(XML_Parser parser) noexcept { m_parser = parser; }

    void addEntity(const char *value, int length) noexcept
    {
        if (value != nullptr && std::memchr(value, '&', static_cast<size_t>(length)) != nullptr)
            add(m_nestedEntities, mostNestedEntities);
    }

    void addAttribute(const char *defaultValue) noexcept
    {
        if (defaultValue != nullptr)
            add(m_defaultAttributes, mostDefaultAttributes);
    }

private:
    static constexpr unsigned mostNestedEntities = 100; // a chain of them fits the smallest stack of a thread
    static constexpr unsigned mostDefaultAttributes = 250;

    void add(unsigned &count, unsigned most) noexcept
    {
        if (++count > most)
            XML_StopParser(m_parser, XML_FALSE);
    }

    XML_Parser m_parser = nullptr;
    unsigned m_nestedEntities = 0;
    unsigned m_defaultAttributes = 0;
};

/** An XML parser, for one pass over a document after the other. */
class Parser
{
public:
    /**
     * Frees the parser of the pass before and creates one for the next.
     * @param state  what the handlers receive first; has Declarations.
     * @return false when there is no memory for it.
     */
    template <typename State> bool restart(State *state) noexcept
    {
        m_parser.reset();
        m_parser.reset(XML_ParserCreate(nullptr));
        if (m_parser == nullptr)
            return false;
        state->declarations.attach(get());
        XML_SetUserData(get(), state);
        XML_SetEntityDeclHandler(get(), countEntity<State>);
        XML_SetAttlistDeclHandler(get(), countAttribute<State>);
        return true;
    }

    XML_Parser get() const noexcept { return m_parser.get(); }

private:
    struct Free
    {
        void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
    };

    template <typename State>
    static void countEntity(void *state, const char *, int, const char *value, int length, const char *, const char *,
                            const char *, const char *) noexcept
    {
        static_cast<State *>(state)->declarations.addEntity(value, length);
    }

    template <typename State>
    static void countAttribute(void *state, const char *, const char *, const char *, const char *defaultValue,
                               int) noexcept
    {
        static_cast<State *>(state)->declarations.addAttribute(defaultValue);
    }

    std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> m_parser;
};

/**
 * Parses a file from its beginning until it ends or the handlers have seen enough, which is asked after each step: one
 * chunk, or as many as a long tag or comment needs.
 * @param isDone  the question, put to `state`, with the bytes read so far.
 * @return 0; KT_ERR_BAD_MSG_FILE for XML that is not well-formed, declares too much or has too long a tag; KT_ERR_NO_MEMORY; a read failure
 *         unchanged.
 */
int parseFile(File &file, const Parser &parser, bool (*isDone)(void *state, uint64_t bytesRead), void *state) noexcept;

} // namespace kelto

#endif
