#include "bilingual/gettext/po_messages.h"

#include "bilingual/gettext/c_format.h"
#include "bilingual/gettext/po_header.h"
#include "bilingual/message_parts.h"
#include "bilingual/plural_forms.h"
#include "check/texts/formats.h"
#include "text.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::bilingual
{
namespace
{

using namespace check;

/** The message of a text, with our conversions in place of those of C. */
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

/** A category of the language, and the forms that the file has for its numbers. Another rule may give several. */
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

/** Makes messages of the texts of a PO file, and turns its plural forms into the categories of the language. */
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
            entry.findings.push_back(findingAt(place, Rule::structure, entry.key.number, {Text::controlCharacters}));
        }
    }

    /** Turns the forms of each plural entry into an entry for each category. */
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
                m_file.findings.push_back(
                    findingAt(m_file.body, Rule::structure, 0, {Text::pluralHeader, {quotation(field)}}));
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
            std::optional<unsigned> missing;
            for (const std::optional<unsigned> form : category.forms)
            {
                const size_t at = form ? begin + *form : end;
                const Entry *const other = at < end ? &forms[at] : nullptr;
                missing = form && other == nullptr ? form : missing;
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
                const Phrase why =
                    missing ? Phrase{Text::elementMissing, {"msgid_plural", fmt::format("msgstr[{}]", *missing)}}
                            : Phrase{Text::pluralFormsClash, {label}};
                entry.findings.push_back(findingAt(entry.place, Rule::structure, entry.key.number, why));
            }
            entries.push_back(std::move(entry));
        }
    }

    BilingualFile m_file;
};

/** Writes the conversions of a phrase as a PO file has them. */
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

BilingualFile withMessages(BilingualFile file)
{
    return MessageMaker(std::move(file)).run();
}

void dropTypedConversions(Findings &findings)
{
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [](const Finding &found) { return found.rule == Rule::typedConversion; }),
                   findings.end());
}

void tellInPo(std::vector<Diagnostic> &diagnostics)
{
    for (Diagnostic &diagnostic : diagnostics)
    {
        putInC(diagnostic.text);
        diagnostic.place.isLine = true;
        if (diagnostic.notePlace && diagnostic.notePlace->file == diagnostic.place.file)
            diagnostic.notePlace->isLine = true;
    }
}

} // namespace tool::bilingual
