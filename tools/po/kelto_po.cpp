// kelto-po: PO files for the program kelto, which starts it. It stands by itself since libgettextpo was not written for
// hostile input, and because of its licence (GPL-3 or later): what can go wrong in here ends this process alone, under
// limits of memory and time that kelto sets.
//
//     kelto-po read   <a PO file  >the bilingual document
//     kelto-po write  <the document  >a PO file
//
// The document is XLIFF 1.2 with attributes of ours, of the namespace "urn:kelto:translation": "line" of an entry's
// msgstr and of a finding, "obsolete", "format" ("c-format", "no-c-format"), "header" and "charset" of the file,
// "control" where a text has characters that no XML document can hold. Texts are written with \\, \t, \r and \n. A
// plural entry is a group ("x-gettext-plurals") of units with the same number, a "form" each; "plural" is its
// msgid_plural.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <expat.h>
#include <gettext-po.h>
#include <iconv.h>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

constexpr const char *ourNamespace = "urn:kelto:translation";
constexpr int mostForms = 64; // of one entry; languages have six at most

struct Finding
{
    size_t line; // 0 where it has none
    std::string text;
};

std::vector<Finding> findings;

void report(int severity, po_message_t, const char *, size_t line, size_t, int, const char *text)
{
    const bool hasLine = line != static_cast<size_t>(-1);
    if (severity != PO_SEVERITY_WARNING)
        findings.push_back({hasLine ? line : 0, text});
    if (severity == PO_SEVERITY_FATAL_ERROR)
    {
        std::fprintf(stderr, "kelto-po: %s\n", text);
        std::exit(EXIT_FAILURE);
    }
}

void reportTwo(int severity, po_message_t one, const char *file, size_t line, size_t column, int isLong,
               const char *text, po_message_t, const char *, size_t, size_t, int, const char *)
{
    report(severity, one, file, line, column, isLong, text);
}

constexpr po_xerror_handler handler = {report, reportTwo};

/** Converts the texts of a file; what cannot be converted is told. */
class Charset
{
public:
    explicit Charset(const std::string &name) : m_converter(iconv_open("UTF-8", name.c_str())) {}
    ~Charset()
    {
        if (isKnown())
            iconv_close(m_converter);
    }
    Charset(const Charset &) = delete;
    Charset &operator=(const Charset &) = delete;

    bool isKnown() const { return m_converter != reinterpret_cast<iconv_t>(-1); }

    /** False where the text is none of the charset. */
    bool convert(const char *text, std::string &utf8) const
    {
        utf8.clear();
        iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
        std::string source(text);
        char *in = source.data();
        size_t left = source.size();
        std::array<char, 4096> buffer{};
        bool isAtEnd = false;
        while (!isAtEnd)
        {
            isAtEnd = left == 0; // then what the converter has kept, for an accent that might have followed
            char *out = buffer.data();
            size_t room = buffer.size();
            const size_t result = iconv(m_converter, isAtEnd ? nullptr : &in, &left, &out, &room);
            utf8.append(buffer.data(), buffer.size() - room);
            if (result == static_cast<size_t>(-1) && errno != E2BIG)
                return false;
        }
        return true;
    }

private:
    iconv_t m_converter;
};

/** A text with the escapes of the document; what XML cannot hold becomes U+FFFD and is counted. */
std::string escaped(std::string_view text, bool &hasControls)
{
    std::string result;
    for (size_t at = 0; at < text.size(); ++at)
    {
        const char byte = text[at];
        constexpr std::string_view meant = "\\\t\r\n&<>\"";
        constexpr std::array<const char *, 8> written = {"\\\\",  "\\t",  "\\r",  "\\n",
                                                         "&amp;", "&lt;", "&gt;", "&quot;"};
        const size_t row = meant.find(byte);
        const bool isNoCharacter = text.substr(at, 2) == "\xEF\xBF" && at + 2 < text.size() &&
                                   static_cast<unsigned char>(text[at + 2]) >= 0xBE;
        if (row != std::string_view::npos)
            result += written.at(row);
        else if ((byte >= 0 && byte < ' ') || isNoCharacter)
        {
            result += "\uFFFD";
            hasControls = true;
            at += isNoCharacter ? 2 : 0;
        }
        else
            result += byte;
    }
    return result;
}

std::string unescaped(const std::string &text)
{
    std::string result;
    for (size_t at = 0; at < text.size(); ++at)
    {
        constexpr std::string_view written = "\\trn";
        constexpr std::string_view meant = "\\\t\r\n";
        const size_t row =
            text[at] == '\\' && at + 1 < text.size() ? written.find(text[at + 1]) : std::string_view::npos;
        if (row == std::string_view::npos)
            result += text[at];
        else
        {
            result += meant[row];
            ++at;
        }
    }
    return result;
}

