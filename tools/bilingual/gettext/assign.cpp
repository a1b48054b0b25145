#include "bilingual/gettext/assign.h"

#include "bilingual/gettext/po_header.h"
#include "bilingual/gettext/po_messages.h"
#include "bilingual/gettext/printf_format.h"
#include "bilingual/message_parts.h"
#include "bilingual/plural_forms.h"
#include "bilingual/selectors.h"
#include "check/file_check.h"
#include "text.h"

#include <algorithm>
#include <fmt/core.h>
#include <set>

namespace tool::bilingual
{
namespace
{

using namespace check;

/** The texts of an entry as messages have them; a part that no message can have is a finding against it. */
class MessageTexts
{
public:
    MessageTexts(const Entry &entry, int number, formTable *table)
        : m_entry(entry), m_number(number), m_table(table), m_source(converted(entry.source)),
          m_plural(converted(entry.plural))
    {
        if (hasForms())
            chooseCount();
    }

    bool hasForms() const { return m_entry.form >= 0; }
    std::string source() const { return withCount(m_source); }
    std::string plural() const { return withCount(m_plural); }
    std::string target() { return m_entry.target.empty() ? "" : withCount(converted(m_entry.target)); }

    /** The argument that chooses among the forms. */
    unsigned argument() const { return m_count.argument; }

    Findings takeFindings() { return std::move(m_findings); }

private:
    std::string converted(const std::string &text)
    {
        if (m_entry.format == "c-format")
        {
            FromPrintf made = fromPrintf(text);
            for (const std::string &conversion : made.refused)
                find({Text::noEqualConversion, {quotation(conversion)}});
            return std::move(made.message);
        }
        if (!m_entry.format.empty() && text.find_first_of("%{$") != std::string::npos)
            find({Text::foreignFormat, {m_entry.format}});
        return text;
    }

    void find(Phrase text)
    {
        const Range place = m_entry.place;
        m_findings.push_back(findingAt(place, Rule::badConversion, m_number, std::move(text)));
    }

    /**
     * The number that chooses is the first of the text for many; where no text shows it, it is passed behind all. Forms
     * may leave it out, and other whole numbers too: C has no use for arguments that are left over.
     */
    void chooseCount()
    {
        int positions = 0;
        size_t arguments = 0;
        for (const std::string *const text : {&m_plural, &m_source})
        {
            const Format format = parseFormat(*text, m_table);
            if (m_count.argument == 0)
                m_count = countArgumentOf(format);
            positions = std::max(positions, format.highestPosition());
            size_t slots = 0;
            for (const Conversion &conversion : format.conversions)
            {
                slots += conversion.slots.size();
                if (conversion.slots.size() == 1)
                    m_passed.emplace(conversion.position, conversion.slots[0].kind);
            }
            arguments = std::max(arguments, slots);
        }
        if (m_count.argument == 0)
        {
            m_count = {static_cast<unsigned>(arguments) + 1, positions + 1};
            m_passed.emplace(m_count.position, m_count.kind);
        }
    }

    /** A form that does not show a number takes it all the same. */
    std::string withCount(std::string text) const
    {
        if (!hasForms())
            return text;
        const Format format = parseFormat(text, m_table);
        std::string nothing;
        for (const auto &[position, kind] : m_passed)
            for (const auto &[integer, modifier] :
                 {std::pair(Kind::integer16, "h"), {Kind::integer32, ""}, {Kind::integer64, "!"}})
                if (kind == integer && format.find(position) == nullptr)
                    nothing += fmt::format("%{}nil[{}]", modifier, position);
        return text.insert(text.find_last_not_of(" \t\r\n") + 1, nothing);
    }

    const Entry &m_entry;
    int m_number;
    formTable *m_table;
    Findings m_findings;
    std::string m_source, m_plural;
    CountArgument m_count;
    std::map<int, Kind> m_passed; // what the forms take, by position
};

/** "app 1.2" of a header, in two; that of the file where it says nothing. */
std::pair<std::string, std::string> productOf(const BilingualFile &file)
{
    std::string project = headerField(file.content.header, "Project-Id-Version");
    if (project.empty() || project == "PACKAGE VERSION")
    {
        const std::string &name = file.source.name();
        const size_t begin = name.rfind('/') + 1;
        project = name.substr(begin, name.find('.', begin) - begin);
    }
    const size_t blank = project.rfind(' ');
    const bool hasVersion = blank != std::string::npos && blank > 0 && blank + 1 < project.size();
    if (!hasVersion)
        return {project, "1.0"};
    return {project.substr(0, blank), project.substr(blank + 1)};
}

class Assignment
{
public:
    Assignment(BilingualFile file, NumbersFile &numbers, const std::string &language, formTable *table,
               const Levels &levels)
        : m_file(std::move(file)), m_numbers(numbers), m_language(language), m_table(table), m_levels(levels)
    {
    }

