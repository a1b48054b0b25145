/**
 * Message files in a few lines. Every part has a default that the loader accepts, so a test writes only what it is about:
 *
 *     FakeZel::file("m.xlf", MessageFile().unit(1, "Hello").unit(2, placeholder("%s", "1") + " files").xml());
 *     MessageFile().attribute("source-language", "eng").xml();         // one that is refused
 */
#ifndef KELTO_TESTS_SUPPORT_MESSAGE_FILE_BUILDER_H
#define KELTO_TESTS_SUPPORT_MESSAGE_FILE_BUILDER_H

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

/** Text as it is written into XML. */
inline std::string escaped(const std::string &text)
{
    std::string xml;
    for (const char c : text)
        switch (c)
        {
        case '<':
            xml += "&lt;";
            break;
        case '&':
            xml += "&amp;";
            break;
        case '"':
            xml += "&quot;";
            break;
        default:
            xml += c;
        }
    return xml;
}

/** A placeholder inside a source: "%s" at position 1. */
inline std::string placeholder(const std::string &ts, const std::string &id)
{
    return "<x ts=\"" + escaped(ts) + "\" id=\"" + escaped(id) + "\"/>";
}

class MessageFile
{
public:
    /** Sets an attribute of the "file" element. */
    MessageFile &attribute(const std::string &name, std::string value)
    {
        without(name);
        m_attributes.emplace_back(name, std::move(value));
        return *this;
    }

    /** Drops an attribute of the "file" element. */
    MessageFile &without(const std::string &name)
    {
        const auto named = [&](const auto &attribute) { return attribute.first == name; };
        m_attributes.erase(std::remove_if(m_attributes.begin(), m_attributes.end(), named), m_attributes.end());
        return *this;
    }

    /** Replaces the XML declaration, in bytes. */
    MessageFile &declaration(std::string bytes)
    {
        m_declaration = std::move(bytes);
        return *this;
    }

    /** Replaces the whole "header" element, with "" by nothing. */
    MessageFile &header(std::string xml)
    {
        m_header = std::move(xml);
        return *this;
    }

    /** Adds a unit; the source is XML, as is what follows it inside the unit (see note()). */
    MessageFile &unit(long id, const std::string &source, const std::string &after = "")
    {
        return unit("id=\"" + std::to_string(id) + "\"", source, after);
    }

    /** Adds a unit with these attributes, as in ts="7" id="3". */
    MessageFile &unit(const std::string &attributes, const std::string &source, const std::string &after = "")
    {
        return body("<trans-unit " + attributes + "><source>" + source + "</source>" + after + "</trans-unit>\n");
    }

    /** Adds XML to the body. */
    MessageFile &body(const std::string &xml)
    {
        m_body += xml;
        return *this;
    }

    /** Adds XML between "body" and the end of "file". */
    MessageFile &afterBody(const std::string &xml)
    {
        m_afterBody += xml;
        return *this;
    }

    /** Adds white space in front of the end tag until the whole file has this many bytes, if it is shorter. */
    MessageFile &paddedTo(size_t bytes)
    {
        m_paddedSize = bytes;
        return *this;
    }

    std::string xml() const
    {
        std::string start = m_declaration + "<xliff>\n<file";
        for (const auto &[name, value] : m_attributes)
            start += " " + name + "=\"" + escaped(value) + "\"";
        start += ">\n" + m_header + "<body>\n" + m_body + "</body>\n" + m_afterBody + "</file>\n";
        const std::string end = "</xliff>\n";
        const size_t size = start.size() + end.size();
        return start + std::string(m_paddedSize > size ? m_paddedSize - size : 0, ' ') + end;
    }

private:
    std::string m_declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    std::vector<std::pair<std::string, std::string>> m_attributes = {
        {"source-language", "en-US"}, {"product-name", "Example"}, {"product-version", "1.0"}};
    std::string m_header = "<header/>\n";
    std::string m_body;
    std::string m_afterBody;
    size_t m_paddedSize = 0;
};

/** A note, for behind a source. */
inline std::string note(const std::string &text)
{
    return "<note>" + escaped(text) + "</note>";
}

#endif
