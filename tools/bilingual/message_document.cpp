#include "bilingual/message_document.h"

#include "bilingual/message_parts.h"
#include "bilingual/selectors.h"
#include "bilingual/xml_walk.h"
#include "message/grammar/attributes.h"

#include <algorithm>
#include <cstring>
#include <fmt/core.h>

namespace tool::bilingual
{
namespace
{

constexpr std::string_view digestName = "digest";

/** Takes the remarks of a message file, whose structure is known to be right. */
class RemarksReader
{
public:
    RemarksReader(FileRemarks &remarks, bool hasRemarks)
        : m_remarks(remarks), m_hasRemarks(hasRemarks), m_walk(*this, XmlNames::asWritten)
    {
    }

    void read(std::string_view bytes) { m_walk.run(bytes); }

    // For the walk.
    void start(const char *name, const char **attributes)
    {
        const auto is = [name](const char *other) { return std::strcmp(name, other) == 0; };
        if (is("file"))
            m_remarks.attributes = attributesFrom(attributes);
        else if (is("body") && !m_hasRemarks)
            XML_StopParser(m_walk.get(), XML_FALSE);
        else if (is("trans-unit"))
            startUnit(attributes);
        else if (is("context-group"))
            m_remarks.units[m_unit].contexts.push_back({attributesFrom(attributes), {}});
        else if (is("context") && !m_remarks.units[m_unit].contexts.empty() && m_text == nullptr)
            take(m_remarks.units[m_unit].contexts.back().contexts, attributes);
        else if (is("note"))
            take(m_remarks.units[m_unit].notes, attributes);
    }

    void end(const char *name)
    {
        if (std::strcmp(name, "note") == 0 || std::strcmp(name, "context") == 0)
            m_text = nullptr;
        else if (std::strcmp(name, "trans-unit") == 0)
            m_unit = 0;
    }

    void text(std::string_view words)
    {
        if (m_text != nullptr)
            *m_text += words;
    }

private:
    void startUnit(const char **attributes)
    {
        const Attributes all = attributesFrom(attributes);
        const std::string *const number = findAttribute(all, "ts");
        const std::string *const id = findAttribute(all, "id");
        m_unit = kelto::readMessageId(attributes);
        if (number != nullptr && id != nullptr)
            m_remarks.labels[m_unit] = *id;
        if (const std::string *const source = findAttribute(all, sourceDigest))
            m_remarks.sources[m_unit] = *source;
    }

    /** Begins a note, whose words follow. */
    void take(std::vector<Note> &notes, const char **attributes)
    {
        notes.push_back({attributesFrom(attributes), ""});
        m_text = &notes.back().text;
    }

    FileRemarks &m_remarks;
    bool m_hasRemarks;
    XmlWalk<RemarksReader> m_walk;
    int m_unit = 0; // of no message, outside of units
    std::string *m_text = nullptr;
};

std::string partsAsXml(const std::string &message, formTable *table)
{
    std::string text;
    const Parts parts = readSelector(message) ? Parts{{true, message}} : partsOf(message, table);
    for (const Part &part : parts)
        if (part.isPlaceholder)
            text += "<x" + xmlAttribute("ts", escaped(part.conversion())) + xmlAttribute("id", part.position()) + "/>";
        else
            text += xmlText(escaped(part.text));
    return text;
}

void writeRemarks(std::string &file, const Remarks &remarks)
{
    for (const ContextGroup &group : remarks.contexts)
    {
        file += "        <context-group" + xmlAttributes(group.attributes) + ">\n";
        for (const Note &context : group.contexts)
            file += fmt::format("          <context{}>{}</context>\n", xmlAttributes(context.attributes),
                                xmlText(context.text));
        file += "        </context-group>\n";
    }
    for (const Note &note : remarks.notes)
        file += fmt::format("        <note{}>{}</note>\n", xmlAttributes(note.attributes), xmlText(note.text));
}

/** Where the sixteen digits stand that `messageFileOf` writes; npos where there are none. */
size_t findDigest(std::string_view file)
{
    const std::string begin = " " + std::string(digestName) + "=\"";
    const size_t tag = file.find("<file ");
    const size_t end = tag == std::string_view::npos ? tag : file.find('>', tag);
    const size_t found = end == std::string_view::npos ? end : file.substr(0, end).find(begin, tag);
    constexpr size_t digits = 16;
    const size_t at = found == std::string_view::npos ? found : found + begin.size();
    return at != std::string_view::npos && at + digits < end && file[at + digits] == '"' ? at : std::string_view::npos;
}

/** Whether there may be any in the body; a walk over it costs as much as reading the file. */
bool mayHaveRemarks(std::string_view bytes)
{
    const auto has = [bytes](std::string_view word) { return bytes.find(word) != std::string_view::npos; };
    const bool isWide = bytes.substr(0, 4).find('\0') != std::string_view::npos || has("\xFE\xFF") || has("\xFF\xFE");
    if (isWide || has("<!DOCTYPE") || has("<note") || has("<context") || has(sourceDigest))
        return true;
    constexpr std::string_view attribute = "ts=";
    for (size_t at = bytes.find(attribute); at != std::string_view::npos; at = bytes.find(attribute, at + 1))
    {
        const std::string_view value = bytes.substr(at + attribute.size(), 2);
        if (value.size() < 2 || value[1] != '%') // it is not that of an "x"
            return true;
    }
    return false;
}

} // namespace

FileRemarks remarksIn(std::string_view bytes)
{
    FileRemarks remarks;
    RemarksReader(remarks, mayHaveRemarks(bytes)).read(bytes);
    return remarks;
}

std::string attributeOf(const Attributes &attributes, std::string_view name)
{
    const std::string *const value = findAttribute(attributes, name);
    return value != nullptr ? *value : std::string();
}

std::string messageFileOf(MessageDocument document, formTable *table)
{
    std::stable_sort(document.units.begin(), document.units.end(),
                     [](const MessageUnit &a, const MessageUnit &b) { return a.id < b.id; });
    std::string file = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xliff version=\"1.1\">\n  <file";
    for (const auto &[name, value] : document.attributes)
        if (name != digestName)
            file += xmlAttribute(name, value);
    const std::string noDigest(digestOf("").size(), '0');
    file += xmlAttribute(digestName, noDigest) + ">\n    <header/>\n    <body>\n";
    for (const MessageUnit &unit : document.units)
    {
        const std::string number = std::to_string(unit.id);
        file += "      <trans-unit";
        if (!unit.label.empty())
            file += xmlAttribute("ts", number);
        file += xmlAttribute("id", unit.label.empty() ? number : unit.label);
        if (!unit.name.empty())
            file += xmlAttribute("resname", unit.name);
        if (!unit.source.empty())
            file += xmlAttribute(sourceDigest, unit.source);
        file += ">\n        <source>" + partsAsXml(unit.text, table) + "</source>\n";
        writeRemarks(file, unit.remarks);
        file += "      </trans-unit>\n";
    }
    file += "    </body>\n  </file>\n</xliff>\n";
    file.replace(findDigest(file), noDigest.size(), digestOf(file));
    return file;
}

Origin originOf(std::string_view messageFile)
{
    const size_t at = findDigest(messageFile);
    if (at == std::string_view::npos)
        return Origin::foreign;
    std::string plain(messageFile);
    const size_t digits = digestOf("").size();
    const std::string found = plain.substr(at, digits);
    plain.replace(at, digits, digits, '0');
    return digestOf(plain) == found ? Origin::untouched : Origin::edited;
}

} // namespace tool::bilingual
