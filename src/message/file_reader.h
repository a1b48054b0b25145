/**
 * How a message file is read: opened through the platform, then parsed from its beginning in small chunks, as often as
 * the caller likes. The loader and the version query share it; handles and parsers release themselves.
 */
#ifndef KELTO_MESSAGE_FILE_READER_H
#define KELTO_MESSAGE_FILE_READER_H

#include "message/xml_limits.h"
#include "platform/scoped.h"

#include <expat.h>
#include <memory>
#include <type_traits>

namespace kelto
{

/** What is read at once; a step of the parser is a whole number of chunks. */
constexpr unsigned long chunkBytes = 300;

/** Opens a message file. @return 0, KT_ERR_FILE_NOT_OPENED, KT_ERR_FILE_UNAVAILABLE, or the platform's own value. */
int openMessageFile(File &file, const char *path) noexcept;

/** An XML parser, for one pass over a document after the other. */
class Parser
{
public:
    /**
     * Frees the parser of the pass before and creates one for the next.
     * @param state  what the handlers receive first; its member `limits` hears of all declarations.
     * @return false when there is no memory for it.
     */
    template <typename State> bool restart(State *state) noexcept
    {
        if (!create())
            return false;
        state->limits.attach(get());
        XML_SetUserData(get(), state);
        XML_SetEntityDeclHandler(get(), addEntity<State>);
        XML_SetAttlistDeclHandler(get(), addAttribute<State>);
        return true;
    }

    XML_Parser get() const noexcept { return m_parser.get(); }

private:
    struct Free
    {
        void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
    };

    bool create() noexcept;

    template <typename State>
    static void addEntity(void *state, const char *name, int isParameter, const char *value, int length, const char *,
                          const char *, const char *, const char *) noexcept
    {
        if (isParameter == 0 && value != nullptr)
            static_cast<State *>(state)->limits.addEntity(name, {value, static_cast<size_t>(length)});
    }

    template <typename State>
    static void addAttribute(void *state, const char *element, const char *, const char *type, const char *value,
                             int) noexcept
    {
        static_cast<State *>(state)->limits.addAttribute(element, type, value);
    }

    std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> m_parser;
};

/**
 * Parses a file from its beginning until it ends or the handlers have seen enough, which is asked after each step. A
 * step is a chunk, or more where tags and comments are so long that the parser reads too much again (reparse_budget.h).
 * @param isDone  the question, put to `state`.
 * @return 0; KT_ERR_BAD_MSG_FILE for XML that is not well-formed, exceeds a limit or has too long a tag;
 *         KT_ERR_NO_MEMORY; a read failure unchanged.
 */
int parseFile(File &file, const Parser &parser, XmlLimits &limits, bool (*isDone)(const void *state),
              const void *state) noexcept;

} // namespace kelto

#endif
