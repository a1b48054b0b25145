/**
 * The XML parser of message files, set up in one way for all readers, with the limits of a document in its handlers.
 */
#ifndef KELTO_MESSAGE_GRAMMAR_XML_PARSER_H
#define KELTO_MESSAGE_GRAMMAR_XML_PARSER_H

#include "message/grammar/xml_limits.h"

#include <expat.h>
#include <memory>
#include <type_traits>

namespace kelto
{

/** An XML parser, for one pass over a document after the other. */
class Parser
{
public:
    /**
     * Frees the parser of the pass before and creates one for the next.
     * @param state  the first argument of the handlers; its member `limits` is told of all declarations.
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

} // namespace kelto

#endif
