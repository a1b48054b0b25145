#include "bilingual/update.h"

#include "bilingual/source_file.h"
#include "check/formats.h"
#include "text.h"

#include <algorithm>
#include <map>

namespace tool::bilingual
{
namespace
{

/** Notes of ours, which are made anew each time. */
constexpr const char *ourselves = "kelto";

bool isOurs(const Note &note)
{
    return attributeOf(note.attributes, "from") == ourselves;
}

/** Gives an entry of the reference what the old one has. */
void takeOver(Entry &entry, const Entry &old, Changes &changes)
{
    entry.target = old.target;
    entry.hasTarget = old.hasTarget;
    entry.state = old.state;
    entry.remarks.notes = notesOfTranslator(old.remarks.notes, entry.hints);
    std::vector<Note> &notes = entry.remarks.notes;
    notes.erase(std::remove_if(notes.begin(), notes.end(), isOurs), notes.end());
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
    std::map<Key, const Entry *> known;
    for (const Entry &entry : old.entries)
        known.emplace(entry.key, &entry);
    for (Entry &entry : catalog.entries)
    {
        const auto found = known.find(entry.key);
        if (found == known.end())
        {
            ++changes.fresh;
            continue;
        }
        takeOver(entry, *found->second, changes);
        known.erase(found);
    }
    for (const auto &[key, entry] : known)
    {
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
