#include "bilingual/xml.h"

#include <algorithm>

namespace tool::bilingual
{
namespace
{

/** The text with references for the characters that the table has. */
std::string withReferences(std::string_view text, std::string_view characters, const std::string_view *references)
{
    std::string written;
    written.reserve(text.size());
    for (size_t at = 0; at < text.size();)
    {
        const size_t next = std::min(text.find_first_of(characters, at), text.size());
        written += text.substr(at, next - at);
        if (next < text.size())
            written += references[characters.find(text[next])];
        at = next + 1;
    }
    return written;
}

} // namespace

Attributes attributesFrom(const char *const *attributes)
{
    Attributes list;
    for (; *attributes != nullptr; attributes += 2)
        list.emplace_back(attributes[0], attributes[1]);
    return list;
}

std::string xmlText(std::string_view text)
{
    constexpr std::string_view references[] = {"&amp;", "&lt;", "&gt;", "&#13;"};
    return withReferences(text, "&<>\r", references);
}

std::string xmlAttribute(std::string_view name, std::string_view value)
{
    constexpr std::string_view references[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&#9;", "&#10;", "&#13;"};
    return " " + std::string(name) + "=\"" + withReferences(value, "&<>\"\t\n\r", references) + '"';
}

std::string xmlAttributes(const Attributes &attributes)
{
    std::string written;
    for (const auto &[name, value] : attributes)
        written += xmlAttribute(name, value);
    return written;
}

const std::string *findAttribute(const Attributes &attributes, std::string_view name)
{
    for (const auto &[key, value] : attributes)
        if (key == name)
            return &value;
    return nullptr;
}

} // namespace tool::bilingual
