#include "bilingual/xliff_reader.h"

#include "bilingual/message_parts.h"
#include "text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <expat.h>
#include <map>
#include <memory>

namespace tool::bilingual
{
namespace
{

using namespace check;

constexpr char namespaceEnd = '|';

/** The bytes of a conversion: a few of a tag would else stand for whatever another one holds, again and again. */
constexpr size_t longestConversion = 250;

enum class Element : uint8_t
{
    other,   // looked through
    skipped, // with all that it holds
    xliff,
    file,
    unit, // "trans-unit" of 1.2, "unit" of 2.0
    segment,
    source,
    target,
    placeholder, // "x" of 1.2, "ph" of 2.0
    marked,      // "mrk", which is looked through
    data,
    alternative, // a translation that is not the one
    finding,     // of kelto-po
    note,
    contextGroup,
    context
};

struct ElementRow
{
    const char *name;
    Element element;
};

constexpr ElementRow elements[] = {
    {"trans-unit", Element::unit},    {"unit", Element::unit},
    {"segment", Element::segment},    {"ignorable", Element::segment},
    {"source", Element::source},      {"target", Element::target},
    {"x", Element::placeholder},      {"ph", Element::placeholder},
    {"mrk", Element::marked},         {"data", Element::data},
    {"note", Element::note},          {"alt-trans", Element::alternative},
    {"context", Element::context},    {"context-group", Element::contextGroup},
    {"file", Element::file},          {"xliff", Element::xliff},
    {"group", Element::other},        {"body", Element::other},
    {"notes", Element::other},        {"originalData", Element::other},
    {"header", Element::skipped},     {"skeleton", Element::skipped},
    {"seg-source", Element::skipped}, {"finding", Element::finding},
};

/** Name and attributes of a tag; the pointers are the parser's. */
class Tag
{
public:
    Tag(const char *name, const char **attributes) : m_name(localPart(name)), m_attributes(attributes) {}

    const char *name() const { return m_name; }

    /** An attribute without a namespace; null where there is none. */
    const char *find(const char *name) const
    {
        for (const char **attribute = m_attributes; *attribute != nullptr; attribute += 2)
            if (std::strcmp(*attribute, name) == 0)
                return attribute[1];
        return nullptr;
    }

    std::string get(const char *name) const
    {
        const char *const value = find(name);
        return value != nullptr ? value : "";
    }

    /** One of ours. */
    std::string ours(const char *name) const { return get((std::string(ourNamespace) + namespaceEnd + name).c_str()); }

    /** What "xml:space" says, if it says anything. */
    std::string space() const { return get("http://www.w3.org/XML/1998/namespace|space"); }

    Attributes attributes() const
    {
        constexpr std::string_view xml = "http://www.w3.org/XML/1998/namespace|";
        Attributes list;
        for (const char **attribute = m_attributes; *attribute != nullptr; attribute += 2)
            if (std::string_view(*attribute).substr(0, xml.size()) == xml)
                list.emplace_back("xml:" + std::string(*attribute + xml.size()), attribute[1]);
            else if (std::strchr(*attribute, namespaceEnd) == nullptr)
                list.emplace_back(attribute[0], attribute[1]);
        return list;
    }

private:
    static const char *localPart(const char *name)
    {
        const char *const end = std::strrchr(name, namespaceEnd);
        return end != nullptr ? end + 1 : name;
    }

