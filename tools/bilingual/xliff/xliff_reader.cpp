#include "bilingual/xliff/xliff_reader.h"

#include "bilingual/message_parts.h"
#include "bilingual/xliff/xliff_names.h"
#include "bilingual/xliff/xliff_texts.h"
#include "bilingual/xml_walk.h"
#include "text.h"

#include <algorithm>
#include <cstdlib>

namespace tool::bilingual
{
namespace
{

using namespace check;

/** The state of a unit, by its own attributes and those of its segments and targets. */
class UnitState
{
public:
    explicit UnitState(std::string approved = "") : m_approved(std::move(approved)) {}

    /** Counts a segment in: one that is not done leaves the unit undone. */
    void addSegment(std::optional<State> state)
    {
        m_isUnsure = m_isUnsure || (state && *state != State::finished);
        if (!m_state || *m_state == State::finished)
            m_state = state;
    }

    void setTarget(std::optional<State> state)
    {
        if (state)
            m_state = state;
    }

    void lacksTarget() { m_lacksTarget = true; }

    /** @param isEmpty  the translation has no text. */
    State of(const Entry &entry, bool isEmpty) const
    {
        const bool isMarkedDone = m_state && *m_state == State::finished;
        const bool isFinished = m_approved == "yes" || (isMarkedDone && !m_isUnsure);
        if (!entry.hasTarget || m_lacksTarget || (isEmpty && !isFinished))
            return State::untranslated;
        // An attribute that tools add to every unit says nothing of an empty one.
        if (isEmpty && !isMarkedDone)
            return State::untranslated;
        // A program that shows nothing but targets is given copies of the sources. A text that was translated before
        // its source has changed may be the same too.
        const bool isCopy = m_state == State::untranslated && entry.target == entry.source && !entry.previousSource;
        if (!isFinished && isCopy)
            return State::untranslated;
        const bool isFuzzy = !isFinished && (m_state || m_approved == "no");
        return isFuzzy ? State::fuzzy : State::finished;
    }

private:
    std::string m_approved;
    std::optional<State> m_state;
    bool m_isUnsure = false; // some segment has no state that counts as done
    bool m_lacksTarget = false;
};

class Reader
{
public:
    Reader(SourceText source, Keys keys)
        : m_file{{}, std::move(source), {}, {}, {}, true, true, {}}, m_keys(keys),
          m_walk(*this, XmlNames::withNamespaces)
    {
    }

    BilingualFile run();

    // For the walk.
    void start(const char *name, const char **attributes);
    void end(const char *name);
    void text(std::string_view words);

private:
    struct Open
    {
        Element element;
        bool keepsSpace;
    };

    /** The words since an element that is no text of a unit: a note, a conversion, an earlier source. */
    struct Words
    {
        std::string text;
        Attributes attributes; // of the element
        Range place;

        void open(Attributes of = {}, Range at = {}) { *this = {"", std::move(of), at}; }
    };

    void open(Element element, const Tag &tag, Range place);
    void startFile(const Tag &tag, Range place);
    void setTargetLanguage(const Tag &tag, const char *attribute, Range place);
    void startUnit(const Tag &tag, Range place);
    void readKey(const Tag &tag, Range place);
    void startSegment(const Tag &tag, bool isIgnorable);
    void startSource();
    void startTarget(const Tag &tag, Range place);
    void noteLine(const Tag &tag, Range place);
    void refuseInline(const Tag &tag, Range place);
    void close(const Open &closed);
    void endText(const Open &closed);
    void endSegment(bool isIgnorable);
    void endFinding();
    void endNote();
    void endContext();
    void endUnit();
    void fail(Phrase why);
    void findSyntaxError();

    Range event() const;
    bool isInUnit() const { return m_hasUnit && m_alternatives == 0; }

    BilingualFile m_file;
    Keys m_keys;
    XmlWalk<Reader> m_walk;
    std::vector<Open> m_open;
    size_t m_skipped = 0;
    size_t m_alternatives = 0; // that are open
    bool m_isPrevious = false; // the alternative is the translation of an earlier source
    bool m_isFailed = false;

