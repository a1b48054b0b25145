#include "library/parsed_message.h"

#include "failure.h"
#include "library/syntax_fault.h"

#include <algorithm>

namespace tool
{

ParsedMessage::ParsedMessage(const std::string &text, formTable *table) : m_format(text, table)
{
    if (m_format.result() == KT_ERR_FORMAT_SYNTAX)
        throw Failure(describeSyntaxFault(text, table));
    if (m_format.result() != 0)
        throw Failure(meaningOf(m_format.result()));

    KTConversion found{};
    found.structSize = sizeof found;
    while (KTNextConversion(text.c_str(), table, &found))
    {
        m_specifications.resize(std::max<size_t>(m_specifications.size(), found.position));
        m_specifications[found.position - 1] = text.substr(found.offset, found.length);
    }
}

} // namespace tool