    const char *m_name;
    const char **m_attributes;
};

Element elementOf(const Tag &tag)
{
    for (const ElementRow &row : elements)
        if (std::strcmp(tag.name(), row.name) == 0)
            return row.element;
    return Element::skipped;
}

/** What of a text was wrapped by a tool, which a message has as one blank, or, at its ends, not at all. */
void unwrap(WrittenText &text)
{
    const auto isBlank = [](char byte) { return byte == ' ' || byte == '\t' || byte == '\n'; };
    const std::string raw = std::move(text.raw);
    std::vector<uint32_t> places(raw.size() + 1);
    std::string result;
    for (size_t at = 0; at < raw.size();)
    {
        size_t end = at;
        while (end < raw.size() && isBlank(raw[end]))
            ++end;
        const bool isWrapped = raw.substr(at, end - at).find('\n') != std::string::npos;
        if (end == at)
            ++end;
        for (size_t i = at; i < end; ++i)
        {
            places[i] = static_cast<uint32_t>(result.size());
            if (!isWrapped)
                result += raw[i];
        }
        if (isWrapped && at > 0 && end < raw.size())
            result += ' ';
        at = end;
    }
    places[raw.size()] = static_cast<uint32_t>(result.size());
    for (Piece &piece : text.pieces)
    {
        piece.begin = places[piece.begin];
        piece.end = places[piece.end];
        piece.positionBegin = places[piece.positionBegin];
    }
    text.pieces.erase(std::remove_if(text.pieces.begin(), text.pieces.end(),
                                     [](const Piece &piece) { return piece.begin == piece.end; }),
                      text.pieces.end());
    text.raw = std::move(result);
}

/** The meaning of an attribute "state". */
std::optional<State> meaningOf(const std::string &state)
{
    constexpr struct
    {
        const char *name;
        State state;
    } rows[] = {{"translated", State::finished},
                {"final", State::finished},
                {"signed-off", State::finished},
                {"reviewed", State::finished},
                {"new", State::untranslated},
                {"initial", State::untranslated},
                {"needs-adaptation", State::fuzzy},
                {"needs-l10n", State::fuzzy},
                {"needs-review-adaptation", State::fuzzy},
                {"needs-review-l10n", State::fuzzy},
                {"needs-review-translation", State::fuzzy},
                {"needs-translation", State::fuzzy}};
    for (const auto &row : rows)
        if (state == row.name)
            return row.state;
    return std::nullopt;
}

class Reader
{
public:
    Reader(SourceText source, Keys keys) : m_file{{}, std::move(source), {}, {}, {}, true, true, {}}, m_keys(keys) {}

    BilingualFile run();

private:
    struct Open
    {
        Element element;
        bool keepsSpace;
    };

    static Reader &self(void *state) { return *static_cast<Reader *>(state); }

    void start(const Tag &tag);
    void end();
    void addText(std::string_view text);
    void startUnit(const Tag &tag, Range place);
    void noteLine(const Tag &tag, Range place);
    void startText(const Tag &tag, Range place, bool isTarget);
    void addPlaceholder(const Tag &tag, Range place);
    void refuseInline(const Tag &tag, Range place);
    void endSegment();
    void endUnit();
    void fail(Phrase why);
    void findSyntaxError();

    Range event() const;
    Element parent() const { return m_open.empty() ? Element::other : m_open.back().element; }

    BilingualFile m_file;
    Keys m_keys;
    XML_Parser m_parser = nullptr;
    std::vector<Open> m_open;
    size_t m_skipped = 0;
    size_t m_alternatives = 0; // that are open
    bool m_isFailed = false;

    Entry m_entry;
    bool m_hasUnit = false;
    std::string m_approved;
    std::optional<State> m_state;
    bool m_isUnsure = false; // some segment has no state that counts as done
    bool m_lacksTarget = false;
    WrittenText m_source;
    size_t m_segmentBegin = 0; // of its source in that of the unit
    bool m_segmentHasTarget = false;
    bool m_isIgnorable = false;
    WrittenText *m_text = nullptr;                     // takes what is read
    std::map<std::string, std::string> m_placeholders; // by "id", those of the source
    std::map<std::string, std::string> m_data;         // of 2.0, by "id"
    std::string m_words;                               // of a note or context, of data, of a previous source
    bool m_takesWords = false;
    Attributes m_wordsAttributes;
    std::string m_dataId;
    Range m_place; // of a finding
    bool m_isPrevious = false;
};

/** Where in the file the current event is. */
Range Reader::event() const
{
    const auto begin = static_cast<size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(m_parser), 0));
    return {begin, begin + static_cast<size_t>(XML_GetCurrentByteCount(m_parser))};
}

void Reader::fail(Phrase why)
{
    if (m_isFailed)
        return;
    m_isFailed = true;
    m_file.isWhole = false;
    const Range place = event();
    m_file.findings.push_back({Rule::xmlSyntax, 0, place.begin, place, std::move(why), std::nullopt});
    XML_StopParser(m_parser, XML_FALSE);
}

