#include "bilingual/import.h"

#include "bilingual/gettext/po_messages.h"
#include "bilingual/message_parts.h"
#include "bilingual/selectors.h"
#include "check/reading/parsed_file_builder.h"
#include "library/selector.h"
#include "text.h"

#include <algorithm>
#include <climits>
#include <fmt/core.h>
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
    Import(BilingualFile file, const RemarkedFile &source, const Reference &reference, const Levels &levels,
           const ImportOptions &options)
        : m_file(std::move(file)), m_source(source), m_reference(reference), m_levels(levels), m_options(options),
          m_rows(source.parsed)
    {
    }

    Imported run();

private:
    /** What stands for one message of a row, in the translation. */
    struct Group
    {
        explicit Group(Selector of) : selector(std::move(of)) {}

        Selector selector;
        std::vector<Entry *> entries;
        std::vector<int> places; // of the entries, as long as those
        std::vector<int> nested; // the places of its row that have selectors
        bool isChosen = false;   // whether its forms are finished is known, or being found out
        bool isTaken = false;    // they are
        std::optional<bool> isRefused;
        std::optional<bool> isWritten;
    };

    void chooseEntries();
    Group &groupOf(int number, const Selector &selector)
    {
        return m_groups.try_emplace(number, selector).first->second;
    }
    void addToGroup(Entry &entry);
    void numberRows();
    void addNested();
    bool chooseForms(int number);
    bool isRefused(int number);
    bool isWritten(int number);
    std::vector<int> requiredPlaces(const Selector &selector) const;
    void countMessages();
    void count(int number, const std::vector<const Entry *> &entries, bool isTaken, bool isRefused);
    void checkEntries();
    Reference makeReference(std::optional<ParsedFile> &parsed) const;
    void makeDocument();
    void addUnit(int id, const Key &key, const std::string &name, const Entry &entry);
    std::string chooseLanguage();
    Selector newSelector(int number, int row) const;
    void find(Rule rule, const Entry &entry, Phrase text);
    bool isTaken(const Entry &entry) const
    {
        return entry.state == State::finished || (entry.state == State::fuzzy && m_options.takesFuzzy);
    }
    std::string originalText(const Message &message) const { return unescaped(m_source.parsed.rawText(message)); }

    BilingualFile m_file;
    const RemarkedFile &m_source;
    const Reference &m_reference;
    const Levels &m_levels;
    const ImportOptions &m_options;
    Rows m_rows;
    std::string m_language;                 // of the message file
    std::string m_rules;                    // the one whose forms are wanted, which may have a name of three letters
    std::map<Key, const Entry *> m_entries; // the first of each key
    std::map<int, Entry *> m_taken;         // by the number of the message that it becomes
    std::map<int, const Message *> m_originals; // of those
    std::map<int, Group> m_groups;              // by the number of the selector
    std::map<int, std::vector<int>> m_outer;    // the selectors of a selector, by its number
    std::set<int> m_refused;
    std::map<int, std::vector<std::string>> m_errors; // by message
    Findings m_findings;
    Imported m_result;
};

void Import::find(Rule rule, const Entry &entry, Phrase text)
{
    m_findings.push_back(findingAt(entry.place, rule, entry.key.number, std::move(text)));
}

/** Which translations are to become messages. */
void Import::chooseEntries()
{
    const Findings repetitions = repetitionsIn(m_file.content);
    m_findings.insert(m_findings.end(), repetitions.begin(), repetitions.end());
    for (Entry &entry : m_file.content.entries)
    {
        const int id = entry.key.number;
        if (entry.isObsolete || !m_entries.emplace(entry.key, &entry).second)
            continue;
        const Message *const original = m_rows.message(id);
        const bool isRow = m_rows.find(id) != nullptr;
        if (original == nullptr || (entry.key.label.empty() && (isRow || m_rows.keyOf(id) != nullptr)))
        {
            if (isTaken(entry))
                find(Rule::messageExtra, entry, {Text::messageExtra});
        }
        else if (!entry.key.label.empty())
            addToGroup(entry);
        else if (isTaken(entry))
        {
            m_taken.emplace(id, &entry);
            m_originals.emplace(id, original);
        }
    }
    addNested();
    numberRows();
    for (const auto &[number, group] : m_groups)
        chooseForms(number);
}

void Import::addToGroup(Entry &entry)
{
    const int number = entry.key.number;
    const Selector *const known = m_rows.find(number);
    const Selector selector = known != nullptr ? *known : Selector{Selector::Kind::plural, 0, 0, ""};
    const std::optional<int> place = placeOf(selector, entry.key.label);
    if (!place)
    {
        find(Rule::badId, entry, {Text::badNumber, {quotation(written(entry.key))}});
        return;
    }
    if (known != nullptr && m_rows.find(known->messageAt(*place)) != nullptr)
    {
        find(Rule::messageExtra, entry, {Text::messageExtra}); // a selector stands there
        return;
    }
    Group &group = groupOf(number, selector);
    group.entries.push_back(&entry);
    group.places.push_back(*place);
}

