/**
 * Limits on the work that a short but hostile document makes: its declarations can produce any amount of text and
 * attributes. Every pass over a document has limits of its own. They are told of each declaration and, once an
 * attribute was declared, of each element. A document beyond the limits stops the parser, which may have read far
 * ahead.
 */
#ifndef KELTO_MESSAGE_GRAMMAR_XML_LIMITS_H
#define KELTO_MESSAGE_GRAMMAR_XML_LIMITS_H

#include "message/grammar/elements.h"
#include "message/grammar/entity_nesting.h"

#include <cstdint>
#include <expat.h>
#include <string_view>

namespace kelto
{

class XmlLimits
{
public:
    static constexpr uint64_t unquestionedBytes = uint64_t{64} << 20;
    static constexpr uint64_t mostForEachByte = 100;
    static constexpr uint64_t longestToken = uint64_t{24} << 20; // a tag or a comment; the parser holds it as a whole

    void attach(XML_Parser parser) noexcept { m_parser = parser; }

    void setBytesRead(uint64_t bytes) noexcept
    {
        m_allowed = bytes * mostForEachByte > unquestionedBytes ? bytes * mostForEachByte : unquestionedBytes;
    }

    /** Whether a document of the bytes read so far may give this much text. */
    bool allowsText(uint64_t bytes) const noexcept { return bytes <= m_allowed; }

    /** Notes that an entity is declared with this value. */
    void addEntity(const char *name, std::string_view value) noexcept;

    /** Notes that an attribute of an element is declared; `value` is null where it has no default. */
    void addAttribute(const char *element, const char *type, const char *value) noexcept;

    /** Notes that an element starts. @return false where the limits are exceeded: its attributes must not be read. */
    bool addElement(const ElementMapRow &element, const char **attrs) noexcept
    {
        return !m_declaresAttributes || addDeclaredAttributes(element, attrs);
    }

private:
    bool addDeclaredAttributes(const ElementMapRow &element, const char **attrs) noexcept;
    bool addWork(uint64_t work) noexcept;
    void stop() noexcept { XML_StopParser(m_parser, XML_FALSE); }

    XML_Parser m_parser = nullptr;
    uint64_t m_allowed = unquestionedBytes; // bytes of text, and units of work
    uint64_t m_work = 0;
    uint32_t m_declared[elementRows] = {}; // attributes, by row of the elements; unknown elements share one
    bool m_declaresAttributes = false;
    EntityNesting m_entities;
};

} // namespace kelto

#endif