void Reader::start(const Tag &tag)
{
    if (m_skipped > 0)
    {
        ++m_skipped;
        return;
    }
    Element element = elementOf(tag);
    const Range place = event();
    const bool isInText = m_text != nullptr;
    if (isInText && element != Element::placeholder && element != Element::marked)
    {
        refuseInline(tag, place);
        ++m_skipped;
        return;
    }
    if (m_takesWords && element == Element::placeholder)
        m_words += tag.get("equiv-text");
    const bool isPlaceless = (element == Element::placeholder || element == Element::marked) && !isInText;
    if (element == Element::skipped || isPlaceless)
    {
        ++m_skipped;
        return;
    }
    const bool kept = !m_open.empty() && m_open.back().keepsSpace;
    const std::string space = tag.space();
    m_open.push_back({element, space.empty() ? kept : space == "preserve"});
    switch (element)
    {
    case Element::file:
        m_file.body = place;
        if (m_file.content.attributes.empty())
            m_file.content.attributes = tag.attributes();
        if (tag.find("source-language") != nullptr)
            m_file.content.sourceLanguage = tag.get("source-language");
        if (tag.find("target-language") != nullptr)
        {
            m_file.content.targetLanguage = tag.get("target-language");
            m_file.languagePlace = place;
        }
        m_file.content.original = tag.get("original");
        m_file.content.header = unescaped(tag.ours("header"));
        m_file.content.charset = tag.ours("charset");
        break;
    case Element::xliff:
        if (tag.find("srcLang") != nullptr)
            m_file.content.sourceLanguage = tag.get("srcLang");
        if (tag.find("trgLang") != nullptr)
        {
            m_file.content.targetLanguage = tag.get("trgLang");
            m_file.languagePlace = place;
        }
        break;
    case Element::unit:
        startUnit(tag, place);
        break;
    case Element::segment:
        m_segmentBegin = m_source.raw.size();
        m_segmentHasTarget = false;
        m_isIgnorable = std::strcmp(tag.name(), "ignorable") == 0;
        if (const std::optional<State> state = meaningOf(tag.get("state")); !m_isIgnorable)
        {
            m_isUnsure = m_isUnsure || (state && *state != State::finished);
            if (!m_state || *m_state == State::finished)
                m_state = state;
        }
        break;
    case Element::source:
    case Element::target:
        startText(tag, place, element == Element::target);
        break;
    case Element::placeholder:
        addPlaceholder(tag, place);
        break;
    case Element::alternative:
        ++m_alternatives;
        m_isPrevious = tag.get("alttranstype") == "previous-version";
        break;
    case Element::data:
        m_dataId = tag.get("id");
        m_words.clear();
        m_takesWords = true;
        break;
    case Element::finding:
        noteLine(tag, place);
        m_place = place;
        m_words.clear();
        m_takesWords = true;
        break;
    case Element::contextGroup:
        if (m_hasUnit && m_alternatives == 0)
            m_entry.remarks.contexts.push_back({tag.attributes(), {}});
        break;
    case Element::note:
    case Element::context:
        m_words.clear();
        m_takesWords = true;
        m_wordsAttributes = tag.attributes();
        break;
    default:
        break;
    }
}

/** Takes note of where kelto-po found something. */
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
    m_approved = tag.get("approved");
    m_state.reset();
    m_isUnsure = false;
    m_lacksTarget = false;
    m_source = {};
    m_placeholders.clear();
    m_data.clear();
    const char *const id = tag.find("id");
    const std::optional<Key> key = readKey(id != nullptr ? id : "");
    if (m_keys == Keys::contexts)
    {
        m_entry.key.number = static_cast<int>(m_file.content.entries.size()) + 1;
        m_entry.context = unescaped(tag.get("id"));
        m_entry.format = tag.ours("format");
    }
    else if (key)
        m_entry.key = *key;
    else if (id == nullptr)
        m_file.findings.push_back({Rule::attributeMissing, 0, place.begin, place, {Text::numberMissing}, std::nullopt});
    else
        m_file.findings.push_back(
            {Rule::badId, 0, place.begin, place, {Text::badNumber, {quotation(id)}}, std::nullopt});
}

void Reader::startText(const Tag &tag, Range place, bool isTarget)
{
    if (!m_hasUnit)
        return;
    if (m_alternatives > 0)
    {
        m_words.clear();
        m_takesWords = !isTarget;
        return;
    }
    if (!isTarget)
    {
        m_text = &m_source;
        return;
    }
    m_segmentHasTarget = true;
    if (const std::optional<State> state = meaningOf(tag.get("state")))
        m_state = state;
    if (!m_entry.hasTarget)
        m_entry.written.tag = place;
    m_entry.hasTarget = true;
    m_text = &m_entry.written;
}