/** Selectors in the rows of others. They have entries for their own forms only. */
void Import::addNested()
{
    for (const auto &[number, selector] : m_rows.selectors())
        for (int place = 0; place < selector.places(); ++place)
            if (m_rows.find(selector.messageAt(place)) != nullptr)
            {
                groupOf(number, selector).nested.push_back(place);
                m_outer[selector.messageAt(place)].push_back(number);
            }
}

/** The selector of a message that has forms in this language only. */
Selector Import::newSelector(int number, int row) const
{
    const Message &original = *m_rows.message(number);
    const Format format = parseFormat(originalText(original), m_options.table);
    const unsigned argument = std::max(countArgumentOf(format).argument, 1U);
    return {Selector::Kind::plural, row, 0, fmt::format("%{}plural[{}]", row, argument)};
}

/** Rows that the reference lacks stand above its highest number, the same ones every time. */
void Import::numberRows()
{
    const std::vector<Message> &messages = m_source.parsed.messages();
    int64_t next = messages.empty() ? 1 : int64_t{messages.back().id} + 1;
    for (const auto &[number, selector] : m_rows.selectors())
        next = std::max(next, int64_t{selector.row} + selector.places());
    for (auto &[number, group] : m_groups)
        if (group.selector.row == 0)
        {
            if (next > INT_MAX - mostVariants)
            {
                find(Rule::badId, *group.entries.front(), {Text::numbersFull});
                group.entries.clear();
                group.places.clear();
                continue;
            }
            group.selector = newSelector(number, static_cast<int>(next));
            next += mostVariants;
        }
}

/** Without which a row is of no use: in the language of the translation, and in what its message file is to name. */
std::vector<int> Import::requiredPlaces(const Selector &selector) const
{
    if (selector.kind == Selector::Kind::select)
        return {0}; // any other value
    std::vector<int> places = neededPlaces(selector, m_rules);
    for (const int place : neededPlaces(selector, m_language))
        if (std::find(places.begin(), places.end(), place) == places.end())
            places.push_back(place);
    return places;
}

/** Takes the forms of a row, all of them or none: where one is missing that numbers need, none is of use. */
bool Import::chooseForms(int number)
{
    const auto found = m_groups.find(number);
    if (found == m_groups.end())
        return false;
    Group &group = found->second;
    if (group.isChosen)
        return group.isTaken; // not yet in a circle, which is of no use either
    group.isChosen = true;
    std::vector<int> missing = requiredPlaces(group.selector);
    const auto have = [&missing](int place) {
        missing.erase(std::remove(missing.begin(), missing.end(), place), missing.end());
    };
    for (size_t i = 0; i < group.entries.size(); ++i)
        if (isTaken(*group.entries[i]))
            have(group.places[i]);
    for (const int place : group.nested)
    {
        if (!chooseForms(group.selector.row + place))
            return false;
        have(place);
    }
    if (!group.nested.empty()) // a form that only a selector could have is for nobody to translate
        missing.erase(std::remove_if(missing.begin(), missing.end(),
                                     [&](int place) { return m_rows.sourceFor(number, place) == nullptr; }),
                      missing.end());
    group.isTaken = missing.empty();
    for (size_t i = 0; group.isTaken && i < group.entries.size(); ++i)
        if (isTaken(*group.entries[i]))
        {
            const int id = group.selector.row + group.places[i];
            m_taken.emplace(id, group.entries[i]);
            m_originals.emplace(id, m_rows.sourceFor(number, group.places[i]));
        }
    return group.isTaken;
}

/** Whether the checker refuses a selector, or a message that it leads to. Rows that are taken lead in no circle. */
bool Import::isRefused(int number)
{
    Group &group = m_groups.at(number);
    if (!group.isRefused)
    {
        const int row = group.selector.row;
        const auto isRefusedAt = [&](int place) { return m_refused.count(row + place) > 0; };
        const auto isNestedRefused = [&](int place) { return isRefused(row + place); };
        group.isRefused = m_refused.count(number) > 0 ||
                          std::any_of(group.places.begin(), group.places.end(), isRefusedAt) ||
                          (group.isTaken && std::any_of(group.nested.begin(), group.nested.end(), isNestedRefused));
    }
    return *group.isRefused;
}

