#include "check/texts/resolved_text.h"

#include "message/grammar/escapes.h"

#include <algorithm>

namespace tool::check
{

size_t escapeLength(std::string_view text)
{
    return text.size() > 1 && text[0] == '\\' && kelto::meaningOfEscape(text[1]) != '\0' ? 2 : 0;
}

ResolvedText::ResolvedText(std::string_view raw) : m_text(raw), m_hasBackslash(raw.find('\\') != std::string_view::npos)
{
    if (!m_hasBackslash)
        return;
    for (size_t at = 0; at < raw.size();)
    {
        if (const size_t length = escapeLength(raw.substr(at)))
        {
            m_escapes.push_back(m_resolved.size());
            m_resolved += kelto::meaningOfEscape(raw[at + 1]);
            at += length;
        }
        else
            m_resolved += raw[at++];
    }
    m_text = m_resolved;
}

size_t ResolvedText::beforeEscapes(size_t offset) const
{
    return offset +
           static_cast<size_t>(std::lower_bound(m_escapes.begin(), m_escapes.end(), offset) - m_escapes.begin());
}

} // namespace tool::check
