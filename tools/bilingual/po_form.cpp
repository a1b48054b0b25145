#include "bilingual/po_form.h"

#include "bilingual/c_format.h"
#include "bilingual/message_parts.h"
#include "bilingual/plural_forms.h"
#include "bilingual/po_program.h"
#include "bilingual/xliff_reader.h"
#include "check/formats.h"
#include "failure.h"
#include "text.h"
#include "transcode.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::bilingual
{
namespace
{

using namespace check;

/** The fields of a header, in their order. */
std::vector<Attribute> fieldsOf(std::string_view header)
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

/**
 * What a translator's program had there stays. Where there is nothing yet, there is nothing that depends on when and by
 * whom it is made: the same catalog gives the same bytes.
 */
std::string headerOf(const Bilingual &catalog)
{
    std::vector<Attribute> fields = fieldsOf(catalog.header);
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

/** A comment, which ends with its line: a carriage return in it would be another end. */
std::string noteFor(std::string text, const char *from)
{
    std::replace(text.begin(), text.end(), '\r', ' ');
    return fmt::format("<note from=\"{}\">{}</note>\n", from, xmlText(escaped(text)));
}

/** The texts of an entry, and whether all of them can stand for formats of C. */
class PoTexts
{
public:
    PoTexts(const std::vector<const Entry *> &entries, formTable *table)
    {
        bool hasPercent = false;
        for (const Entry *const entry : entries)
        {
            const bool isTranslated = entry->state != State::untranslated;
            const Parts source = partsOf(entry->source, table);
            const Parts target = isTranslated ? partsOf(entry->target, table) : Parts();
            const Parts previous = entry->previousSource ? partsOf(*entry->previousSource, table) : Parts();
            m_isInC = m_isInC && (entry->state != State::finished || agreeInC(source, target));
            hasPercent = hasPercent || entry->source.find('%') != std::string::npos ||
                         entry->target.find('%') != std::string::npos;
            m_rows.push_back({add(source, table), add(target, table), add(previous, table)});
        }
        m_flag = !hasPercent ? "" : m_isInC ? "c-format" : "no-c-format";
    }

    const char *flag() const { return m_flag; }
    std::string plainSource(size_t row) const { return text(m_rows[row].source); }
    std::string source(size_t row) const { return xmlText(escaped(text(m_rows[row].source))); }
    std::string target(size_t row) const { return xmlText(escaped(text(m_rows[row].target))); }
    std::string previous(size_t row) const { return xmlText(escaped(text(m_rows[row].previous))); }

private:
    struct Both
    {
        std::string asIs, inC;
    };
    struct Row
    {
        Both source, target, previous;
    };

    Both add(const Parts &parts, formTable *table)
    {
        const std::string asIs = textOf(parts);
        const std::optional<std::string> inC = messageInC(parts);
        // A percent sign by itself is no format, in C neither.
        const bool isFormat = asIs.find('%') == std::string::npos || parts.size() > 1 ||
                              KTExplainFormat(asIs.c_str(), table, nullptr) == 0;
        m_isInC = m_isInC && inC && isFormat;
        return {asIs, inC.value_or(std::string())};
    }

    std::string text(const Both &both) const { return m_isInC ? both.inC : both.asIs; }

    bool m_isInC = true;
    const char *m_flag = "";
    std::vector<Row> m_rows;
};

/** What we say about the forms of a plural entry. */
std::string ourHints(const std::vector<const Entry *> &forms)
{
    std::string text;
    for (const Entry *const form : forms)
        for (const Note &hint : form->hints)
            if (attributeOf(hint.attributes, "from") == ourselves)
                text += (text.empty() ? "" : "\n") + hint.text;
    return text;
}

/** Which of the forms has the source for one thing. */
size_t singularOf(const std::vector<const Entry *> &forms)
{
    const auto found =
        std::find_if(forms.begin(), forms.end(), [](const Entry *form) { return form->key.label == "one"; });
    return found != forms.end() ? static_cast<size_t>(found - forms.begin()) : 0;
}

/**
 * The units of an entry for kelto-po: one, or the forms of a plural entry. The first of these has its source for one
 * thing, the others that for more.
 */
std::string unitsOf(const std::vector<const Entry *> &entries, const Entry *plural, formTable *table)
{
    std::vector<const Entry *> all = entries;
    if (plural != nullptr)
        all.push_back(plural);
    const PoTexts texts(all, table);
    const auto isIn = [&entries](State state) {
        return std::any_of(entries.begin(), entries.end(),
                           [state](const Entry *entry) { return entry->state == state; });
    };
    const bool hasPrevious = std::any_of(entries.begin(), entries.end(),
                                         [](const Entry *entry) { return entry->previousSource.has_value(); });
    std::string units;
    for (size_t form = 0; form < entries.size(); ++form)
    {
        const Entry &entry = *entries[form];
        const size_t said = plural == nullptr ? form : form == 0 ? singularOf(entries) : entries.size();
        const std::string id = plural != nullptr ? std::to_string(entry.key.number) : written(entry.key);
        units += "<trans-unit" + xmlAttribute("id", id) + xmlAttribute("approved", isIn(State::fuzzy) ? "no" : "yes");
        if (entry.isObsolete)
            units += " kelto:obsolete=\"yes\"";
        if (*texts.flag() != '\0')
            units += xmlAttribute("kelto:format", texts.flag());
        if (plural != nullptr)
            units += xmlAttribute("kelto:plural", escaped(texts.plainSource(entries.size())));
        units += fmt::format(">\n<source>{}</source>\n<target>{}</target>\n", texts.source(said), texts.target(form));
        if (hasPrevious && isIn(State::fuzzy)) // of a plural entry both or none
            units += fmt::format("<alt-trans><source>{}</source></alt-trans>\n",
                                 all[said]->previousSource ? texts.previous(said) : texts.source(said));
        if (form == 0 && !entry.name.empty())
            units += noteFor("name: " + entry.name, developer);
        for (const Note &hint : entry.hints)
            if (form == 0 && (plural == nullptr || attributeOf(hint.attributes, "from") != ourselves))
                units += noteFor(hint.text, developer);
        if (form == 0 && plural != nullptr)
            units += noteFor(ourHints(entries), developer);
        for (const Note &note : entry.remarks.notes)
            if (form == 0)
                units += noteFor(note.text, "translator");
        units += "</trans-unit>\n";
    }
    return plural == nullptr ? units : "<group restype=\"x-gettext-plurals\">\n" + units + "</group>\n";
}

/**
 * The entries from one on that make a plural entry: those of a row by how many, one for each category of the language.
 * None where PO cannot say them so.
 */
std::vector<const Entry *> pluralFrom(const Bilingual &catalog, size_t first)
{
    std::vector<const Entry *> forms;
    const Entry &entry = catalog.entries[first];
    const auto selector = catalog.selectors.find(entry.key.number);
    if (entry.isObsolete || entry.key.label.empty() || selector == catalog.selectors.end() ||
        selector->second.kind != Selector::Kind::plural || selector->second.digits > 0)
        return forms;
    const std::vector<Category> categories = categoriesOf(catalog.targetLanguage, false);
    for (size_t i = 0; i < categories.size(); ++i)
    {
        if (first + i >= catalog.entries.size())
            return {};
        const Entry &form = catalog.entries[first + i];
        if (form.key.number != entry.key.number || form.key.label != variantLabels[categories[i].variant])
            return {};
        forms.push_back(&form);
    }
    return forms;
}

/** The source for more than one thing. */
const Entry *pluralSource(const std::vector<const Entry *> &forms)
{
    for (const Entry *const form : forms)
        if (form->key.label != "one")
            return form;
    return forms.back();
}

} // namespace

std::string poOf(const Bilingual &catalog, formTable *table)
{
    std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xliff version=\"1.2\"" +
                           xmlAttribute("xmlns:kelto", ourNamespace) + ">\n<file" +
                           xmlAttribute("kelto:header", escaped(headerOf(catalog))) + ">\n<body>\n";
    for (size_t i = 0; i < catalog.entries.size();)
    {
        const Entry &entry = catalog.entries[i];
        if (entry.source.empty()) // that is the header, whatever its context
        {
            if (entry.isObsolete && !entry.target.empty()) // nobody knows what it was translated from
            {
                Entry known = entry;
                known.source = entry.target;
                document += unitsOf({&known}, nullptr, table);
            }
            ++i;
            continue;
        }
        const std::vector<const Entry *> forms = pluralFrom(catalog, i);
        document +=
            forms.empty() ? unitsOf({&catalog.entries[i]}, nullptr, table) : unitsOf(forms, pluralSource(forms), table);
        i += std::max<size_t>(forms.size(), 1);
    }
    return runPo("write", document + "</body>\n</file>\n</xliff>\n");
}

namespace
{

/** The text of an entry as a message has it: conversions of C are ours. */
std::string messageFrom(const std::string &text)
{
    std::string message;
    size_t done = 0;
    for (size_t at = text.find('%'); at < text.size(); at = text.find('%', at))
        if (text.compare(at, 2, "%%") == 0)
            at += 2;
        else if (const std::optional<FromC> conversion = fromC(std::string_view(text).substr(at)))
        {
            message += text.substr(done, at - done) + conversion->conversion;
            done = at += conversion->length;
        }
        else
            ++at;
    return message + text.substr(done);
}

/** Where each line of a text begins, and behind the last. */
std::vector<size_t> linesOf(std::string_view text)
{
    std::vector<size_t> lines{0};
    for (size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
        lines.push_back(at + 1);
    lines.push_back(text.size() + 1);
    return lines;
}

/** The same lines without a byte order mark, and with the ends that libgettextpo knows. */
std::string normalized(std::string_view bytes)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (bytes.substr(0, mark.size()) == mark)
        bytes.remove_prefix(mark.size());
    std::string result;
    result.reserve(bytes.size());
    for (size_t at = 0; at < bytes.size(); ++at)
        if (bytes[at] != '\r' || bytes.substr(at + 1, 1) != "\n")
            result += bytes[at];
    return result;
}

/** A category, and the forms in which a file has its numbers: several where the file's rule is another. */
struct FormsOfCategory
{
    int variant; // of KTVariant
    std::vector<std::optional<unsigned>> forms;
};

std::vector<FormsOfCategory> formsOfCategories(const PluralHeader &header, const std::string &language)
{
    std::vector<FormsOfCategory> all;
    for (const Category &category : categoriesOf(language, false))
    {
        std::vector<std::optional<unsigned>> forms;
        for (const uint64_t number : category.examples)
            if (const auto form = header.formOf(number); std::find(forms.begin(), forms.end(), form) == forms.end())
                forms.push_back(form);
        all.push_back({category.variant, std::move(forms)});
    }
    return all;
}

/** Reads a PO file as it is written. */
class PoReader
{
public:
    PoReader(SourceText source, Keys keys)
        : m_document(readXliff(SourceText("kelto-po", runPo("read", normalized(source.bytes()))), keys)),
          m_file{{}, inUtf8(std::move(source)), {}, {}, {}, true, false, {}}, m_lines(linesOf(m_file.source.bytes()))
    {
    }

    BilingualFile run(const std::string &language)
    {
        if (!m_document.isWhole)
            throw Failure("kelto-po: " + say(Text::poProgramFailed));
        m_file.content = std::move(m_document.content);
        Bilingual &content = m_file.content;
        for (const auto &[name, value] : fieldsOf(content.header))
        {
            if (name == "Language")
                content.targetLanguage = value;
            if (name == "X-Source-Language")
                content.sourceLanguage = value;
        }
        if (content.targetLanguage.empty())
            content.targetLanguage = language;
        m_file.body = lineAt(1);
        m_file.languagePlace = m_file.body;
        for (Entry &entry : content.entries)
        {
            entry.place = lineAt(entry.line);
            entry.findings.clear(); // of texts that are none of XLIFF
        }
        for (const Finding &finding : m_document.findings)
            m_file.findings.push_back(inPo(finding));
        findZero();
        return std::move(m_file);
    }

private:
    /** A text ends at a zero byte, for libgettextpo: what stands behind it would be lost. */
    void findZero()
    {
        const std::string_view bytes = m_file.source.bytes();
        const size_t zero = bytes.find('\0');
        if (zero == std::string_view::npos)
            return;
        const auto behind = std::upper_bound(m_lines.begin(), m_lines.end(), zero);
        const Range place = lineAt(static_cast<size_t>(behind - m_lines.begin()));
        m_file.findings.push_back({Rule::structure, 0, place.begin, place, {Text::controlCharacters}, std::nullopt});
    }

    /** The file's text, whatever charset it is in; its lines are the same. */
    SourceText inUtf8(SourceText source) const
    {
        const std::string &charset = m_document.content.charset;
        if (charset.empty() || charset == "UTF-8" || charset == "utf-8")
            return source;
        try
        {
            requireReadable(charset);
            return {source.name(), transcode(charset, "UTF-8", std::string(source.bytes())).bytes};
        }
        catch (const Failure &)
        {
            return source;
        }
    }

    Range lineAt(size_t line) const
    {
        if (line == 0 || line + 1 > m_lines.size())
            line = 1;
        const size_t begin = m_lines[line - 1];
        return {begin, std::max(begin, m_lines[line] - 1)};
    }

    /** A finding of kelto-po, or against an entry, whose place is the line of that. */
    Finding inPo(const Finding &finding) const
    {
        Finding moved = finding;
        moved.place = lineAt(m_document.lineOf(finding.place));
        moved.order = moved.place.begin;
        return moved;
    }

    BilingualFile m_document; // of kelto-po
    BilingualFile m_file;
    std::vector<size_t> m_lines;
};

/** Makes messages of the texts of a PO file, and of its plural entries the forms that the language needs. */
class MessageMaker
{
public:
    explicit MessageMaker(BilingualFile file) : m_file(std::move(file)) {}

    BilingualFile run()
    {
        for (Entry &entry : m_file.content.entries)
            finish(entry);
        readForms();
        return std::move(m_file);
    }

private:
    static void finish(Entry &entry)
    {
        const Range place = entry.place;
        entry.source = messageFrom(entry.source);
        if (entry.previousSource)
            entry.previousSource = messageFrom(*entry.previousSource);
        entry.target = messageFrom(entry.target);
        entry.written = {escaped(entry.target), {}, place, true};
        const auto end = static_cast<uint32_t>(entry.written.raw.size());
        if (end > 0)
            entry.written.pieces.push_back({0, end, Piece::Kind::replaced, 0, place});
        if (entry.target.empty())
            entry.state = State::untranslated;
        entry.hasTarget = !entry.target.empty();
        std::vector<Note> notes;
        for (const Note &note : entry.remarks.notes) // the hints come from the reference
            if (attributeOf(note.attributes, "from") != developer)
                notes.push_back({{}, unescaped(note.text)});
        entry.remarks.notes = std::move(notes);
        if (entry.hasControls)
        {
            entry.written.isComplete = false;
            entry.findings.push_back(
                {Rule::structure, entry.key.number, place.begin, place, {Text::controlCharacters}, std::nullopt});
        }
    }

    /** Makes of the forms of plural entries the categories that they are for. */
    void readForms()
    {
        Bilingual &content = m_file.content;
        std::vector<Entry> entries;
        const std::string field = headerField(content.header, "Plural-Forms");
        const std::optional<PluralHeader> header =
            PluralHeader::read(field.empty() ? "nplurals=2; plural=n != 1;" : field);
        std::vector<FormsOfCategory> categories; // of the first plural entry on
        bool isTold = false;
        for (size_t i = 0; i < content.entries.size();)
        {
            if (content.entries[i].form < 0)
            {
                entries.push_back(std::move(content.entries[i++]));
                continue;
            }
            size_t end = i + 1;
            while (end < content.entries.size() && content.entries[end].form > 0 &&
                   content.entries[end].key == content.entries[i].key)
                ++end;
            if (!header && !isTold)
            {
                isTold = true;
                const Range place = m_file.body;
                m_file.findings.push_back(
                    {Rule::structure, 0, place.begin, place, {Text::pluralHeader, {quotation(field)}}, std::nullopt});
            }
            if (header && categories.empty())
                categories = formsOfCategories(*header, content.targetLanguage);
            addForms(categories, i, end, entries);
            i = end;
        }
        content.entries = std::move(entries);
    }

    void addForms(const std::vector<FormsOfCategory> &categories, size_t begin, size_t end,
                  std::vector<Entry> &entries) const
    {
        const std::vector<Entry> &forms = m_file.content.entries;
        for (const FormsOfCategory &category : categories)
        {
            const Entry *chosen = nullptr;
            bool clashes = false;
            for (const std::optional<unsigned> form : category.forms)
            {
                const size_t at = begin + form.value_or(static_cast<unsigned>(end - begin));
                const Entry *const other = at < end ? &forms[at] : nullptr;
                clashes = clashes || other == nullptr || (chosen != nullptr && chosen->target != other->target);
                chosen = chosen == nullptr ? other : chosen;
            }
            Entry entry = chosen != nullptr ? *chosen : forms[begin];
            const char *const label = variantLabels[category.variant];
            entry.key.label = label;
            const bool isOne = category.variant == KT_VARIANT_ONE;
            entry.source = isOne ? forms[begin].source : messageFrom(forms[begin].plural);
            const Entry &old = isOne || begin + 1 == end ? forms[begin] : forms[begin + 1];
            entry.previousSource = old.previousSource;
            if (clashes && entry.state == State::finished)
            {
                entry.written.isComplete = false;
                entry.findings.push_back({Rule::structure,
                                          entry.key.number,
                                          entry.place.begin,
                                          entry.place,
                                          {Text::pluralFormsClash, {label}},
                                          std::nullopt});
            }
            entries.push_back(std::move(entry));
        }
    }

    BilingualFile m_file;
};

} // namespace

namespace
{

/** The same text with conversions as a PO file has them. */
void putInC(Phrase &phrase)
{
    for (Shown &shown : phrase.values)
    {
        const std::string conversion = conversionInTag(shown.words).value_or(shown.words);
        if (!conversion.empty() && conversion[0] == '%')
            shown.words = inC(conversion).value_or(conversion);
        for (Phrase &part : shown.phrase)
            putInC(part);
    }
}

} // namespace

void tellInPo(std::vector<Diagnostic> &diagnostics)
{
    diagnostics.erase(std::remove_if(diagnostics.begin(), diagnostics.end(),
                                     [](const Diagnostic &found) { return found.rule == Rule::typedConversion; }),
                      diagnostics.end());
    for (Diagnostic &diagnostic : diagnostics)
    {
        putInC(diagnostic.text);
        diagnostic.place.isLine = true;
        if (diagnostic.notePlace && diagnostic.notePlace->file == diagnostic.place.file)
            diagnostic.notePlace->isLine = true;
    }
}

std::string headerField(std::string_view header, std::string_view name)
{
    return attributeOf(fieldsOf(header), name);
}

bool isPo(std::string_view bytes)
{
    using namespace std::string_view_literals;
    constexpr std::string_view marks[] = {"\xEF\xBB\xBF"sv, "\xFF\xFE"sv, "\xFE\xFF"sv};
    for (const std::string_view mark : marks)
        if (bytes.substr(0, mark.size()) == mark)
            bytes.remove_prefix(mark.size());
    const size_t first = bytes.find_first_not_of(" \t\r\n\0"sv);
    return first != std::string_view::npos && bytes[first] != '<';
}

BilingualFile readPo(SourceText source, const std::string &language)
{
    return withMessages(PoReader(std::move(source), Keys::numbers).run(language));
}

BilingualFile readGettext(SourceText source, const std::string &language)
{
    return PoReader(std::move(source), Keys::contexts).run(language);
}

BilingualFile withMessages(BilingualFile file)
{
    return MessageMaker(std::move(file)).run();
}

} // namespace tool::bilingual
