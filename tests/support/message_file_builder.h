/**
 * Message files in a few lines. Every part has a default that the loader accepts, so a test writes only what it is
 * about:
 *
 *     FakeZel::file("m.xlf", MessageFile().unit(1, "Hello").unit(2, placeholder("%s", "1") + " files").xml());
 *     MessageFile().attribute("source-language", "eng").xml();         // one that is refused
 */
#ifndef KELTO_TESTS_SUPPORT_MESSAGE_FILE_BUILDER_H
#define KELTO_TESTS_SUPPORT_MESSAGE_FILE_BUILDER_H

#include <map>
#include <string>

/** Text as it is written into XML. */
inline std::string escaped(const std::string &text)
{
    static const std::map<char, std::string> references = {{'<', "&lt;"}, {'&', "&amp;"}, {'"', "&quot;"}};
    std::string xml;
    for (const char c : text)
        xml += references.count(c) > 0 ? references.at(c) : std::string(1, c);
    return xml;
}

/** A placeholder inside a source: "%s" at position 1. */
inline std::string placeholder(const std::string &ts, const std::string &id)
{
    return "<x ts=\"" + escaped(ts) + "\" id=\"" + escaped(id) + "\"/>";
}

/** A note, for behind a source. */
inline std::string note(const std::string &text)
{
    return "<note>" + escaped(text) + "</note>";
}

class MessageFile
{
public:
    /** These replace a part: an attribute of the "file" element, the XML declaration, the "header" element. */
    MessageFile &attribute(const std::string &name, const std::string &value)
    {
        return m_attributes[name] = value, *this;
    }
    MessageFile &without(const std::string &name) { return m_attributes.erase(name), *this; }
    MessageFile &declaration(const std::string &bytes) { return m_declaration = bytes, *this; }
    MessageFile &header(const std::string &xml) { return m_header = xml, *this; }

    /** These add to the body: XML, or a unit with an ID or attributes as in ts="7" id="3"; the source is XML. */
    MessageFile &body(const std::string &xml) { return m_body += xml, *this; }
    MessageFile &unit(long id, const std::string &source, const std::string &after = "")
    {
        return unit("id=\"" + std::to_string(id) + "\"", source, after);
    }
    MessageFile &unit(const std::string &attributes, const std::string &source, const std::string &after = "")
    {
        return body("<trans-unit " + attributes + "><source>" + source + "</source>" + after + "</trans-unit>\n");
    }

    /** The file, filled with white space in front of the end tag to this many bytes. */
    std::string xml(size_t bytes = 0) const
    {
        std::string file = m_declaration + "<xliff>\n<file";
        for (const auto &[name, value] : m_attributes)
            file += " " + name + "=\"" + escaped(value) + "\"";
        file += ">\n" + m_header + "<body>\n" + m_body + "</body>\n</file>\n";
        const std::string end = "</xliff>\n";
        return file + std::string(bytes > file.size() + end.size() ? bytes - file.size() - end.size() : 0, ' ') + end;
    }

private:
    std::string m_declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    std::map<std::string, std::string> m_attributes = {
        {"source-language", "en-US"}, {"product-name", "Example"}, {"product-version", "1.0"}};
    std::string m_header = "<header/>\n", m_body;
};

#endif