    Entry m_entry;
    bool m_hasUnit = false;
    UnitState m_state;
    UnitTexts m_texts;
    size_t m_segmentBegin = 0; // of its source in that of the unit
    bool m_segmentHasTarget = false;
    Findings m_inSource; // of the segment: a fault of the reference is not the translator's, but where it is copied
    Words m_words;
};

/** Where in the file the current event is. */
Range Reader::event() const
{
    const auto begin = static_cast<size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(m_walk.get()), 0));
    return {begin, begin + static_cast<size_t>(XML_GetCurrentByteCount(m_walk.get()))};
}

void Reader::fail(Phrase why)
{
    if (m_isFailed)
        return;
    m_isFailed = true;
    m_file.isWhole = false;
    m_file.findings.push_back(findingAt(event(), Rule::xmlSyntax, 0, std::move(why)));
    XML_StopParser(m_walk.get(), XML_FALSE);
}

void Reader::start(const char *name, const char **attributes)
{
    if (m_skipped > 0)
    {
        ++m_skipped;
        return;
    }
    const Tag tag(name, attributes);
    const Element element = tag.element();
    const bool isInline = element == Element::placeholder || element == Element::marked;
    if (m_texts.isOpen() && !isInline)
    {
        refuseInline(tag, event());
        ++m_skipped;
        return;
    }
    if (element == Element::placeholder)
        m_words.text += tag.get("equiv-text");
    if (element == Element::skipped || (isInline && !m_texts.isOpen()))
    {
        ++m_skipped;
        return;
    }
    const bool kept = !m_open.empty() && m_open.back().keepsSpace;
    const std::string space = tag.space();
    m_open.push_back({element, space.empty() ? kept : space == "preserve"});
    open(element, tag, event());
}

void Reader::open(Element element, const Tag &tag, Range place)
{
    switch (element)
    {
    case Element::xliff:
        setTargetLanguage(tag, "trgLang", place);
        break;
    case Element::file:
        startFile(tag, place);
        break;
    case Element::unit:
        startUnit(tag, place);
        break;
    case Element::segment:
    case Element::ignorable:
        startSegment(tag, element == Element::ignorable);
        break;
    case Element::source:
        startSource();
        break;
    case Element::target:
        startTarget(tag, place);
        break;
    case Element::placeholder:
        if (!m_texts.addPlaceholder(tag, place))
            refuseInline(tag, place);
        break;
    case Element::alternative:
        ++m_alternatives;
        m_isPrevious = tag.get("alttranstype") == "previous-version";
        break;
    case Element::finding:
        noteLine(tag, place);
        m_words.open({{"name", tag.ours("name")}}, place);
        break;
    case Element::contextGroup:
        if (isInUnit())
            m_entry.remarks.contexts.push_back({tag.attributes(), {}});
        break;
    case Element::data:
    case Element::note:
    case Element::context:
        m_words.open(tag.attributes());
        break;
    default:
        break;
    }
}

void Reader::startFile(const Tag &tag, Range place)
{
    m_file.body = place;
    setTargetLanguage(tag, "target-language", place);
    m_file.content.header = unescaped(tag.ours("header"));
    m_file.content.charset = tag.ours("charset");
}

void Reader::setTargetLanguage(const Tag &tag, const char *attribute, Range place)
{
    if (tag.find(attribute) == nullptr)
        return;
    m_file.content.targetLanguage = tag.get(attribute);
    m_file.languagePlace = place;
}

/** Takes note of the line that kelto-po gives. */
void Reader::noteLine(const Tag &tag, Range place)
{
    const std::string line = tag.ours("line");
    if (line.empty())
        return;
    m_entry.line = std::strtoul(line.c_str(), nullptr, 10);
    m_file.lines.emplace_back(place.begin, m_entry.line);
}