/** Whether programs get a row: it is right, and so is one that leads to it. */
bool Import::isWritten(int number)
{
    Group &group = m_groups.at(number);
    if (!group.isWritten)
    {
        const auto outer = m_outer.find(number);
        group.isWritten = group.isTaken && !isRefused(number) &&
                          (outer == m_outer.end() || std::any_of(outer->second.begin(), outer->second.end(),
                                                                 [this](int other) { return isWritten(other); }));
    }
    return *group.isWritten;
}

/** "de.po:12: argument 2 is missing". */
std::string shortly(const Diagnostic &diagnostic)
{
    const Place &place = diagnostic.place;
    const std::string column = place.isLine ? "" : std::to_string(place.begin.column) + ":";
    return fmt::format("{}:{}:{} {}", place.file, place.begin.line, column, say(diagnostic.text));
}

/** Counts one message, which has several entries where it has forms. */
void Import::count(int number, const std::vector<const Entry *> &entries, bool isTaken, bool isRefused)
{
    using Kind = Unfinished::Kind;
    Counts &counts = m_result.counts;
    ++counts.messages;
    if (isTaken && !isRefused)
    {
        ++counts.finished;
        return;
    }
    const auto isTranslated = [](const Entry *entry) { return entry->state != State::untranslated; };
    const bool hasText = std::any_of(entries.begin(), entries.end(), isTranslated);
    const Kind kind = isRefused ? Kind::refused : hasText ? Kind::fuzzy : Kind::missing;
    ++(isRefused ? counts.refused : hasText ? counts.fuzzy : counts.missing);
    const Message &original = *m_rows.message(number);
    const Selector *const selector = m_rows.find(number);
    if (entries.empty())
    {
        const Message *const source = selector == nullptr ? &original : m_rows.sourceFor(number, KT_VARIANT_OTHER);
        m_result.unfinished.push_back(
            {kind, std::to_string(number), original.name, source != nullptr ? originalText(*source) : "", "", "", {}});
    }
    for (const Entry *const entry : entries)
    {
        m_result.unfinished.push_back({kind, written(entry->key), original.name, entry->source, entry->target, "", {}});
        Unfinished &row = m_result.unfinished.back();
        int id = number;
        if (const auto group = m_groups.find(number); group != m_groups.end() && !entry->key.label.empty())
        {
            const int place = placeOf(group->second.selector, entry->key.label).value_or(0);
            id = group->second.selector.row + place;
            row.examples = exampleFor(group->second.selector, place, m_rules);
        }
        row.findings = m_errors[id];
    }
}

void Import::countMessages()
{
    for (const Message &message : m_source.parsed.messages())
    {
        const int id = message.id;
        const auto group = m_groups.find(id);
        if (group != m_groups.end())
        {
            const Group &row = group->second;
            count(id, {row.entries.begin(), row.entries.end()}, row.isTaken, isRefused(id));
            continue;
        }
        const bool isRow = m_rows.find(id) != nullptr;
        if (!isRow && m_rows.keyOf(id) != nullptr)
            continue;
        const auto found = m_entries.find({id, ""});
        if (found == m_entries.end() && !isRow && m_source.parsed.rawText(message).empty())
            continue;
        std::vector<const Entry *> entries;
        if (found != m_entries.end() && !isRow)
            entries.push_back(found->second);
        count(id, entries, m_taken.count(id) > 0, m_refused.count(id) > 0);
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
        const Phrase why =
            language.empty() ? Phrase{Text::noTargetLanguage} : Phrase{Text::badTargetLanguage, {quotation(language)}};
        m_findings.push_back(findingAt(place, Rule::language, 0, why));
    }
    return language;
}

/** A reference of the originals of what is taken, to compare one with one. */
Reference Import::makeReference(std::optional<ParsedFile> &parsed) const
{
    const ParsedFile &whole = m_source.parsed;
    ParsedFileBuilder builder(whole.source(), whole.body());
    builder.setLanguage(whole.language(), whole.languagePlace());
    for (const auto &[id, original] : m_originals)
        if (original != nullptr)
            builder.addCopy(whole, *original, id);
    parsed.emplace(builder.take());
    return {*parsed, m_options.table};
}

