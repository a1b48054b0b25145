#include "bilingual/xliff/xliff_writer.h"

#include "bilingual/message_parts.h"
#include "bilingual/xliff/xliff_names.h"

#include <algorithm>
#include <fmt/core.h>
#include <set>

namespace tool::bilingual
{
namespace
{

/** How a dialect writes the parts of a text. */
struct Placeholders
{
    const Parts &source; // whose placeholders have their positions for names
    bool isVersion2;

    /** A placeholder that the source has too has the name that it has there; another has one of its own. */
    std::string nameOf(const Part &part) const
    {
        const std::string position(part.position());
        const bool isKnown = std::find(source.begin(), source.end(), part) != source.end();
        return isKnown ? position : position + ".own";
    }

    std::string write(const Part &part) const
    {
        const std::string name = nameOf(part);
        if (!isVersion2)
            return "<x" + xmlAttribute("id", name) + xmlAttribute("equiv-text", part.text) + "/>";
        return "<ph" + xmlAttribute("id", name) + xmlAttribute("dataRef", "d" + name) +
               xmlAttribute("equiv", part.text) + "/>";
    }

    std::string write(const Parts &parts) const
    {
        std::string written;
        for (const Part &part : parts)
            written += part.isPlaceholder ? write(part) : xmlText(escaped(part.text));
        return written;
    }
};

/** The attributes that the dialect knows. */
Attributes only(const Attributes &attributes, std::initializer_list<std::string_view> known)
{
    Attributes kept;
    for (const Attribute &attribute : attributes)
        if (std::find(known.begin(), known.end(), attribute.first) != known.end())
            kept.push_back(attribute);
    return kept;
}

std::string noteOf12(const Note &note, const char *author)
{
    Attributes attributes = only(note.attributes, {"xml:lang", "from", "annotates"});
    const std::string priority = attributeOf(note.attributes, "priority");
    if (priority.size() == 1 && priority[0] >= '1' && priority[0] <= '9')
        attributes.emplace_back("priority", priority);
    if (findAttribute(attributes, "from") == nullptr && author != nullptr)
        attributes.emplace_back("from", author);
    return fmt::format("        <note{}>{}</note>\n", xmlAttributes(attributes), xmlText(note.text));
}

std::string contextsOf12(const std::vector<ContextGroup> &groups)
{
    constexpr std::string_view types[] = {"database",   "element", "elementtitle", "linenumber", "numparams",
                                          "paramnotes", "record",  "recordtitle",  "sourcefile"};
    std::string written;
    for (const ContextGroup &group : groups)
    {
        std::string contexts;
        for (const Note &context : group.contexts)
        {
            std::string type = attributeOf(context.attributes, "context-type");
            const bool isKnown =
                std::find(std::begin(types), std::end(types), type) != std::end(types) || type.substr(0, 2) == "x-";
            if (!isKnown || type.find_first_of(" \t\r\n") != std::string::npos)
                type = "x-context";
            contexts += fmt::format("          <context{}>{}</context>\n", xmlAttribute("context-type", type),
                                    xmlText(context.text));
        }
        if (!contexts.empty())
            written += fmt::format("        <context-group{}>\n{}        </context-group>\n",
                                   xmlAttributes(only(group.attributes, {"name"})), contexts);
    }
    return written;
}

std::string unitOf12(const Entry &entry, bool copiesSource, formTable *table)
{
    const Parts source = partsOf(entry.source, table);
    const Placeholders placeholders{source, false};
    const bool isFinished = entry.state == State::finished;
    std::string unit = "      <trans-unit" + xmlAttribute("id", written(entry.key));
    if (!entry.name.empty())
        unit += xmlAttribute("resname", entry.name);
    if (entry.isObsolete) // strict documents have no attributes of ours
        unit += xmlAttribute("restype", obsoleteType) + xmlAttribute("translate", "no");
    if (entry.state != State::untranslated)
        unit += xmlAttribute("approved", isFinished ? "yes" : "no");
    unit += " xml:space=\"preserve\">\n        <source>" + placeholders.write(source) + "</source>\n";
    if (entry.state != State::untranslated)
        unit += fmt::format("        <target state=\"{}\">{}</target>\n",
                            isFinished ? "translated" : "needs-review-translation",
                            placeholders.write(partsOf(entry.target, table)));
    else if (copiesSource)
        unit += fmt::format("        <target state=\"new\">{}</target>\n", placeholders.write(source));
    if (entry.previousSource && entry.state == State::fuzzy)
    {
        const Parts previous = partsOf(*entry.previousSource, table);
        const Placeholders names{previous, false};
        unit += fmt::format("        <alt-trans alttranstype=\"previous-version\">\n          <source>{}</source>\n"
                            "          <target>{}</target>\n        </alt-trans>\n",
                            names.write(previous), names.write(partsOf(entry.target, table)));
    }
    unit += contextsOf12(entry.remarks.contexts);
    for (const Note &note : entry.hints)
        unit += noteOf12(note, developer);
    for (const Note &note : entry.remarks.notes)
        unit += noteOf12(note, nullptr);
    return unit + "      </trans-unit>\n";
}

std::string noteOf2(const Note &note, const char *author)
{
    const std::string from = attributeOf(note.attributes, "from");
    std::string attributes;
    if (author != nullptr || !from.empty())
        attributes = xmlAttribute("category", from.empty() ? author : from);
    return fmt::format("        <note{}>{}</note>\n", attributes, xmlText(note.text));
}

/** The conversions of both texts, by the names of their placeholders. */
std::string dataOf2(const Placeholders &placeholders, const Parts &source, const Parts &target)
{
    std::set<std::string> known;
    std::string written;
    for (const Parts *const parts : {&source, &target})
        for (const Part &part : *parts)
            if (part.isPlaceholder && known.insert(placeholders.nameOf(part)).second)
                written += fmt::format("        <data{}>{}</data>\n",
                                       xmlAttribute("id", "d" + placeholders.nameOf(part)), xmlText(part.text));
    return written.empty() ? "" : "      <originalData>\n" + written + "      </originalData>\n";
}

/** A key as an XML name token: "12.few", "12.is0". */
std::string nameTokenOf(const Key &key)
{
    std::string name = std::to_string(key.number);
    if (key.label.empty())
        return name;
    return name + "." + (key.label[0] == '=' ? "is" + key.label.substr(1) : key.label);
}

std::string unitOf2(const Entry &entry, bool copiesSource, formTable *table)
{
    const Parts source = partsOf(entry.source, table);
    const Parts target = entry.state == State::untranslated ? Parts() : partsOf(entry.target, table);
    const Placeholders placeholders{source, true};
    std::string unit = "    <unit" + xmlAttribute("id", nameTokenOf(entry.key));
    if (!entry.name.empty())
        unit += xmlAttribute("name", entry.name);
    unit += " canResegment=\"no\" xml:space=\"preserve\"";
    if (entry.isObsolete)
        unit += " translate=\"no\" kelto:obsolete=\"yes\"";
    unit += ">\n";
    std::string notes;
    for (const Note &note : entry.hints)
        notes += noteOf2(note, developer);
    for (const Note &note : entry.remarks.notes)
        notes += noteOf2(note, nullptr);
    if (entry.previousSource && entry.state == State::fuzzy)
        notes += fmt::format("        <note category=\"previous-source\">{}</note>\n",
                             xmlText(escaped(*entry.previousSource)));
    if (!notes.empty())
        unit += "      <notes>\n" + notes + "      </notes>\n";
    unit += dataOf2(placeholders, source, target);
    const std::string initial = xmlAttribute("state", "initial");
    const std::string state = entry.state == State::finished ? xmlAttribute("state", "translated")
                              : entry.state == State::fuzzy  ? initial + xmlAttribute("subState", changedSubState)
                              : copiesSource                 ? initial
                                                             : "";
    unit += fmt::format("      <segment{}>\n        <source>{}</source>\n", state, placeholders.write(source));
    if (entry.state != State::untranslated || copiesSource)
        unit += fmt::format("        <target>{}</target>\n",
                            placeholders.write(entry.state != State::untranslated ? target : source));
    return unit + "      </segment>\n    </unit>\n";
}

/** Writes all entries; the entries of a row stand between its begin and its end. */
template <typename Write, typename Begin, typename End>
void forEachRow(const Bilingual &catalog, Write write, Begin begin, End end)
{
    const Entry *open = nullptr;
    const auto belongs = [&open](const Entry &entry) {
        return !entry.key.label.empty() && open->key.number == entry.key.number && open->isObsolete == entry.isObsolete;
    };
    for (const Entry &entry : catalog.entries)
    {
        if (open != nullptr && !belongs(entry))
        {
            end();
            open = nullptr;
        }
        if (open == nullptr && !entry.key.label.empty())
        {
            begin(entry);
            open = &entry;
        }
        write(entry);
    }
    if (open != nullptr)
        end();
}

} // namespace

std::string xliff12Of(const Bilingual &catalog, formTable *table)
{
    std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xliff version=\"1.2\" "
                           "xmlns=\"urn:oasis:names:tc:xliff:document:1.2\">\n  <file";
    document += xmlAttribute("original", catalog.original) + xmlAttribute("source-language", catalog.sourceLanguage);
    if (!catalog.targetLanguage.empty())
        document += xmlAttribute("target-language", catalog.targetLanguage);
    document += " datatype=\"plaintext\"" +
                xmlAttributes(only(catalog.attributes, {"product-name", "product-version", "build-num"})) +
                ">\n    <body>\n";
    forEachRow(
        catalog, [&](const Entry &entry) { document += unitOf12(entry, catalog.copiesSource, table); },
        [&](const Entry &first) {
            const char *const kind = first.isObsolete ? "obsolete." : "";
            document += "      <group" + xmlAttribute("id", kind + std::to_string(first.key.number)) + ">\n";
        },
        [&] { document += "      </group>\n"; });
    return document + "    </body>\n  </file>\n</xliff>\n";
}

std::string xliff2Of(const Bilingual &catalog, formTable *table)
{
    std::string document = fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xliff version=\"2.0\" "
                                       "xmlns=\"urn:oasis:names:tc:xliff:document:2.0\" xmlns:kelto=\"{}\"",
                                       ourNamespace);
    document += xmlAttribute("srcLang", catalog.sourceLanguage);
    const bool hasTarget = std::any_of(catalog.entries.begin(), catalog.entries.end(),
                                       [](const Entry &entry) { return entry.state != State::untranslated; });
    if (!catalog.targetLanguage.empty() || hasTarget || catalog.copiesSource)
        document += xmlAttribute("trgLang", catalog.targetLanguage.empty() ? "und" : catalog.targetLanguage);
    document += ">\n  <file id=\"messages\"" + xmlAttribute("original", catalog.original) + ">\n";
    if (catalog.entries.empty()) // a file holds a unit at least
        document += "    <group id=\"empty\"/>\n";
    forEachRow(
        catalog, [&](const Entry &entry) { document += unitOf2(entry, catalog.copiesSource, table); },
        [&](const Entry &first) {
            const char *const kind = first.isObsolete ? "obsolete" : "row";
            document += "    <group" + xmlAttribute("id", fmt::format("{}.{}", kind, first.key.number)) + ">\n";
        },
        [&] { document += "    </group>\n"; });
    return document + "  </file>\n</xliff>\n";
}

} // namespace tool::bilingual
