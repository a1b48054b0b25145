#include "bilingual/gettext/po_header.h"

#include "bilingual/plural_forms.h"

#include <algorithm>
#include <vector>

namespace tool::bilingual
{
namespace
{

void setField(std::vector<Attribute> &fields, std::string_view name, const std::string &value)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [name](const Attribute &field) { return field.first == name; });
    if (found == fields.end())
        fields.emplace_back(name, value);
    else
        found->second = value;
}

/** A text without the line ends that would begin a field of its own. */
std::string oneLine(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return byte == '\n' || byte == '\r'; }, ' ');
    return text;
}

/** "pt_BR", as PO files name a language. */
std::string withUnderscore(std::string language)
{
    std::replace(language.begin(), language.end(), '-', '_');
    return language;
}

/** The fields of a header, in their order. */
std::vector<Attribute> headerFields(std::string_view header)
{
    std::vector<Attribute> fields;
    for (size_t at = 0; at < header.size();)
    {
        const size_t end = std::min(header.find('\n', at), header.size());
        const std::string_view line = header.substr(at, end - at);
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos)
        {
            const size_t value = std::min(line.find_first_not_of(" \t", colon + 1), line.size());
            fields.emplace_back(line.substr(0, colon), line.substr(value));
        }
        at = end + 1;
    }
    return fields;
}

} // namespace

std::string headerField(std::string_view header, std::string_view name)
{
    return attributeOf(headerFields(header), name);
}

std::string headerOf(const Bilingual &catalog)
{
    std::vector<Attribute> fields = headerFields(catalog.header);
    if (fields.empty())
        fields = {{"Project-Id-Version", ""},
                  {"PO-Revision-Date", "1970-01-01 00:00+0000"},
                  {"Last-Translator", "Automatically generated"},
                  {"Language-Team", "none"}};
    setField(fields, "Project-Id-Version",
             oneLine(attributeOf(catalog.attributes, "product-name") + " " +
                     attributeOf(catalog.attributes, "product-version")));
    setField(fields, "Language", oneLine(withUnderscore(catalog.targetLanguage)));
    setField(fields, "MIME-Version", "1.0");
    setField(fields, "Content-Type", "text/plain; charset=UTF-8");
    setField(fields, "Content-Transfer-Encoding", "8bit");
    setField(fields, "Plural-Forms", pluralHeaderOf(catalog.targetLanguage));
    setField(fields, "X-Source-Language", oneLine(catalog.sourceLanguage));
    if (!catalog.targetLanguage.empty()) // without it Qt Linguist knows no plural forms, and drops them
        setField(fields, "X-Language", oneLine(withUnderscore(catalog.targetLanguage)));
    std::string header;
    for (const auto &[name, value] : fields)
        header.append(name).append(": ").append(value).append("\n");
    return header;
}

} // namespace tool::bilingual