    Assigned run()
    {
        auto [name, version] = productOf(m_file);
        m_result.document.attributes = {
            {"source-language", m_language}, {"product-name", name}, {"product-version", version}};
        m_findings = m_file.findings;
        for (const Entry &entry : m_file.content.entries)
            if (!entry.isObsolete && entry.form <= 0)
                add(entry);
        checkDocument();
        dropTypedConversions(m_findings);
        removeRefused();
        m_result.diagnostics = report(std::move(m_findings), m_file.source, nullptr, m_levels);
        tellInPo(m_result.diagnostics);
        return std::move(m_result);
    }

private:
    void add(const Entry &entry)
    {
        ++m_result.messages;
        const std::optional<AssignedNumber> number = m_numbers.assign(entry.context, entry.source, entry.form >= 0);
        if (!number)
        {
            m_findings.push_back(findingAt(entry.place, Rule::badId, 0, {Text::numbersFull}));
            return;
        }
        if (entry.hasControls)
            m_findings.push_back(findingAt(entry.place, Rule::structure, number->id, {Text::controlCharacters}));
        MessageTexts texts(entry, number->id, m_table);
        for (Finding &finding : texts.takeFindings())
            m_findings.push_back(std::move(finding));
        Remarks remarks;
        for (const Note &note : entry.remarks.notes)
            if (attributeOf(note.attributes, "from") == developer)
                remarks.notes.push_back({note.attributes, unescaped(note.text)});
        if (!entry.context.empty())
            remarks.notes.push_back({{{"from", developer}}, sayInEnglish({Text::contextNote, {entry.context}})});
        const auto addUnit = [&](int id, const std::string &label, std::string text, Remarks notes) {
            m_places.emplace(id, Place{number->id, entry.place});
            m_result.document.units.push_back({id, label, "", "", std::move(text), std::move(notes)});
        };
        if (!texts.hasForms())
        {
            addUnit(number->id, "", texts.source(), std::move(remarks));
            return;
        }
        addUnit(number->id, "", fmt::format("%{}plural[{}]", number->row, texts.argument()), {});
        for (const Category &category : categoriesOf(m_language, false))
            if (category.variant == KT_VARIANT_ONE || category.variant == KT_VARIANT_OTHER)
                addUnit(number->row + category.variant, written({number->id, variantLabels[category.variant]}),
                        category.variant == KT_VARIANT_ONE ? texts.source() : texts.plural(), remarks);
    }

    std::set<int> refusedNumbers() const
    {
        std::set<int> refused;
        for (const Finding &finding : m_findings)
            if (const auto place = m_places.find(finding.message);
                place != m_places.end() && m_levels[finding.rule] == Severity::error)
                refused.insert(place->second.number);
        return refused;
    }

    /** The checker's findings in the file as it would be, at their places in the template. */
    void checkDocument()
    {
        const std::set<int> refused = refusedNumbers(); // whose texts are not what they ought to be
        const ParsedFile parsed(SourceText("", messageFileOf(m_result.document, m_table)), Placeholders::positioned);
        Findings found = parsed.findings();
        for (Finding &finding : checkMessages(parsed, m_table, nullptr))
            found.push_back(std::move(finding));
        for (Finding &finding : found)
        {
            const auto place = m_places.find(finding.message);
            if (place != m_places.end() && refused.count(place->second.number) > 0)
                continue;
            finding.place = place != m_places.end() ? place->second.place : m_file.body;
            finding.order = finding.place.begin;
            finding.note.reset();
            m_findings.push_back(std::move(finding));
        }
    }

    void removeRefused()
    {
        const std::set<int> refused = refusedNumbers();
        std::vector<MessageUnit> &units = m_result.document.units;
        units.erase(
            std::remove_if(units.begin(), units.end(),
                           [&](const MessageUnit &unit) { return refused.count(m_places.at(unit.id).number) > 0; }),
            units.end());
    }

    struct Place
    {
        int number; // of the message as a whole
        Range place;
    };

    BilingualFile m_file;
    NumbersFile &m_numbers;
    const std::string &m_language;
    formTable *m_table;
    const Levels &m_levels;
    std::map<int, Place> m_places; // by the numbers of the units
    Findings m_findings;
    Assigned m_result;
};

} // namespace

Assigned assignNumbers(BilingualFile file, NumbersFile &numbers, const std::string &language, formTable *table,
                       const Levels &levels)
{
    return Assignment(std::move(file), numbers, language, table, levels).run();
}

BilingualFile withNumbers(BilingualFile file, const NumbersFile &numbers, formTable *table)
{
    std::vector<Entry> known;
    for (Entry &entry : file.content.entries)
    {
        const AssignedNumber *const number = numbers.find(entry.context, entry.source);
        if (number == nullptr)
        {
            if (!entry.isObsolete && entry.state == State::finished && entry.form <= 0)
                file.findings.push_back(findingAt(entry.place, Rule::messageExtra, 0, {Text::messageExtra}));
            continue;
        }
        MessageTexts texts(entry, number->id, table);
        std::string target = texts.target();
        Findings findings = texts.takeFindings();
        std::string source = texts.source();
        std::string plural = texts.plural();
        entry.key = {number->id, ""};
        entry.findings = std::move(findings);
        entry.source = std::move(source);
        entry.plural = std::move(plural);
        entry.target = std::move(target);
        known.push_back(std::move(entry));
    }
    file.content.entries = std::move(known);
    return withMessages(std::move(file));
}

} // namespace tool::bilingual
