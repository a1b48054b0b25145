#include "po/write_po.h"

#include "po/escapes.h"
#include "po/findings.h"

#include <cstdio>
#include <cstdlib>
#include <expat.h>
#include <gettext-po.h>
#include <map>
#include <memory>

namespace po
{
namespace
{

/** Makes a PO file of the document. */
class Writer
{
public:
    Writer() : m_file(po_file_create()), m_iterator(po_message_iterator(m_file, nullptr)) {}
    ~Writer() { po_file_free(m_file); }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    bool parse(const std::string &document);
    bool write()
    {
        po_message_iterator_free(m_iterator);
        return po_file_write(m_file, "-", &handler) != nullptr;
    }

private:
    using Attributes = std::map<std::string, std::string>;

    void start(const std::string &name, const Attributes &attributes);
    void end(const std::string &name);
    void finishUnit();

    po_file_t m_file;
    po_message_iterator_t m_iterator;
    po_message_t m_message = nullptr; // of the last unit that began one
    bool m_isInGroup = false;
    int m_form = 0;
    bool m_isPrevious = false;
    Attributes m_unit;
    std::string m_source, m_target, m_previous, m_words, m_comments, m_hints;
    std::string m_noteFrom;
};

void Writer::start(const std::string &name, const Attributes &attributes)
{
    const auto get = [&attributes](const char *key) {
        const auto found = attributes.find(key);
        return found != attributes.end() ? found->second : std::string();
    };
    m_words.clear();
    if (name == "file")
    {
        const po_message_t header = po_message_create();
        po_message_set_msgid(header, "");
        po_message_set_msgstr(header, unescaped(get("kelto:header")).c_str());
        po_message_insert(m_iterator, header);
    }
    else if (name == "group")
    {
        m_isInGroup = true;
        m_form = 0;
    }
    else if (name == "trans-unit")
    {
        m_unit = attributes;
        m_source = m_target = m_previous = m_comments = m_hints = "";
        m_isPrevious = false;
    }
    else if (name == "alt-trans")
        m_isPrevious = true;
    else if (name == "note")
        m_noteFrom = get("from");
}

/** Adds a note to the lines of a comment, with an empty line in front. */
void addComment(std::string &comments, const std::string &note)
{
    if (!comments.empty())
        comments += "\n";
    comments += note + "\n";
}

void Writer::end(const std::string &name)
{
    if (name == "source")
        (m_isPrevious ? m_previous : m_source) = unescaped(m_words);
    else if (name == "target")
        m_target = unescaped(m_words);
    else if (name == "alt-trans")
        m_unit["previous"] = "yes";
    else if (name == "note")
        addComment(m_noteFrom == "developer" ? m_hints : m_comments, unescaped(m_words));
    else if (name == "trans-unit")
        finishUnit();
    else if (name == "group")
        m_isInGroup = false;
}

void Writer::finishUnit()
{
    const bool isFirst = !m_isInGroup || m_form == 0;
    if (isFirst)
    {
        m_message = po_message_create();
        const std::string &id = m_unit["id"];
        po_message_set_msgctxt(m_message, unescaped(id).c_str());
        po_message_set_msgid(m_message, m_source.c_str());
        po_message_set_comments(m_message, m_comments.c_str());
        po_message_set_extracted_comments(m_message, m_hints.c_str());
        po_message_set_fuzzy(m_message, m_unit["approved"] == "no" ? 1 : 0);
        po_message_set_obsolete(m_message, m_unit["kelto:obsolete"] == "yes" ? 1 : 0);
        if (m_unit["kelto:format"] == "c-format")
            po_message_set_format(m_message, "c-format", 1);
        else if (m_unit["kelto:format"] == "no-c-format")
            po_message_set_format(m_message, "c-format", 0);
        if (m_unit["previous"] == "yes")
            po_message_set_prev_msgid(m_message, m_previous.c_str());
    }
    if (!m_isInGroup)
        po_message_set_msgstr(m_message, m_target.c_str());
    else
    {
        if (m_form == 0)
            po_message_set_msgid_plural(m_message, unescaped(m_unit["kelto:plural"]).c_str());
        if (m_unit["previous"] == "yes" && m_form == 1)
            po_message_set_prev_msgid_plural(m_message, m_previous.c_str());
        po_message_set_msgstr_plural(m_message, m_form++, m_target.c_str());
    }
    if (isFirst)
        po_message_insert(m_iterator, m_message);
}

bool Writer::parse(const std::string &document)
{
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate("UTF-8"), XML_ParserFree);
    if (parser == nullptr)
        return false;
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(
        parser.get(),
        [](void *self, const char *name, const char **attributes) {
            Attributes list;
            for (; *attributes != nullptr; attributes += 2)
                list[attributes[0]] = attributes[1];
            static_cast<Writer *>(self)->start(name, list);
        },
        [](void *self, const char *name) { static_cast<Writer *>(self)->end(name); });
    XML_SetCharacterDataHandler(parser.get(), [](void *self, const char *text, int length) {
        static_cast<Writer *>(self)->m_words.append(text, static_cast<size_t>(length));
    });
    return XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE) == XML_STATUS_OK;
}

} // namespace

int writePo(const std::string &document)
{
    Writer writer;
    if (!writer.parse(document))
    {
        std::fputs("kelto-po: the document is not well-formed\n", stderr);
        return EXIT_FAILURE;
    }
    return writer.write() && std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace po
