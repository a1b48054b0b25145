#include "po/read_po.h"

#include "po/charset.h"
#include "po/escapes.h"
#include "po/findings.h"
#include "po/lines.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <gettext-po.h>
#include <memory>
#include <unistd.h>

namespace po
{
namespace
{

constexpr const char *ourNamespace = "urn:kelto:translation";
constexpr int mostForms = 64; // of one entry; languages have six at most

/** Writes the entries of a file as the document. */
class Reader
{
public:
    explicit Reader(const std::string &file) : m_lines(file) {}

    void write(po_file_t file);

private:
    void writeMessage(po_message_t message);
    void writeUnit(const char *target, int form, po_message_t message);
    std::string text(const char *original);
    std::string comments(const char *comment, const char *from);

    Lines m_lines;
    std::unique_ptr<Charset> m_charset;
    bool m_isReadable = true; // the texts of this entry
    bool m_hasControls = false;
    std::string m_context;
};

std::string Reader::text(const char *original)
{
    std::string utf8;
    if (!m_charset->convert(original, utf8))
        m_isReadable = false;
    return escaped(utf8, m_hasControls);
}

/** The notes of a comment, one for each run of lines. Empty lines separate the runs. */
std::string Reader::comments(const char *comment, const char *from)
{
    std::string utf8;
    if (!m_charset->convert(comment, utf8))
        return "";
    std::string notes;
    std::string note;
    const auto finish = [&] {
        bool ignored = false;
        if (!note.empty())
            notes += std::string("<note from=\"") + from + "\">" + escaped(note, ignored) + "</note>\n";
        note.clear();
    };
    for (size_t at = 0; at < utf8.size();)
    {
        const size_t end = std::min(utf8.find('\n', at), utf8.size());
        const size_t begin = at < end && utf8[at] == ' ' ? at + 1 : at;
        if (begin == end)
            finish();
        else
            note += (note.empty() ? "" : "\n") + utf8.substr(begin, end - begin);
        at = end + 1;
    }
    finish();
    return notes;
}

/** The name of the first format that an entry has a flag for; null where it has none. */
const char *formatOf(po_message_t message)
{
    for (const char *const *format = po_format_list(); *format != nullptr; ++format)
        if (po_message_is_format(message, *format) != 0)
            return *format;
    return nullptr;
}

void Reader::writeUnit(const char *target, int form, po_message_t message)
{
    m_isReadable = true;
    m_hasControls = false;
    const std::string id = text(m_context.c_str());
    const std::string sourceText = text(po_message_msgid(message));
    const char *const plural = po_message_msgid_plural(message);
    const std::string pluralText = plural != nullptr ? text(plural) : "";
    const std::string targetText = text(target);
    const char *const previous = form > 0 ? po_message_prev_msgid_plural(message) : po_message_prev_msgid(message);
    const std::string previousText = previous != nullptr ? text(previous) : "";
    const size_t line = m_lines.of(po_message_msgctxt(message), po_message_msgid(message), form);
    if (!m_isReadable)
    {
        findings.push_back({line, "", "not-in-charset"});
        return;
    }
    std::printf("<trans-unit id=\"%s\" approved=\"%s\" kelto:line=\"%zu\"", id.c_str(),
                po_message_is_fuzzy(message) != 0 ? "no" : "yes", line);
    if (po_message_is_obsolete(message) != 0)
        std::printf(" kelto:obsolete=\"yes\"");
    if (plural != nullptr)
        std::printf(" kelto:form=\"%d\" kelto:plural=\"%s\"", form, pluralText.c_str());
    if (const char *const format = formatOf(message))
        std::printf(" kelto:format=\"%s\"", format);
    if (m_hasControls)
        std::printf(" kelto:control=\"yes\"");
    std::printf(">\n<source>%s</source>\n<target>%s</target>\n", sourceText.c_str(), targetText.c_str());
    if (previous != nullptr)
        std::printf("<alt-trans alttranstype=\"previous-version\"><source>%s</source></alt-trans>\n",
                    previousText.c_str());
    std::fputs(comments(po_message_extracted_comments(message), "developer").c_str(), stdout);
    std::fputs(comments(po_message_comments(message), "translator").c_str(), stdout);
    std::printf("</trans-unit>\n");
}

void Reader::writeMessage(po_message_t message)
{
    const char *const context = po_message_msgctxt(message);
    const char *const id = po_message_msgid(message);
    if (context == nullptr && *id == '\0')
        return; // the header
    m_context = context != nullptr ? context : "";
    if (po_message_msgid_plural(message) == nullptr)
    {
        writeUnit(po_message_msgstr(message), -1, message);
        return;
    }
    std::printf("<group restype=\"x-gettext-plurals\">\n");
    for (int form = 0; form < mostForms; ++form)
    {
        const char *const target = po_message_msgstr_plural(message, form);
        if (target == nullptr && form > 0)
            break;
        writeUnit(target != nullptr ? target : "", form, message);
    }
    std::printf("</group>\n");
}

void Reader::write(po_file_t file)
{
    const char *const header = po_file_domain_header(file, nullptr);
    std::string charset = charsetOf(header != nullptr ? header : "");
    m_charset = std::make_unique<Charset>(charset);
    if (!m_charset->isKnown())
    {
        findings.push_back({1, "", "unknown-charset"});
        m_charset = std::make_unique<Charset>(charset = "UTF-8");
    }
    std::printf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xliff version=\"1.2\" xmlns:kelto=\"%s\">\n"
                "<file original=\"po\" source-language=\"\" datatype=\"po\" kelto:charset=\"%s\" "
                "kelto:header=\"%s\">\n<body>\n",
                ourNamespace, text(charset.c_str()).c_str(), text(header != nullptr ? header : "").c_str());
    const po_message_iterator_t iterator = po_message_iterator(file, nullptr);
    while (const po_message_t message = po_next_message(iterator))
        writeMessage(message);
    po_message_iterator_free(iterator);
    for (const Finding &finding : findings)
        std::printf("<kelto:finding kelto:line=\"%zu\" kelto:name=\"%s\">%s</kelto:finding>\n", finding.line,
                    finding.name, text(finding.text.c_str()).c_str());
    std::printf("</body>\n</file>\n</xliff>\n");
}

} // namespace

int readPo(const std::string &input)
{
    if (lseek(STDIN_FILENO, 0, SEEK_SET) != 0)
    {
        std::perror("kelto-po");
        return EXIT_FAILURE;
    }
    const po_file_t file = po_file_read("-", &handler);
    if (file == nullptr)
    {
        std::perror("kelto-po");
        return EXIT_FAILURE;
    }
    Reader(input).write(file);
    po_file_free(file);
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace po