void Import::checkEntries()
{
    ParsedFileBuilder builder(m_file.source, m_file.body);
    builder.setLanguage(m_language, m_file.languagePlace);
    for (const auto &[id, entry] : m_taken)
    {
        Message message;
        message.id = id;
        message.isComplete = entry->written.isComplete;
        message.unit = entry->place;
        message.source = entry->written.tag;
        message.madeFrom = digestOf(entry->source);
        const auto isPlaceholder = [](const Piece &piece) { return piece.kind == Piece::Kind::placeholder; };
        message.hasPlaceholder = std::any_of(entry->written.pieces.begin(), entry->written.pieces.end(), isPlaceholder);
        builder.add(std::move(message), entry->written.raw, entry->written.pieces);
        m_findings.insert(m_findings.end(), entry->findings.begin(), entry->findings.end());
    }
    ParsedFile parsed = builder.take();
    m_findings.insert(m_findings.end(), m_file.findings.begin(), m_file.findings.end());
    std::optional<ParsedFile> withForms;
    std::optional<Reference> compared;
    if (!m_groups.empty() || !m_rows.isEmpty())
        compared.emplace(makeReference(withForms));
    Findings found = checkMessages(parsed, m_options.table, compared ? &*compared : &m_reference);
    m_findings.insert(m_findings.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
    if (!m_file.hasColumns)
        dropTypedConversions(m_findings);
    for (const Finding &finding : m_findings)
        if (m_levels[finding.rule] == Severity::error)
            m_refused.insert(finding.message);
    m_result.diagnostics = report(std::move(m_findings), parsed.source(), &m_source.parsed.source(), m_levels);
    if (!m_file.hasColumns)
        tellInPo(m_result.diagnostics);
    for (const Diagnostic &diagnostic : m_result.diagnostics)
        if (diagnostic.severity == Severity::error)
            m_errors[diagnostic.message].push_back(shortly(diagnostic));
    m_result.document.attributes = m_source.remarks.attributes;
    for (auto &[attribute, value] : m_result.document.attributes)
        if (attribute == "source-language")
            value = m_language;
}

void Import::addUnit(int id, const Key &key, const std::string &name, const Entry &entry)
{
    MessageUnit unit;
    unit.id = id;
    unit.label = key.label.empty() ? "" : written(key);
    unit.name = name;
    unit.text = entry.target;
    unit.source = digestOf(entry.source);
    const Message *const original = m_originals[id];
    const Remarks hints = hintsFor(m_source, key.number, original != nullptr ? original->id : id);
    unit.remarks.notes = notesOfTranslator(entry.remarks.notes, hints.notes);
    for (const ContextGroup &group : entry.remarks.contexts)
    {
        const auto isSame = [&group](const ContextGroup &other) { return saysTheSame(group, other); };
        if (std::none_of(hints.contexts.begin(), hints.contexts.end(), isSame))
            unit.remarks.contexts.push_back(group);
    }
    m_result.document.units.push_back(std::move(unit));
}

void Import::makeDocument()
{
    for (const Message &message : m_source.parsed.messages())
    {
        const int id = message.id;
        if (m_rows.find(id) != nullptr || m_rows.keyOf(id) != nullptr || m_groups.count(id) > 0)
            continue;
        const auto found = m_taken.find(id);
        if (found != m_taken.end() && m_refused.count(id) == 0)
            addUnit(id, {id, ""}, message.name, *found->second);
        else if (found == m_taken.end() && m_source.parsed.rawText(message).empty())
            m_result.document.units.push_back({id, "", message.name, "", "", {}});
    }
    std::set<int> added; // two rows may have a message in common
    for (const auto &[number, group] : m_groups)
    {
        if (!isWritten(number))
            continue;
        const Key *const inRow = m_rows.keyOf(number);
        m_result.document.units.push_back({number,
                                           inRow != nullptr ? written(*inRow) : "",
                                           m_rows.message(number)->name,
                                           "",
                                           group.selector.text,
                                           {}});
        for (size_t i = 0; i < group.entries.size(); ++i)
        {
            const int id = group.selector.row + group.places[i];
            const Message *const original = m_rows.message(id);
            if (m_taken.count(id) > 0 && added.insert(id).second)
                addUnit(id, group.entries[i]->key, original != nullptr ? original->name : "", *group.entries[i]);
        }
    }
}

Imported Import::run()
{
    m_result.isWhole = m_file.isWhole;
    m_result.language = m_file.content.targetLanguage;
    m_language = chooseLanguage();
    m_rules = m_result.language.empty() ? m_language : m_result.language;
    chooseEntries();
    checkEntries();
    countMessages();
    makeDocument();
    return std::move(m_result);
}

} // namespace

std::string sentenceOf(const Counts &counts)
{
    std::string sentence = say(Text::importedCounts, {counts.finished, counts.messages, counts.fuzzy, counts.missing});
    if (counts.refused > 0)
        sentence += say(Text::statsRefused, {counts.refused});
    return sentence;
}

Imported import(BilingualFile file, const RemarkedFile &source, const Reference &reference, const Levels &levels,
                const ImportOptions &options)
{
    return Import(std::move(file), source, reference, levels, options).run();
}

} // namespace tool::bilingual
