#include "message/grammar/xml_limits.h"

#include "message/grammar/attributes.h"

#include <cstring>

namespace
{

// The unit of work is one default attribute that the parser hands out, which costs it some twenty instructions. When a
// default is declared, the parser compares it with all earlier declarations for the element; each comparison costs a
// quarter of a unit.
constexpr uint64_t comparisonsForOne = 4;

size_t indexOf(const ElementMapRow &element)
{
    return static_cast<size_t>(&element - kelto::elements);
}

} // namespace

bool kelto::XmlLimits::addWork(uint64_t work) noexcept
{
    m_work += work;
    if (m_work <= m_allowed)
        return true;
    stop();
    return false;
}

void kelto::XmlLimits::addEntity(const char *name, std::string_view value) noexcept
{
    if (!m_entities.add(name, value))
        stop();
}

void kelto::XmlLimits::addAttribute(const char *element, const char *type, const char *value) noexcept
{
    uint32_t &declared = m_declared[indexOf(findElement(element))];
    if (value != nullptr || equalNames(type, "ID"))
        addWork(declared / comparisonsForOne);
    ++declared;
    m_declaresAttributes = true;
}

// The parser looks at every attribute that was declared for an element, whether it hands it out or not. A pass reads
// the texts of the attributes that it stores, which it counts, and the numbers of messages.
bool kelto::XmlLimits::addDeclaredAttributes(const ElementMapRow &element, const char **attrs) noexcept
{
    const char *const id = element.id == ELM_TRANS_UNIT ? findMessageNumber(attrs).digits : nullptr;
    return addWork(m_declared[indexOf(element)] + (id != nullptr ? std::strlen(id) : 0));
}
