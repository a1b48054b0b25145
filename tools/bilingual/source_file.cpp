#include "bilingual/source_file.h"

#include "bilingual/message_parts.h"
#include "output.h"

#include <algorithm>
#include <map>

namespace tool::bilingual
{

using namespace check;

SourceFile::SourceFile(SourceText source)
    : catalog(std::move(source), Catalog::Placeholders::positioned), remarks(remarksIn(catalog.source().bytes()))
{
}

SourceFile SourceFile::read(const std::string &path)
{
    return SourceFile(SourceText(path == "-" ? "<stdin>" : path, readMessageFile(path)));
}

namespace
{

const Remarks *remarksOf(const SourceFile &file, int id)
{
    const auto found = file.remarks.units.find(id);
    return found != file.remarks.units.end() ? &found->second : nullptr;
}

} // namespace

Bilingual bilingualOf(const SourceFile &reference)
{
    Bilingual catalog;
    const std::string &name = reference.catalog.source().name();
    catalog.original = name.substr(name.rfind('/') + 1);
    catalog.sourceLanguage = reference.catalog.language();
    catalog.attributes = reference.remarks.attributes;
    for (const Message &message : reference.catalog.messages())
    {
        Entry entry;
        entry.key = {message.id, ""};
        entry.name = message.name;
        entry.source = unescaped(reference.catalog.rawText(message));
        if (const Remarks *const remarks = remarksOf(reference, message.id))
        {
            entry.hints = remarks->notes;
            entry.remarks.contexts = remarks->contexts;
        }
        catalog.entries.push_back(std::move(entry));
    }
    return catalog;
}

std::vector<Note> notesOfTranslator(const std::vector<Note> &notes, const std::vector<Note> &hints)
{
    std::vector<Note> kept;
    for (const Note &note : notes)
    {
        const bool isHint =
            attributeOf(note.attributes, "from") == developer ||
            std::any_of(hints.begin(), hints.end(), [&note](const Note &hint) { return hint.text == note.text; });
        if (!isHint)
            kept.push_back(note);
    }
    return kept;
}

Losses addTranslation(Bilingual &catalog, const SourceFile &translation)
{
    Losses losses;
    catalog.targetLanguage = translation.catalog.language();
    std::map<int, Entry *> entries;
    for (Entry &entry : catalog.entries)
        entries.emplace(entry.key.number, &entry);
    std::vector<Entry> unknown;
    for (const Message &message : translation.catalog.messages())
    {
        const auto found = entries.find(message.id);
        const bool isKnown = found != entries.end();
        Entry added;
        Entry &entry = isKnown ? *found->second : added;
        entry.key = {message.id, ""};
        entry.target = unescaped(translation.catalog.rawText(message));
        entry.hasTarget = true;
        entry.state = State::finished;
        if (const Remarks *const remarks = remarksOf(translation, message.id))
        {
            entry.remarks.notes = notesOfTranslator(remarks->notes, entry.hints);
            if (!remarks->contexts.empty())
                entry.remarks.contexts = remarks->contexts;
        }
        if (!isKnown)
        {
            entry.name = message.name;
            entry.isObsolete = true;
            unknown.push_back(std::move(added));
            ++losses.unknown;
            continue;
        }
        losses.leftEmpty += entry.target.empty() && !entry.source.empty() ? 1 : 0;
        const auto made = translation.remarks.sources.find(message.id);
        if (made != translation.remarks.sources.end() && made->second != digestOf(entry.source))
        {
            entry.state = State::fuzzy;
            ++losses.outdated;
        }
    }
    catalog.entries.insert(catalog.entries.end(), std::make_move_iterator(unknown.begin()),
                           std::make_move_iterator(unknown.end()));
    return losses;
}

} // namespace tool::bilingual