void Reader::addPlaceholder(const Tag &tag, Range place)
{
    const std::string id = tag.get("id");
    const bool isTarget = m_text == &m_entry.written;
    std::string conversion = tag.get("equiv-text");
    if (conversion.empty())
        conversion = tag.get("equiv");
    if (const auto data = m_data.find(tag.get("dataRef")); data != m_data.end())
        conversion = data->second;
    if (const auto known = m_placeholders.find(id); conversion.empty() && known != m_placeholders.end())
        conversion = known->second;
    if (conversion.empty() || conversion.size() > longestConversion)
    {
        refuseInline(tag, place);
        return;
    }
    if (!isTarget)
        m_placeholders[id] = conversion;
    std::string &raw = m_text->raw;
    const auto begin = static_cast<uint32_t>(raw.size());
    raw += escaped(conversion);
    const size_t bracket = raw.rfind('[');
    const auto position = static_cast<uint32_t>(bracket != std::string::npos && bracket >= begin ? bracket : begin);
    m_text->pieces.push_back({begin, static_cast<uint32_t>(raw.size()), Piece::Kind::placeholder, position, place});
}

void Reader::refuseInline(const Tag &tag, Range place)
{
    m_text->isComplete = false;
    m_entry.findings.push_back({Rule::structure,
                                m_entry.key.number,
                                m_entry.place.begin,
                                place,
                                {Text::noInline, {quotation(tag.name())}},
                                std::nullopt});
}

void Reader::addText(std::string_view text)
{
    if (m_skipped > 0)
        return;
    if (m_takesWords)
        m_words += text;
    if (m_text == nullptr || parent() == Element::placeholder)
        return;
    WrittenText &target = *m_text;
    const auto begin = static_cast<uint32_t>(target.raw.size());
    target.raw += text;
    const auto end = static_cast<uint32_t>(target.raw.size());
    const Range place = event();
    const SourceText &source = m_file.source;
    const bool isVerbatim = source.bytes().substr(place.begin, place.end - place.begin) == text;
    std::vector<Piece> &pieces = target.pieces;
    if (isVerbatim && !pieces.empty() && pieces.back().kind == Piece::Kind::text &&
        pieces.back().place.end == place.begin)
    {
        pieces.back().end = end;
        pieces.back().place.end = place.end;
    }
    else
        pieces.push_back({begin, end, isVerbatim ? Piece::Kind::text : Piece::Kind::replaced, begin, place});
}

