#include "bilingual/message_file_entries.h"

#include "bilingual/message_parts.h"
#include "bilingual/selectors.h"
#include "io/input.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace tool::bilingual
{

using namespace check;

SourceText readSource(const std::string &path)
{
    return {path == "-" ? "<stdin>" : path, readMessageFile(path)};
}

RemarkedFile::RemarkedFile(SourceText source)
    : parsed(std::move(source), Placeholders::positioned), remarks(remarksIn(parsed.source().bytes()))
{
}

RemarkedFile RemarkedFile::read(const std::string &path)
{
    return RemarkedFile(readSource(path));
}

namespace
{

const Remarks *remarksOf(const RemarkedFile &file, int id)
{
    const auto found = file.remarks.units.find(id);
    return found != file.remarks.units.end() ? &found->second : nullptr;
}

} // namespace

Remarks hintsFor(const RemarkedFile &reference, int number, int source)
{
    const Remarks *const own = remarksOf(reference, source);
    Remarks hints = own != nullptr ? *own : Remarks();
    if (const Remarks *const ofAll = number != source ? remarksOf(reference, number) : nullptr)
    {
        hints.notes.insert(hints.notes.begin(), ofAll->notes.begin(), ofAll->notes.end());
        hints.contexts.insert(hints.contexts.begin(), ofAll->contexts.begin(), ofAll->contexts.end());
    }
    return hints;
}

namespace
{

class EntryMaker
{
public:
    EntryMaker(const RemarkedFile &reference, std::string language)
        : m_reference(reference), m_language(std::move(language)), m_rows(reference.parsed)
    {
    }

    Bilingual run()
    {
        const std::string &name = m_reference.parsed.source().name();
        m_catalog.original = name.substr(name.rfind('/') + 1);
        m_catalog.sourceLanguage = m_reference.parsed.language();
        m_catalog.targetLanguage = m_language;
        m_catalog.attributes = m_reference.remarks.attributes;
        for (const Message &message : m_reference.parsed.messages())
            if (const Selector *const selector = m_rows.find(message.id))
                addRow(message, *selector);
            else if (m_rows.keyOf(message.id) == nullptr)
                add({message.id, ""}, message, message);
        return std::move(m_catalog);
    }

private:
    /** An entry for each form that the language needs, and for the exact ones that the reference has. */
    void addRow(const Message &message, const Selector &selector)
    {
        const std::string language = m_language.empty() ? m_reference.parsed.language() : m_language;
        std::vector<int> places = neededPlaces(selector, language);
        const int first = selector.kind == Selector::Kind::select ? 0 : KT_VARIANT_EXACTLY_0;
        for (int place = first; place < selector.places(); ++place)
            if (m_rows.variant(message.id, place) != nullptr)
                places.push_back(place);
        for (const int place : places)
        {
            const Message *const source = m_rows.sourceFor(message.id, place);
            if (source == nullptr) // the row has selectors only, which have entries of their own
                continue;
            add({message.id, labelAt(selector, place)}, *source, message);
            if (const std::string example = exampleFor(selector, place, language); !example.empty())
                m_catalog.entries.back().hints.push_back({{{"from", ourselves}}, example});
        }
        m_catalog.selectors.emplace(message.id, selector);
    }

    void add(Key key, const Message &source, const Message &named)
    {
        Entry entry;
        entry.key = std::move(key);
        entry.name = named.name;
        entry.source = unescaped(m_reference.parsed.rawText(source));
        Remarks hints = hintsFor(m_reference, named.id, source.id);
        entry.hints = std::move(hints.notes);
        entry.remarks.contexts = std::move(hints.contexts);
        m_catalog.entries.push_back(std::move(entry));
    }

    const RemarkedFile &m_reference;
    std::string m_language;
    Rows m_rows;
    Bilingual m_catalog;
};

} // namespace

Bilingual bilingualOf(const RemarkedFile &reference, const std::string &language)
{
    return EntryMaker(reference, language).run();
}

std::vector<Note> notesOfTranslator(const std::vector<Note> &notes, const std::vector<Note> &hints)
{
    std::vector<Note> kept;
    for (const Note &note : notes)
    {
        const std::string from = attributeOf(note.attributes, "from");
        const bool isHint =
            from == developer || from == ourselves ||
            std::any_of(hints.begin(), hints.end(), [&note](const Note &hint) { return hint.text == note.text; });
        if (!isHint)
            kept.push_back(note);
    }
    return kept;
}

namespace
{

/** Puts a translation beside its reference. */
class Merger
{
public:
    Merger(Bilingual &catalog, const RemarkedFile &translation)
        : m_catalog(catalog), m_translation(translation), m_rows(translation.parsed)
    {
        for (Entry &entry : m_catalog.entries)
            m_entries[entry.key.number].push_back(std::move(entry));
        m_catalog.entries.clear();
    }

    Losses run()
    {
        for (const Message &message : m_translation.parsed.messages())
            if (m_rows.find(message.id) == nullptr)
                add(message);
        for (const auto &[number, selector] : m_rows.selectors())
            addNotesOfRow(number);
        for (auto &[number, entries] : m_entries)
        {
            std::stable_sort(entries.begin(), entries.end(),
                             [this](const Entry &a, const Entry &b) { return placeIn(a.key) < placeIn(b.key); });
            std::move(entries.begin(), entries.end(), std::back_inserter(m_catalog.entries));
        }
        std::move(m_unknown.begin(), m_unknown.end(), std::back_inserter(m_catalog.entries));
        return m_losses;
    }

private:
    int placeIn(const Key &key) const
    {
        const auto selector = m_catalog.selectors.find(key.number);
        return selector == m_catalog.selectors.end() ? 0 : placeOf(selector->second, key.label).value_or(0);
    }

    void add(const Message &message)
    {
        const Key *const inRow = m_rows.keyOf(message.id);
        const Key key = inRow != nullptr ? *inRow : Key{message.id, ""};
        const auto found = m_entries.find(key.number);
        if (found == m_entries.end())
        {
            addUnknown(key, message);
            return;
        }
        std::vector<Entry> &entries = found->second;
        const bool isRow = !entries.front().key.label.empty();
        if (key.label.empty()) // where the reference has a row, one text is for all numbers
            for (Entry &entry : entries)
                translate(entry, message);
        else
        {
            const auto isIt = [&key](const Entry &entry) { return entry.key == key; };
            auto entry = std::find_if(entries.begin(), entries.end(), isIt);
            if (entry == entries.end())
                entry = addForm(entries, key, isRow);
            translate(*entry, message);
        }
    }

    /** A form that the reference does not have. */
    std::vector<Entry>::iterator addForm(std::vector<Entry> &entries, const Key &key, bool isRow)
    {
        const auto other =
            std::find_if(entries.begin(), entries.end(), [](const Entry &entry) { return entry.key.label == "other"; });
        Entry form;
        form.key = key;
        const Entry &like = other != entries.end() ? *other : entries.back();
        form.name = like.name;
        form.source = like.source;
        m_catalog.selectors.emplace(key.number, *m_rows.find(key.number));
        if (!isRow && entries.front().key.label.empty())
            entries.clear();
        entries.push_back(std::move(form));
        return entries.end() - 1;
    }

    void translate(Entry &entry, const Message &message)
    {
        entry.target = unescaped(m_translation.parsed.rawText(message));
        entry.hasTarget = true;
        entry.state = State::finished;
        if (const Remarks *const remarks = remarksOf(m_translation, message.id))
        {
            entry.remarks.notes = notesOfTranslator(remarks->notes, entry.hints);
            if (!remarks->contexts.empty())
                entry.remarks.contexts = remarks->contexts;
        }
        const auto made = m_translation.remarks.sources.find(message.id);
        if (made != m_translation.remarks.sources.end() && made->second != digestOf(entry.source))
        {
            entry.state = State::fuzzy;
            ++m_losses.outdated;
        }
    }

    /** A selector has no entry of its own: a note on it goes to the first of its forms. */
    void addNotesOfRow(int number)
    {
        const Remarks *const remarks = remarksOf(m_translation, number);
        const auto found = m_entries.find(number);
        if (remarks == nullptr || found == m_entries.end() || found->second.empty())
            return;
        Entry &first = found->second.front();
        const std::vector<Note> notes = notesOfTranslator(remarks->notes, first.hints);
        first.remarks.notes.insert(first.remarks.notes.begin(), notes.begin(), notes.end());
    }

    void addUnknown(const Key &key, const Message &message)
    {
        Entry entry;
        entry.key = key;
        entry.name = message.name;
        entry.isObsolete = true;
        entry.target = unescaped(m_translation.parsed.rawText(message));
        entry.hasTarget = true;
        entry.state = State::finished;
        m_unknown.push_back(std::move(entry));
        ++m_losses.unknown;
    }

    Bilingual &m_catalog;
    const RemarkedFile &m_translation;
    Rows m_rows;
    std::map<int, std::vector<Entry>> m_entries; // by number
    std::vector<Entry> m_unknown;
    Losses m_losses;
};

} // namespace

Losses addTranslation(Bilingual &catalog, const RemarkedFile &translation)
{
    catalog.targetLanguage = translation.parsed.language();
    return Merger(catalog, translation).run();
}

void dropEmpty(Bilingual &catalog)
{
    const auto isEmpty = [](const Entry &entry) { return entry.source.empty() && entry.target.empty(); };
    catalog.entries.erase(std::remove_if(catalog.entries.begin(), catalog.entries.end(), isEmpty),
                          catalog.entries.end());
}

} // namespace tool::bilingual
