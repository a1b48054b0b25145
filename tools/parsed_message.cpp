#include "parsed_message.h"

#include "failure.h"
#include "syntax_fault.h"

#include <algorithm>
#include <charconv>

namespace tool
{

ParsedMessage::ParsedMessage(const std::string &text) : m_format(text)
{
    if (m_format.result() == KT_ERR_FORMAT_SYNTAX)
        throw Failure(describeSyntaxFault(text));
    if (m_format.result() != 0)
        throw Failure(meaningOf(m_format.result()));

    for (size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at))
    {
        if (text[at + 1] == '%')
        {
            at += 2;
            continue;
        }
        const size_t open = text.find('[', at);
        const size_t close = text.find(']', open);
        size_t position = 0;
        std::from_chars(text.data() + open + 1, text.data() + close, position);
        m_specifications.resize(std::max(m_specifications.size(), position));
        m_specifications[position - 1] = text.substr(at, close + 1 - at);
        at = close;
    }
}

} // namespace tool