/** The line of each entry's msgstr; libgettextpo tells none of them. */
class Lines
{
public:
    explicit Lines(std::string_view file)
    {
        size_t line = 1;
        for (size_t at = 0; at < file.size(); ++line)
        {
            const size_t end = std::min(file.find('\n', at), file.size());
            take(file.substr(at, end - at), line);
            at = end + 1;
        }
    }

    /** That of a form; 0 where nobody knows. */
    size_t of(const char *context, const char *id, int form) const
    {
        const std::string name = context != nullptr ? context : "";
        auto found = m_lines.find({name, id});
        if (found == m_lines.end() && context != nullptr) // in some charsets a backslash is a part of a character
            found = m_lines.lower_bound({name, ""});
        if (found == m_lines.end() || found->first.first != name)
            return 0;
        return found->second[std::min(static_cast<size_t>(std::max(form, 0)), found->second.size() - 1)];
    }

private:
    void take(std::string_view text, size_t line)
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

    void addString(std::string_view written)
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

    std::map<std::pair<std::string, std::string>, std::vector<size_t>> m_lines; // by context and msgid
    std::string m_context, m_id;
    std::string *m_open = nullptr; // of these, the one that goes on
    bool m_hasText = false;        // its msgstr has begun
};

std::string readInput()
{
    std::string input;
    std::array<char, 65536> buffer{};
    for (ssize_t got = 0; (got = read(STDIN_FILENO, buffer.data(), buffer.size())) != 0;)
        if (got > 0)
            input.append(buffer.data(), static_cast<size_t>(got));
        else if (errno != EINTR)
        {
            std::perror("kelto-po");
            std::exit(EXIT_FAILURE);
        }
    return input;
}

// --- read

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

/** A note for each run of comment lines; empty ones separate the runs. */
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

/** The first format that an entry is said to be in; null where it is in none. */
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
        findings.push_back({line, "a text is not in the charset that the header names"});
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

/** What follows a name in "charset=ISO-8859-1". */
std::string charsetOf(const char *header)
{
    const std::unique_ptr<char, void (*)(void *)> field(po_header_field(header, "Content-Type"), std::free);
    const std::string_view type = field != nullptr ? field.get() : "";
    constexpr std::string_view name = "charset=";
    const size_t at = type.find(name);
    if (at == std::string_view::npos)
        return "UTF-8";
    const std::string charset(type.substr(at + name.size(), type.find_first_of("; \t", at) - at - name.size()));
    return charset.empty() || charset == "CHARSET" || charset.size() > 40 ? "UTF-8" : charset;
}

void Reader::write(po_file_t file)
{
    const char *const header = po_file_domain_header(file, nullptr);
    std::string charset = charsetOf(header != nullptr ? header : "");
    m_charset = std::make_unique<Charset>(charset);
    if (!m_charset->isKnown())
    {
        findings.push_back({1, "nobody knows the charset that the header names"});
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
        std::printf("<kelto:finding kelto:line=\"%zu\">%s</kelto:finding>\n", finding.line,
                    text(finding.text.c_str()).c_str());
    std::printf("</body>\n</file>\n</xliff>\n");
}

int readPo()
{
    const std::string input = readInput();
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

// --- write

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
    po_message_t m_message = nullptr; // of a group, or of a unit that is in none
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

/** Comment lines, behind those of other notes. */
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
    else if (name == "target" && !m_isPrevious)
        m_target = unescaped(m_words);
    else if (name == "alt-trans")
        m_unit["previous"] = "yes";
    else if (name == "note")
        addComment(m_noteFrom == "developer" ? m_hints : m_comments, unescaped(m_words));
    else if (name == "trans-unit")
        finishUnit();
    else if (name == "group")
    {
        m_isInGroup = false;
        m_message = nullptr;
    }
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

int writePo()
{
    Writer writer;
    if (!writer.parse(readInput()))
    {
        std::fputs("kelto-po: the document is not well-formed\n", stderr);
        return EXIT_FAILURE;
    }
    return writer.write() && std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string_view mode = argc == 2 ? argv[1] : "";
    if (mode == "read" || mode == "write")
        _exit(mode == "read" ? readPo() : writePo()); // what libgettextpo has not freed ends with the process
    std::fputs("kelto-po is started by kelto, which reads and writes PO files with it.\n", stderr);
    return EXIT_FAILURE;
}
