#include "bilingual/gettext/po_writer.h"

#include "bilingual/gettext/c_format.h"
#include "bilingual/gettext/po_header.h"
#include "bilingual/gettext/po_program.h"
#include "bilingual/message_parts.h"
#include "bilingual/plural_forms.h"

#include <algorithm>
#include <fmt/core.h>
#include <set>

namespace tool::bilingual
{
namespace
{

/** A note for a comment of the file. A comment ends with its line, and a carriage return would end it too. */
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
        m_isInC = m_isInC && inC && KTExplainFormat(asIs.c_str(), table, nullptr) == 0;
        return {asIs, inC.value_or(std::string())};
    }

    std::string text(const Both &both) const { return m_isInC ? both.inC : both.asIs; }

    bool m_isInC = true;
    const char *m_flag = "";
    std::vector<Row> m_rows;
};

/** The comments of an entry. Those of its forms are written once, since a plural entry has one place for them. */
std::string commentsOf(const std::vector<const Entry *> &forms, bool isPlural)
{
    std::string comments;
    std::string ours; // the examples of all forms, a line each
    if (!forms.front()->name.empty())
        comments += noteFor("name: " + forms.front()->name, developer);
    std::set<std::string> known;
    for (const Entry *const form : forms)
        for (const Note &hint : form->hints)
            if (isPlural && attributeOf(hint.attributes, "from") == ourselves)
                ours += (ours.empty() ? "" : "\n") + hint.text;
            else if (known.insert(hint.text).second)
                comments += noteFor(hint.text, developer);
    if (!ours.empty())
        comments += noteFor(ours, developer);
    std::set<std::string> remarks;
    for (const Entry *const form : forms)
        for (const Note &note : form->remarks.notes)
            if (remarks.insert(note.text).second)
                comments += noteFor(note.text, "translator");
    return comments;
}

/** The index of the form whose source is the one for one thing. */
size_t singularOf(const std::vector<const Entry *> &forms)
{
    const auto found =
        std::find_if(forms.begin(), forms.end(), [](const Entry *form) { return form->key.label == "one"; });
    return found != forms.end() ? static_cast<size_t>(found - forms.begin()) : 0;
}

/**
 * The units of an entry for kelto-po: one, or the forms of a plural entry. The first form has the source for one thing,
 * the others have the source for more.
 * @param plural  the entry with the source for more; null where the entry has no forms.
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
        if (hasPrevious && isIn(State::fuzzy)) // a plural entry has both or none
            units += fmt::format("<alt-trans><source>{}</source></alt-trans>\n",
                                 all[said]->previousSource ? texts.previous(said) : texts.source(said));
        if (form == 0)
            units += commentsOf(entries, plural != nullptr);
        units += "</trans-unit>\n";
    }
    return plural == nullptr ? units : "<group restype=\"x-gettext-plurals\">\n" + units + "</group>\n";
}

/**
 * The entries that make a plural entry, from one on: the variants of a `plural`, one for each category of the language.
 * The list is empty where PO has no plural entry for them.
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

} // namespace tool::bilingual