void Reader::end()
{
    if (m_skipped > 0)
    {
        --m_skipped;
        return;
    }
    const Open closed = m_open.back();
    m_open.pop_back();
    switch (closed.element)
    {
    case Element::source:
    case Element::target:
        if (m_text != nullptr)
        {
            if (!closed.keepsSpace && m_text->raw.find('\n') != std::string::npos)
                unwrap(*m_text);
            m_text = nullptr;
        }
        else if (m_takesWords)
        {
            if (m_isPrevious && closed.element == Element::source)
                m_entry.previousSource = unescaped(m_words);
            m_takesWords = false;
        }
        break;
    case Element::segment:
        endSegment();
        break;
    case Element::data:
        m_data[m_dataId] = m_words;
        m_takesWords = false;
        break;
    case Element::finding:
        m_takesWords = false;
        m_file.findings.push_back(
            {Rule::structure, 0, m_place.begin, m_place, {Text::poFinding, {unescaped(m_words)}}, std::nullopt});
        break;
    case Element::note:
        m_takesWords = false;
        if (m_hasUnit && m_alternatives == 0)
        {
            if (attributeOf(m_wordsAttributes, "category") == "previous-source")
                m_entry.previousSource = unescaped(m_words);
            else
            {
                for (auto &[name, value] : m_wordsAttributes)
                    if (name == "category") // as 2.0 calls it
                        name = "from";
                m_entry.remarks.notes.push_back({m_wordsAttributes, m_words});
            }
        }
        break;
    case Element::context:
        m_takesWords = false;
        if (m_hasUnit && !m_entry.remarks.contexts.empty() && m_alternatives == 0)
            m_entry.remarks.contexts.back().contexts.push_back({m_wordsAttributes, m_words});
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

/** A translation may leave out the text between sentences, which then is as in the source. */
void Reader::endSegment()
{
    if (m_segmentHasTarget)
        return;
    if (!m_isIgnorable)
    {
        m_lacksTarget = true;
        return;
    }
    std::string &raw = m_entry.written.raw;
    const auto begin = static_cast<uint32_t>(raw.size());
    raw += m_source.raw.substr(std::min(m_segmentBegin, m_source.raw.size()));
    const auto end = static_cast<uint32_t>(raw.size());
    if (end > begin)
        m_entry.written.pieces.push_back({begin, end, Piece::Kind::replaced, begin, m_entry.place});
}

void Reader::endUnit()
{
    m_hasUnit = false;
    if (m_entry.key.number == 0)
        return;
    m_entry.source = unescaped(m_source.raw);
    m_entry.target = unescaped(m_entry.written.raw);
    const bool isEmpty = m_entry.written.raw.empty() && m_entry.written.isComplete; // what was refused is something
    const bool isFinished = m_approved == "yes" || (m_state && *m_state == State::finished && !m_isUnsure);
    const bool isFuzzy = !isFinished && (m_state || m_isUnsure || m_approved == "no");
    if (!m_entry.hasTarget || m_lacksTarget || (isEmpty && !isFinished))
        m_entry.state = State::untranslated;
    else
        m_entry.state = isFuzzy ? State::fuzzy : State::finished;
    // An attribute that tools add to what nobody has translated says nothing.
    if (isEmpty && m_approved == "yes" && !(m_state && *m_state == State::finished))
        m_entry.state = State::untranslated;
    // What is wrong with the text of the reference is not the translator's.
    auto &findings = m_entry.findings;
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [&](const Finding &finding) {
                                      return !m_entry.hasTarget || finding.place.begin < m_entry.written.tag.begin;
                                  }),
                   findings.end());
    m_file.content.entries.push_back(std::move(m_entry));
}

void Reader::findSyntaxError()
{
    const XML_Error error = XML_GetErrorCode(m_parser);
    if (error == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    constexpr unsigned errorsAbove = 300;
    fail({Text::notWellFormed, {textNumbered(errorsAbove + error, XML_ErrorString(error))}});
    if (!m_file.findings.empty() && m_file.findings.back().rule == Rule::xmlSyntax)
    {
        Range &place = m_file.findings.back().place;
        place.begin = std::min(place.begin, m_file.source.bytes().size());
        place.end = place.begin;
        if (place.begin < m_file.source.bytes().size())
            m_file.source.take(place.end, m_file.source.bytes().size());
    }
}

BilingualFile Reader::run()
{
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, void (*)(XML_Parser)> parser(
        XML_ParserCreateNS(nullptr, namespaceEnd), XML_ParserFree);
    if (parser == nullptr)
        throw std::bad_alloc();
    m_parser = parser.get();
    XML_SetUserData(m_parser, this);
    XML_SetElementHandler(
        m_parser,
        [](void *state, const char *name, const char **attributes) {
            self(state).start({name, attributes});
        },
        [](void *state, const char *) { self(state).end(); });
    XML_SetCharacterDataHandler(m_parser, [](void *state, const char *text, int length) {
        self(state).addText({text, static_cast<size_t>(length)});
    });
    XML_SetXmlDeclHandler(m_parser, [](void *state, const char *, const char *encoding, int) {
        if (encoding != nullptr)
            self(state).m_file.source.declareEncoding(encoding);
    });
    // Texts that stand elsewhere, or mean something else than what is written, are no translation.
    XML_SetEntityDeclHandler(m_parser, [](void *state, const char *, int, const char *, int, const char *, const char *,
                                          const char *, const char *) { self(state).fail({Text::entitiesRefused}); });
    XML_SetSkippedEntityHandler(m_parser,
                                [](void *state, const char *, int) { self(state).fail({Text::entitiesRefused}); });
    const std::string_view bytes = m_file.source.bytes();
    if (XML_Parse(m_parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) != XML_STATUS_OK && !m_isFailed)
        findSyntaxError();
    m_parser = nullptr;
    return std::move(m_file);
}

} // namespace

BilingualFile readXliff(SourceText source, Keys keys)
{
    return Reader(std::move(source), keys).run();
}

} // namespace tool::bilingual
