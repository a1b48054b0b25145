#include "po/lines.h"

#include <algorithm>

namespace po
{

Lines::Lines(std::string_view file)
{
    size_t line = 1;
    for (size_t at = 0; at < file.size(); ++line)
    {
        const size_t end = std::min(file.find('\n', at), file.size());
        take(file.substr(at, end - at), line);
        at = end + 1;
    }
}

size_t Lines::of(const char *context, const char *id, int form) const
{
    const std::string name = context != nullptr ? context : "";
    auto found = m_lines.find({name, id});
    if (found == m_lines.end() && context != nullptr) // in some charsets a backslash is a part of a character
        found = m_lines.lower_bound({name, ""});
    if (found == m_lines.end() || found->first.first != name)
        return 0;
    return found->second[std::min(static_cast<size_t>(std::max(form, 0)), found->second.size() - 1)];
}

void Lines::take(std::string_view text, size_t line)
{
    if (text.substr(0, 2) == "#~")
        text.remove_prefix(2);
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz_";
    const std::string_view word = text.substr(0, text.find_first_not_of(letters));
    if (word == "msgstr")
    {
        m_lines[{m_context, m_id}].push_back(line);
        m_hasText = true;
        m_open = nullptr;
    }
    else if (word == "msgctxt" || word == "msgid")
    {
        if (m_hasText)
            m_context.clear();
        m_hasText = false;
        m_open = word == "msgid" ? &m_id : &m_context;
        m_open->clear();
    }
    else if (text.empty() || text[0] != '"')
        m_open = nullptr;
    const size_t begin = text.find('"');
    const size_t end = text.rfind('"');
    if (m_open != nullptr && begin < end && end != std::string_view::npos)
        addString(text.substr(begin + 1, end - begin - 1));
}

void Lines::addString(std::string_view written)
{
    for (size_t at = 0; at < written.size(); ++at)
    {
        constexpr std::string_view letters = "ntrabfv";
        constexpr std::string_view meant = "\n\t\r\a\b\f\v";
        if (written[at] == '\\' && at + 1 < written.size())
        {
            const size_t row = letters.find(written[++at]);
            *m_open += row != std::string_view::npos ? meant[row] : written[at];
        }
        else
            *m_open += written[at];
    }
}

} // namespace po
