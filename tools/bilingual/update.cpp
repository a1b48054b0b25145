#include "bilingual/update.h"

#include "bilingual/message_file_entries.h"
#include "check/texts/formats.h"
#include "text.h"

#include <algorithm>
#include <map>
#include <set>

namespace tool::bilingual
{
namespace
{

bool isOurs(const Note &note)
{
    return attributeOf(note.attributes, "from") == ourselves;
}

/** Gives an entry of the reference the translation and the remarks of the old entry. */
void takeOver(Entry &entry, const Entry &old, Changes &changes)
{
    entry.target = old.target;
    entry.hasTarget = old.hasTarget;
    entry.state = old.state;
    entry.remarks.notes = notesOfTranslator(old.remarks.notes, entry.hints);
    const bool isTranslated = old.state != State::untranslated;
    if (old.source == entry.source || !isTranslated)
    {
        entry.previousSource = old.previousSource;
        ++changes.unchanged;
        return;
    }
    entry.state = State::fuzzy;
    const bool wasFuzzy = old.state == State::fuzzy && old.previousSource;
    entry.previousSource = wasFuzzy ? old.previousSource : old.source;
    ++changes.changed;
}

/** Where a message has become a row, the one text that it had; where a row has become a message, its "other". */
const Entry *formOf(const Key &key, const std::map<Key, const Entry *> &known)
{
    const auto found = known.find({key.number, key.label.empty() ? "other" : ""});
    return found != known.end() ? found->second : nullptr;
}

void addNotes(Entry &entry, formTable *table)
{
    const check::Format here = check::parseFormat(entry.source, table);
    const check::Format before = check::parseFormat(*entry.previousSource, table);
    const auto note = [&entry](Text text, const check::Conversion &conversion) {
        const auto position = static_cast<unsigned>(conversion.position);
        entry.hints.push_back({{{"from", ourselves}}, sayInEnglish({text, {position, conversion.written}})});
    };
    for (const size_t index : before.byPosition)
    {
        const check::Conversion &old = before.conversions[index];
        const check::Conversion *const now = here.find(old.position);
        if (now == nullptr)
            note(Text::argumentIsGone, old);
        else if (!(now->slots == old.slots))
            note(Text::argumentIsOther, *now);
    }
    for (const size_t index : here.byPosition)
        if (before.find(here.conversions[index].position) == nullptr)
            note(Text::argumentIsNew, here.conversions[index]);
}

} // namespace

Changes update(Bilingual &catalog, const Bilingual &old)
{
    Changes changes;
    catalog.targetLanguage = old.targetLanguage;
    catalog.header = old.header;
    std::map<Key, const Entry *> known;
    for (const bool isObsolete : {false, true}) // a message that is back has its old translation
        for (const Entry &entry : old.entries)
            if (entry.isObsolete == isObsolete)
                known.emplace(entry.key, &entry);
    std::map<int, std::vector<const Entry *>> rows;
    for (const Entry &entry : old.entries)
        if (!entry.key.label.empty() && !entry.isObsolete)
            rows[entry.key.number].push_back(&entry);
    std::set<Key> taken;
    std::vector<Entry> entries;
    const auto take = [&](Entry entry, const Entry &from) {
        takeOver(entry, from, changes);
        taken.insert(from.key);
        entries.push_back(std::move(entry));
    };
    for (Entry &entry : catalog.entries)
    {
        const auto found = known.find(entry.key);
        const Entry *const likely = found != known.end() ? found->second : formOf(entry.key, known);
        const auto row = entry.key.label.empty() ? rows.find(entry.key.number) : rows.end();
        if (found == known.end() && row != rows.end()) // the translation alone has one
        {
            catalog.selectors.emplace(entry.key.number, Selector{Selector::Kind::plural, 0, 0, ""});
            for (const Entry *const form : row->second)
            {
                Entry copy = entry;
                copy.key = form->key;
                take(std::move(copy), *form);
            }
        }
        else if (likely != nullptr)
            take(std::move(entry), *likely);
        else
        {
            changes.fresh += entry.source.empty() ? 0 : 1; // what is empty is nobody's work
            entries.push_back(std::move(entry));
        }
    }
    catalog.entries = std::move(entries);
    for (const auto &[key, entry] : known)
    {
        if (taken.count(key) > 0)
            continue;
        if (entry->state == State::untranslated) // nobody's work is lost
            continue;
        changes.obsolete += entry->isObsolete ? 0 : 1;
        catalog.entries.push_back(*entry);
        Entry &kept = catalog.entries.back();
        kept.isObsolete = true;
        std::vector<Note> &notes = kept.remarks.notes;
        notes.erase(std::remove_if(notes.begin(), notes.end(), isOurs), notes.end());
    }
    return changes;
}

void noteArguments(Bilingual &catalog, formTable *table)
{
    for (Entry &entry : catalog.entries)
        if (entry.state == State::fuzzy && entry.previousSource && !entry.isObsolete)
            addNotes(entry, table);
}

} // namespace tool::bilingual