void Reader::startUnit(const Tag &tag, Range place)
{
    m_entry = {};
    m_hasUnit = true;
    m_texts.clear();
    m_state = UnitState(tag.get("approved"));
    m_entry.place = place;
    m_entry.name = tag.get(tag.find("resname") != nullptr ? "resname" : "name");
    if (const std::string form = tag.ours("form"); !form.empty())
    {
        m_entry.form = static_cast<int>(std::strtol(form.c_str(), nullptr, 10));
        m_entry.plural = unescaped(tag.ours("plural"));
    }
    m_entry.hasControls = tag.ours("control") == "yes";
    noteLine(tag, place);
    m_entry.isObsolete = tag.ours("obsolete") == "yes" || tag.get("restype") == obsoleteType;
    readKey(tag, place);
}

void Reader::readKey(const Tag &tag, Range place)
{
    const char *const id = tag.find("id");
    const std::optional<Key> key = bilingual::readKey(id != nullptr ? id : "");
    if (m_keys == Keys::contexts)
    {
        m_entry.key.number = static_cast<int>(m_file.content.entries.size()) + 1;
        m_entry.context = unescaped(tag.get("id"));
        m_entry.format = tag.ours("format");
    }
    else if (key)
        m_entry.key = *key;
    else if (id == nullptr)
        m_file.findings.push_back(findingAt(place, Rule::attributeMissing, 0, {Text::numberMissing}));
    else
        m_file.findings.push_back(findingAt(place, Rule::badId, 0, {Text::badNumber, {quotation(id)}}));
}

void Reader::startSegment(const Tag &tag, bool isIgnorable)
{
    m_segmentBegin = m_texts.sourceSize();
    m_segmentHasTarget = false;
    m_inSource.clear();
    if (isIgnorable)
        return;
    const std::optional<State> state = meaningOf(tag.get("state"));
    const bool isChanged = state == State::untranslated && tag.get("subState") == changedSubState;
    m_state.addSegment(isChanged ? State::fuzzy : state);
}

void Reader::startSource()
{
    if (isInUnit())
        m_texts.openSource();
    else if (m_hasUnit)
        m_words.open();
}

void Reader::startTarget(const Tag &tag, Range place)
{
    if (!isInUnit())
        return;
    m_segmentHasTarget = true;
    m_state.setTarget(meaningOf(tag.get("state")));
    if (!m_entry.hasTarget)
        m_texts.target().tag = place;
    m_entry.hasTarget = true;
    m_texts.openTarget();
}

void Reader::refuseInline(const Tag &tag, Range place)
{
    m_texts.loseCompleteness();
    Finding finding = findingAt(place, Rule::structure, m_entry.key.number, {Text::noInline, {quotation(tag.name())}});
    finding.order = m_entry.place.begin;
    (m_texts.isSourceOpen() ? m_inSource : m_entry.findings).push_back(std::move(finding));
}

void Reader::text(std::string_view words)
{
    if (m_skipped > 0)
        return;
    if (!m_texts.isOpen() || m_open.back().element == Element::placeholder)
    {
        m_words.text += words;
        return;
    }
    const Range place = event();
    m_texts.add(words, place, m_file.source.bytes().substr(place.begin, place.end - place.begin) == words);
}

void Reader::end(const char *)
{
    if (m_skipped > 0)
    {
        --m_skipped;
        return;
    }
    const Open closed = m_open.back();
    m_open.pop_back();
    close(closed);
}

void Reader::close(const Open &closed)
{
    switch (closed.element)
    {
    case Element::source:
    case Element::target:
        endText(closed);
        break;
    case Element::segment:
    case Element::ignorable:
        endSegment(closed.element == Element::ignorable);
        break;
    case Element::data:
        m_texts.addData(attributeOf(m_words.attributes, "id"), m_words.text);
        break;
    case Element::finding:
        endFinding();
        break;
    case Element::note:
        endNote();
        break;
    case Element::context:
        endContext();
        break;
    case Element::alternative:
        --m_alternatives;
        break;
    case Element::unit:
        endUnit();
        break;
    default:
        break;
    }
}

