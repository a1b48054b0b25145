#include "bilingual/import.h"

#include "bilingual/message_parts.h"
#include "check/catalog_builder.h"
#include "text.h"

#include <algorithm>
#include <map>
#include <set>

namespace tool::bilingual
{
namespace
{

using namespace check;

/** Other forms do not have all attributes. */
bool saysTheSame(const ContextGroup &a, const ContextGroup &b)
{
    return std::equal(a.contexts.begin(), a.contexts.end(), b.contexts.begin(), b.contexts.end(),
                      [](const bilingual::Note &x, const bilingual::Note &y) { return x.text == y.text; });
}

class Import
{
public:
    Import(BilingualFile file, const SourceFile &source, const Reference &reference, const Levels &levels,
           const ImportOptions &options)
        : m_file(std::move(file)), m_source(source), m_reference(reference), m_levels(levels), m_options(options)
    {
    }

    Imported run();

private:
    void chooseEntries();
    void countMessages();
    void checkEntries();
    void makeDocument();
    std::string chooseLanguage();
    void find(Rule rule, const Entry &entry, Phrase text, std::optional<check::Note> note = std::nullopt);
    bool isTaken(const Entry &entry) const
    {
        return entry.state == State::finished || (entry.state == State::fuzzy && m_options.takesFuzzy);
    }

    BilingualFile m_file;
    const SourceFile &m_source;
    const Reference &m_reference;
    const Levels &m_levels;
    const ImportOptions &m_options;
    std::map<int, const Message *> m_originals;
    std::map<int, Entry *> m_taken;
    std::map<int, const Entry *> m_entries; // the first with each number
    std::set<int> m_refused;
    Findings m_findings;
    Imported m_result;
};

void Import::find(Rule rule, const Entry &entry, Phrase text, std::optional<check::Note> note)
{
    m_findings.push_back({rule, entry.key.number, entry.place.begin, entry.place, std::move(text), std::move(note)});
}

/** Which translations are to become messages. */
void Import::chooseEntries()
{
    for (const Message &message : m_source.catalog.messages())
        m_originals.emplace(message.id, &message);
    for (Entry &entry : m_file.content.entries)
    {
        const int id = entry.key.number;
        if (entry.isObsolete || !entry.key.label.empty())
            continue;
        const auto [first, isFirst] = m_entries.emplace(id, &entry);
        if (!isFirst)
        {
            find(Rule::duplicateId, entry, {Text::numberRepeated, {static_cast<unsigned>(id)}},
                 check::Note{false, first->second->place, {Text::numberUsedFirst}});
            continue;
        }
        const auto original = m_originals.find(id);
        if (original == m_originals.end())
        {
            if (isTaken(entry))
                find(Rule::messageExtra, entry, {Text::messageExtra});
            continue;
        }
        if (isTaken(entry))
            m_taken.emplace(id, &entry);
    }
}

void Import::countMessages()
{
    Counts &counts = m_result.counts;
    for (const auto &[id, original] : m_originals)
    {
        const auto found = m_entries.find(id);
        if (m_source.catalog.rawText(*original).empty() && found == m_entries.end())
            continue;
        ++counts.messages;
        if (m_taken.count(id) > 0 && m_refused.count(id) == 0)
            ++counts.finished;
        else if (found != m_entries.end() && found->second->state != State::untranslated)
            ++counts.fuzzy;
        else
            ++counts.missing;
    }
}

/** The language of the message file, which has two or five bytes. */
std::string Import::chooseLanguage()
{
    std::string language = !m_options.language.empty() ? m_options.language : m_file.content.targetLanguage;
    std::replace(language.begin(), language.end(), '_', '-');
    if (m_file.isWhole && language.size() != 2 && language.size() != 5)
    {
        const Range place = m_file.languagePlace.end > 0 ? m_file.languagePlace : m_file.body;
        m_findings.push_back(
            {Rule::language, 0, place.begin, place,
             language.empty() ? Phrase{Text::noTargetLanguage} : Phrase{Text::badTargetLanguage, {quotation(language)}},
             std::nullopt});
    }
    return language;
}

void Import::checkEntries()
{
    const std::string language = chooseLanguage();
    const std::string &name = m_file.source.name();
    CatalogBuilder builder(SourceText(name, std::string(m_file.source.bytes())), m_file.body);
    if (m_file.source.encoding() == SourceText::Encoding::latin1)
        builder.source().declareEncoding("ISO-8859-1");
    builder.setLanguage(language, m_file.languagePlace);
    for (const auto &[id, entry] : m_taken)
    {
        Message message;
        message.id = id;
        message.isComplete = entry->written.isComplete;
        message.unit = entry->place;
        message.source = entry->written.tag;
        const auto isPlaceholder = [](const Piece &piece) { return piece.kind == Piece::Kind::placeholder; };
        message.hasPlaceholder = std::any_of(entry->written.pieces.begin(), entry->written.pieces.end(), isPlaceholder);
        builder.add(std::move(message), entry->written.raw, entry->written.pieces);
        m_findings.insert(m_findings.end(), entry->findings.begin(), entry->findings.end());
    }
    Catalog catalog = builder.take();
    m_findings.insert(m_findings.end(), m_file.findings.begin(), m_file.findings.end());
    Findings found = checkMessages(catalog, m_options.table, &m_reference);
    m_findings.insert(m_findings.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
    for (const Finding &finding : m_findings)
        if (m_levels[finding.rule] == Severity::error)
            m_refused.insert(finding.message);
    m_result.diagnostics = report(std::move(m_findings), catalog.source(), &m_source.catalog.source(), m_levels);
    m_result.document.attributes = m_source.remarks.attributes;
    for (auto &[attribute, value] : m_result.document.attributes)
        if (attribute == "source-language")
            value = language;
}

void Import::makeDocument()
{
    for (const auto &[id, original] : m_originals)
    {
        MessageUnit unit;
        unit.id = id;
        unit.name = original->name;
        const auto found = m_taken.find(id);
        const std::string text = unescaped(m_source.catalog.rawText(*original));
        if (found == m_taken.end())
        {
            if (!text.empty())
                continue;
        }
        else if (m_refused.count(id) > 0)
            continue;
        else
        {
            const Entry &entry = *found->second;
            unit.text = entry.target;
            unit.source = digestOf(entry.source);
            const auto remarks = m_source.remarks.units.find(id);
            const bool hasRemarks = remarks != m_source.remarks.units.end();
            unit.remarks.notes = notesOfTranslator(entry.remarks.notes,
                                                   hasRemarks ? remarks->second.notes : std::vector<bilingual::Note>());
            for (const ContextGroup &group : entry.remarks.contexts)
            {
                const auto isSame = [&group](const ContextGroup &other) { return saysTheSame(group, other); };
                const bool isOriginals =
                    hasRemarks && std::any_of(remarks->second.contexts.begin(), remarks->second.contexts.end(), isSame);
                if (!isOriginals)
                    unit.remarks.contexts.push_back(group);
            }
        }
        m_result.document.units.push_back(std::move(unit));
    }
}

Imported Import::run()
{
    m_result.isWhole = m_file.isWhole;
    chooseEntries();
    checkEntries();
    countMessages();
    makeDocument();
    return std::move(m_result);
}

} // namespace

Imported import(BilingualFile file, const SourceFile &source, const Reference &reference, const Levels &levels,
                const ImportOptions &options)
{
    return Import(std::move(file), source, reference, levels, options).run();
}

} // namespace tool::bilingual
