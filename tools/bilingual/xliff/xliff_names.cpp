#include "bilingual/xliff/xliff_names.h"

#include "bilingual/xml_walk.h"

#include <cstring>
#include <string_view>

namespace tool::bilingual
{
namespace
{

struct ElementRow
{
    const char *name;
    Element element;
};

constexpr ElementRow elements[] = {
    {"trans-unit", Element::unit},    {"unit", Element::unit},
    {"segment", Element::segment},    {"ignorable", Element::ignorable},
    {"source", Element::source},      {"target", Element::target},
    {"x", Element::placeholder},      {"ph", Element::placeholder},
    {"mrk", Element::marked},         {"data", Element::data},
    {"note", Element::note},          {"alt-trans", Element::alternative},
    {"context", Element::context},    {"context-group", Element::contextGroup},
    {"file", Element::file},          {"xliff", Element::xliff},
    {"group", Element::other},        {"body", Element::other},
    {"notes", Element::other},        {"originalData", Element::other},
    {"header", Element::skipped},     {"skeleton", Element::skipped},
    {"seg-source", Element::skipped}, {"finding", Element::finding},
};

struct StateRow
{
    const char *name;
    State state;
};

constexpr StateRow states[] = {{"translated", State::finished},
                               {"final", State::finished},
                               {"signed-off", State::finished},
                               {"reviewed", State::finished},
                               {"new", State::untranslated},
                               {"initial", State::untranslated},
                               {"needs-adaptation", State::fuzzy},
                               {"needs-l10n", State::fuzzy},
                               {"needs-review-adaptation", State::fuzzy},
                               {"needs-review-l10n", State::fuzzy},
                               {"needs-review-translation", State::fuzzy},
                               {"needs-translation", State::fuzzy}};

/** The namespace of XML itself, as it stands in front of a name. */
constexpr std::string_view ofXml = "http://www.w3.org/XML/1998/namespace|";

const char *localPart(const char *name)
{
    const char *const end = std::strrchr(name, namespaceEnd);
    return end != nullptr ? end + 1 : name;
}

} // namespace

Tag::Tag(const char *name, const char **attributes) : m_name(localPart(name)), m_attributes(attributes)
{
}

Element Tag::element() const
{
    for (const ElementRow &row : elements)
        if (std::strcmp(m_name, row.name) == 0)
            return row.element;
    return Element::skipped;
}

const char *Tag::find(const char *name) const
{
    for (const char **attribute = m_attributes; *attribute != nullptr; attribute += 2)
        if (std::strcmp(*attribute, name) == 0)
            return attribute[1];
    return nullptr;
}

std::string Tag::get(const char *name) const
{
    const char *const value = find(name);
    return value != nullptr ? value : "";
}

std::string Tag::ours(const char *name) const
{
    return get((std::string(ourNamespace) + namespaceEnd + name).c_str());
}

std::string Tag::space() const
{
    return get((std::string(ofXml) + "space").c_str());
}

Attributes Tag::attributes() const
{
    Attributes list;
    for (const char **attribute = m_attributes; *attribute != nullptr; attribute += 2)
        if (std::string_view(*attribute).substr(0, ofXml.size()) == ofXml)
            list.emplace_back("xml:" + std::string(*attribute + ofXml.size()), attribute[1]);
        else if (std::strchr(*attribute, namespaceEnd) == nullptr)
            list.emplace_back(attribute[0], attribute[1]);
    return list;
}

std::optional<State> meaningOf(const std::string &state)
{
    for (const StateRow &row : states)
        if (state == row.name)
            return row.state;
    return std::nullopt;
}

} // namespace tool::bilingual