void Reader::endText(const Open &closed)
{
    if (m_texts.isOpen())
        m_texts.close(closed.keepsSpace);
    else if (m_isPrevious && closed.element == Element::source)
        m_entry.previousSource = unescaped(m_words.text);
}

void Reader::endFinding()
{
    const std::string name = attributeOf(m_words.attributes, "name");
    const Phrase text = name == "not-in-charset"    ? Phrase{Text::poNotInCharset}
                        : name == "unknown-charset" ? Phrase{Text::poUnknownCharset}
                                                    : Phrase{Text::poFinding, {unescaped(m_words.text)}};
    m_file.findings.push_back(findingAt(m_words.place, Rule::structure, 0, text));
}

void Reader::endNote()
{
    if (!isInUnit())
        return;
    if (attributeOf(m_words.attributes, "category") == "previous-source")
    {
        m_entry.previousSource = unescaped(m_words.text);
        return;
    }
    for (auto &[name, value] : m_words.attributes)
        if (name == "category") // as 2.0 calls it
            name = "from";
    m_entry.remarks.notes.push_back({m_words.attributes, m_words.text});
}

void Reader::endContext()
{
    if (isInUnit() && !m_entry.remarks.contexts.empty())
        m_entry.remarks.contexts.back().contexts.push_back({m_words.attributes, m_words.text});
}

/** Ends a segment. A translation may leave out the text between two sentences; it has the text of the source then. */
void Reader::endSegment(bool isIgnorable)
{
    if (m_segmentHasTarget)
        return;
    if (isIgnorable)
    {
        m_texts.copySource(m_segmentBegin, m_entry.place);
        m_entry.findings.insert(m_entry.findings.end(), m_inSource.begin(), m_inSource.end());
    }
    else
        m_state.lacksTarget();
}

void Reader::endUnit()
{
    m_hasUnit = false;
    if (m_entry.key.number == 0)
        return;
    m_entry.source = unescaped(m_texts.source().raw);
    m_entry.written = std::move(m_texts.target());
    m_entry.target = unescaped(m_entry.written.raw);
    // A part that was refused is something.
    const bool isEmpty = m_entry.written.raw.empty() && m_entry.written.isComplete;
    m_entry.state = m_state.of(m_entry, isEmpty);
    if (!m_entry.hasTarget) // what was copied is no translation
        m_entry.findings.clear();
    m_file.content.entries.push_back(std::move(m_entry));
}

void Reader::findSyntaxError()
{
    const XML_Error error = XML_GetErrorCode(m_walk.get());
    if (error == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    fail({Text::notWellFormed, {textOfXmlError(error, XML_ErrorString(error))}});
    Range &place = m_file.findings.back().place;
    place.begin = std::min(place.begin, m_file.source.bytes().size());
    place.end = place.begin;
    if (place.begin < m_file.source.bytes().size())
        m_file.source.take(place.end, m_file.source.bytes().size());
}

BilingualFile Reader::run()
{
    const XML_Parser parser = m_walk.get();
    XML_SetXmlDeclHandler(parser, [](void *self, const char *, const char *encoding, int) {
        if (encoding != nullptr)
            static_cast<Reader *>(self)->m_file.source.declareEncoding(encoding);
    });
    // An entity brings text from elsewhere: a translation consists of the letters that its file has.
    XML_SetEntityDeclHandler(parser, [](void *self, const char *, int, const char *, int, const char *, const char *,
                                        const char *,
                                        const char *) { static_cast<Reader *>(self)->fail({Text::entitiesRefused}); });
    XML_SetSkippedEntityHandler(
        parser, [](void *self, const char *, int) { static_cast<Reader *>(self)->fail({Text::entitiesRefused}); });
    if (!m_walk.run(m_file.source.bytes()) && !m_isFailed)
        findSyntaxError();
    return std::move(m_file);
}

} // namespace

BilingualFile readXliff(SourceText source, Keys keys)
{
    return Reader(std::move(source), keys).run();
}

} // namespace tool::bilingual
