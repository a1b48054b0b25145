// Parses a message file for the checker, by the steps of the loader; notes what these refuse, and goes on where it can.

#include "check/reading/loadable.h"
#include "check/reading/parsed_file.h"
#include "check/reading/refusal.h"
#include "check/reading/stray_text.h"
#include "check/reading/xml_fault.h"
#include "check/texts/digest.h"
#include "message/grammar/attributes.h"
#include "message/grammar/xml_parser.h"

#include <algorithm>
#include <cstring>
#include <optional>

// Whether an element may start, and what its attributes say, is decided by the library's own steps. Behind an element
// that they refuse the pass goes on as if it were not there; with wrong attributes, as if these were missing.

namespace tool::check
{
namespace
{

constexpr size_t longestText = size_t{1} << 31; // of all messages

constexpr size_t unitDepth = 4; // what is open around a "trans-unit", the document included

} // namespace

/** One pass over a file. */
class Reader
{
public:
    Reader(ParsedFile &parsed, Placeholders placeholders) : m_parsed(parsed)
    {
        if (!m_parser.restart(this))
            throw std::bad_alloc();
        limits.setBytesRead(parsed.m_source.bytes().size());
        m_structure.raw = placeholders == Placeholders::raw;
        m_open.push_back({ELM_UNKNOWN, {}, false});
    }

    void run();

    kelto::XmlLimits limits; // hears of all declarations

private:
    struct OpenElement
    {
        ElementID element; // ELM_UNKNOWN: the document
        Range tag;
        bool isIncomplete; // something in it was skipped
    };

    static Reader &self(void *state) { return *static_cast<Reader *>(state); }
    static void startElement(void *state, const char *name, const char **attributes)
    {
        self(state).start(name, attributes);
    }
    static void endElement(void *state, const char *) { self(state).end(); }
    static void characterData(void *state, const char *text, int length)
    {
        self(state).addText({text, static_cast<size_t>(length)});
    }
    static void xmlDeclaration(void *state, const char *, const char *encoding, int)
    {
        if (encoding != nullptr)
            self(state).m_parsed.m_source.declareEncoding(encoding);
    }
    static void comment(void *state, const char *) { self(state).checkComment(); }
    static void doctype(void *state, const char *, const char *, const char *, int) { self(state).startDoctype(); }

    void start(const char *name, const char **attributes);
    void end();
    void addText(std::string_view text);
    void tellStray();
    bool tellMergeMark(size_t offset);
    void checkComment();
    void startDoctype();

    bool accept(const ElementMapRow &element, const char *name);
    void startFile(const char **attributes, Range tag);
    void startUnit(const char **attributes, Range tag);
    void startSource(Range tag);
    void addPlaceholder(const char **attributes, Range tag);
    void addPiece(Piece::Kind kind, size_t begin, size_t positionBegin, Range place);
    void endSource();
    void endUnit();
    void tellMissing(const OpenElement &closed);
    void finishMessages();
    void checkLimits();
    void findSyntaxError();
    void keep(size_t bytes);
    void stop() { XML_StopParser(m_parser.get(), XML_FALSE); }

    size_t index() const;
    Range event() const;
    void find(Rule rule, Range place, Phrase text, std::optional<Note> note = std::nullopt);

    ParsedFile &m_parsed;
    kelto::Parser m_parser;
    FirstPassState m_structure = {};
    std::vector<OpenElement> m_open;
    size_t m_skipped = 0;      // the elements that are open in one that was refused, itself included
    bool m_hasMessage = false; // the unit has a number
    Message m_message;
    std::optional<CheckerNote> m_note; // that is open
    StrayText m_stray;                 // since the last tag

    bool m_hasDoctype = false;
    Range m_doctype;
    uint64_t m_kept = 0; // bytes of texts and attributes, which a declaration may repeat without end
};

void Reader::find(Rule rule, Range place, Phrase text, std::optional<Note> note)
{
    const bool isInUnit = m_open.size() > unitDepth;
    m_parsed.m_findings.push_back({rule, m_hasMessage ? m_message.id : 0, isInUnit ? m_message.unit.begin : place.begin,
                                   place, std::move(text), std::move(note)});
}

/** The byte at which the current event begins. */
size_t Reader::index() const
{
    return static_cast<size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(m_parser.get()), 0));
}

/** Where in the file the current event is; of what an entity holds, the place of the entity. */
Range Reader::event() const
{
    const size_t begin = index();
    const auto count = static_cast<size_t>(XML_GetCurrentByteCount(m_parser.get()));
    const SourceText &source = m_parsed.m_source;
    size_t end = begin + count;
    if (count == 0)
        for (char32_t character = 0; character != ';' && end < source.bytes().size();)
            character = source.take(end, source.bytes().size());
    return {begin, end};
}

/** Ends the pass where the file gives more than it may. */
void Reader::keep(size_t bytes)
{
    m_kept += bytes;
    if (!limits.allowsText(m_kept))
        stop();
}

bool Reader::accept(const ElementMapRow &element, const char *name)
{
    OpenElement &parent = m_open.back();
    std::optional<Phrase> fault = whyMisplaced(m_structure, parent.element, element, name);
    if (!fault)
        return true;
    parent.isIncomplete = true;
    if (m_open.size() <= unitDepth) // what it holds may be messages
        m_parsed.m_isWhole = false;
    if (parent.element == ELM_SOURCE)
        m_message.isComplete = false;
    find(Rule::structure, event(), std::move(*fault));
    return false;
}

void Reader::start(const char *name, const char **attributes)
{
    const ElementMapRow &element = kelto::findElement(name);
    if (!limits.addElement(element, attributes))
        return;
    if (m_stray.isThere())
        tellStray();
    if (m_skipped > 0 || !accept(element, name))
    {
        ++m_skipped;
        return;
    }
    const bool isAccepted = kelto::takeAttributes(m_structure, element, attributes);
    kelto::openElement(m_structure, element);
    const Range tag = event();
    m_open.push_back({element.id, tag, false});
    if (element.id == ELM_TRANS_UNIT)
        startUnit(attributes, tag);
    else if (element.id == ELM_SOURCE)
        startSource(tag);
    else if (element.id == ELM_X)
        addPlaceholder(attributes, tag);
    else if (element.id == ELM_FILE)
        startFile(attributes, tag);
    else if (element.id == ELM_BODY)
        m_parsed.m_body = tag;
    else if (element.id == ELM_NOTE && CheckerNote::isOne(kelto::findAttribute(attributes, "from")))
        m_note.emplace(tag);
    if (!isAccepted)
        for (AttributeFault &fault : faultsOf(element, attributes))
            find(fault.rule, fault.attribute != nullptr ? m_parsed.locateAttribute(tag, fault.attribute) : tag,
                 std::move(fault.text));
}

void Reader::startFile(const char **attributes, Range tag)
{
    const kelto::FileAttributes file = kelto::readFileAttributes(attributes);
    const auto take = [&](const char *name, const char *value, Attribute &kept) {
        if (value != nullptr && *value != '\0')
            kept = {value, m_parsed.locateAttribute(tag, name)};
    };
    if (file.namesLanguage())
        take("source-language", file.language, m_parsed.m_language);
    take("product-name", file.productName, m_parsed.m_productName);
    take("product-version", file.productVersion, m_parsed.m_productVersion);
}

void Reader::startUnit(const char **attributes, Range tag)
{
    m_structure.sourceSeen = false; // also where the number is refused
    m_message = {};
    m_message.unit = tag;
    m_message.id = kelto::readMessageId(attributes);
    m_hasMessage = m_message.id > 0;
    if (const char *const digest = kelto::findAttribute(attributes, sourceDigest))
        m_message.madeFrom = digest;
    if (const char *const resname = kelto::findAttribute(attributes, "resname"))
    {
        m_message.name = resname;
        m_message.hasName = true;
    }
    const char *const label =
        kelto::findAttribute(attributes, "ts") != nullptr ? kelto::findAttribute(attributes, "id") : nullptr;
    if (label != nullptr)
        m_message.label = label;
    keep(m_message.madeFrom.size() + m_message.name.size() + m_message.label.size());
}

void Reader::startSource(Range tag)
{
    m_message.source = tag;
    m_message.textBegin = m_parsed.m_texts.size();
    m_message.firstPiece = m_parsed.m_pieces.size();
}

void Reader::addPiece(Piece::Kind kind, size_t begin, size_t positionBegin, Range place)
{
    const auto inText = [this](size_t at) { return static_cast<uint32_t>(at - m_message.textBegin); };
    m_parsed.m_pieces.push_back({inText(begin), inText(m_parsed.m_texts.size()), kind, inText(positionBegin), place});
}

void Reader::addPlaceholder(const char **attributes, Range tag)
{
    const kelto::Placeholder placeholder = kelto::readPlaceholder(attributes);
    m_message.hasPlaceholder = true;
    if (!placeholder.isAccepted())
    {
        m_message.isComplete = false;
        return;
    }
    std::string &texts = m_parsed.m_texts;
    const size_t begin = texts.size();
    texts += placeholder.text;
    const size_t positionBegin = texts.size();
    if (!m_structure.raw)
    {
        texts += '[';
        texts += placeholder.position;
        texts += ']';
    }
    addPiece(Piece::Kind::placeholder, begin, positionBegin, tag);
    keep(texts.size() - begin);
}

void Reader::addText(std::string_view text)
{
    const bool isOfMessage = m_skipped == 0 && kelto::takesText(m_structure);
    // A mark in a message is told when its text is checked.
    if ((!isOfMessage && tellMergeMark(event().begin)) || m_skipped > 0)
        return;
    if (m_note)
        m_note->add(text);
    if (!isOfMessage)
    {
        const ElementID parent = m_open.back().element;
        if (parent != ELM_NOTE && parent != ELM_CONTEXT)
            m_stray.add(text, m_parsed.m_source, event());
        return;
    }
    keep(text.size());
    std::string &texts = m_parsed.m_texts;
    if (texts.size() + text.size() > longestText)
        stop();
    const size_t begin = texts.size();
    texts += text;
    const Range place = event();
    const bool isText = isVerbatim(text, m_parsed.m_source, place);
    std::vector<Piece> &pieces = m_parsed.m_pieces;
    if (isText && pieces.size() > m_message.firstPiece && pieces.back().kind == Piece::Kind::text &&
        pieces.back().place.end == place.begin)
    {
        pieces.back().end = static_cast<uint32_t>(texts.size() - m_message.textBegin);
        pieces.back().place.end = place.end;
    }
    else
        addPiece(isText ? Piece::Kind::text : Piece::Kind::replaced, begin, begin, place);
}

void Reader::tellStray()
{
    const ElementID parent = m_open.back().element;
    find(Rule::strayText, m_stray.place(),
         parent == ELM_SOURCE ? Phrase{Text::textBehindContext, {m_stray.beginning()}}
                              : Phrase{Text::textIgnored, {m_stray.beginning(), kelto::rowOf(parent).name}});
    m_stray.clear();
}

/** Whether a merge of two versions left its mark at an offset. */
bool Reader::tellMergeMark(size_t offset)
{
    const std::optional<Range> mark = mergeMarkAt(m_parsed.m_source, offset);
    if (mark)
        find(Rule::strayText, *mark, {Text::mergeMark});
    return mark.has_value();
}

void Reader::checkComment()
{
    const Range place = event();
    for (size_t at = place.begin; at < place.end; m_parsed.m_source.take(at, place.end))
        tellMergeMark(at);
}

void Reader::end()
{
    if (m_skipped > 0)
    {
        --m_skipped;
        return;
    }
    if (m_stray.isThere())
        tellStray();
    const OpenElement closed = m_open.back();
    m_open.pop_back();
    const ElementMapRow &element = kelto::rowOf(closed.element);
    kelto::closeElement(m_structure, element);
    if (closed.element == ELM_SOURCE)
        endSource();
    if (closed.element == ELM_NOTE && m_note)
    {
        m_note->finish(m_message.id, m_message.unit.begin, m_parsed.m_suppressions, m_parsed.m_findings);
        m_note.reset();
    }
    if (!closed.isIncomplete && !kelto::hasWhatItNeeds(m_structure, element))
        tellMissing(closed);
    if (closed.element == ELM_TRANS_UNIT)
        endUnit();
}

void Reader::tellMissing(const OpenElement &closed)
{
    for (const ElementID needed : kelto::elementRules[closed.element].needed)
        if (needed != ELM_UNKNOWN && !kelto::hasStarted(m_structure, kelto::elementRules[needed]))
            find(Rule::structure, closed.tag,
                 {Text::elementMissing, {kelto::rowOf(closed.element).name, kelto::rowOf(needed).name}});
}

void Reader::endUnit()
{
    if (m_hasMessage)
    {
        m_message.isComplete = m_message.isComplete && m_structure.sourceSeen;
        m_parsed.m_messages.push_back(std::move(m_message));
    }
    m_hasMessage = false;
}

void Reader::endSource()
{
    m_message.textEnd = m_parsed.m_texts.size();
    m_message.endPiece = m_parsed.m_pieces.size();
    m_parsed.m_texts += '\0';
}

void Reader::startDoctype()
{
    using namespace std::string_view_literals;
    m_hasDoctype = true;
    const SourceText &source = m_parsed.m_source;
    // Nothing but comments and the XML declaration stands in front of it.
    const bool isWide =
        source.encoding() == SourceText::Encoding::utf16le || source.encoding() == SourceText::Encoding::utf16be;
    const std::string_view name = source.encoding() == SourceText::Encoding::utf16le   ? "<\0!\0D\0O\0"sv
                                  : source.encoding() == SourceText::Encoding::utf16be ? "\0<\0!\0D\0O"sv
                                                                                       : "<!DO"sv;
    const size_t at = source.bytes().rfind(name, index());
    if (at != std::string_view::npos)
        m_doctype = {at, std::min(at + (isWide ? 18 : 9), source.bytes().size())};
    find(Rule::doctype, m_doctype, {Text::hasDoctype});
}

/** Finds messages with the same number, and puts all in order. */
void Reader::finishMessages()
{
    std::vector<Message> &messages = m_parsed.m_messages;
    const auto byNumber = [](const Message &a, const Message &b) { return a.id < b.id; };
    if (!std::is_sorted(messages.begin(), messages.end(), byNumber))
        std::stable_sort(messages.begin(), messages.end(), byNumber);
    const Message *first = nullptr;
    for (const Message &message : messages)
    {
        if (first == nullptr || first->id != message.id)
        {
            first = &message;
            continue;
        }
        m_parsed.m_findings.push_back({Rule::duplicateId, message.id, message.unit.begin, message.unit,
                                       Phrase{Text::numberRepeated, {static_cast<unsigned>(message.id)}},
                                       Note{false, first->unit, {Text::numberUsedFirst}}});
    }
}

/** What only the library knows: whether a file that breaks no rule costs too much to read. */
void Reader::checkLimits()
{
    const auto isError = [](const Finding &finding) { return check::rowOf(finding.rule).severity == Severity::error; };
    const Findings &findings = m_parsed.m_findings;
    const std::string_view bytes = m_parsed.m_source.bytes();
    const bool mayCost =
        m_hasDoctype || bytes.size() > kelto::XmlLimits::longestToken; // a shorter one holds no such token
    if (mayCost && std::none_of(findings.begin(), findings.end(), isError) && !mayBeLoaded(bytes))
        find(Rule::xmlSyntax, m_doctype, {m_hasDoctype ? Text::costsTooMuch : Text::tokenTooLong});
}

void Reader::findSyntaxError()
{
    const XML_Error error = XML_GetErrorCode(m_parser.get());
    m_parsed.m_isWhole = false;
    if (error == XML_ERROR_ABORTED)
    {
        find(Rule::xmlSyntax, m_doctype, {Text::costsTooMuch});
        return;
    }
    if (error == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    const auto [place, why] = explainXmlFault(m_parsed.m_source, error, index());
    if (error == XML_ERROR_TAG_MISMATCH && m_skipped == 0)
        find(Rule::xmlSyntax, place, {Text::notWellFormedIn, {why, kelto::rowOf(m_open.back().element).name}});
    else
        find(Rule::xmlSyntax, place, {Text::notWellFormed, {why}});
}

void Reader::run()
{
    XML_Parser parser = m_parser.get();
    XML_SetElementHandler(parser, startElement, endElement);
    XML_SetCharacterDataHandler(parser, characterData);
    XML_SetXmlDeclHandler(parser, xmlDeclaration);
    XML_SetCommentHandler(parser, comment);
    XML_SetStartDoctypeDeclHandler(parser, doctype);
    const std::string_view bytes = m_parsed.m_source.bytes();
    if (isCompiled(bytes))
    {
        m_parsed.m_isWhole = false;
        find(Rule::xmlSyntax, {}, {Text::compiledCatalog});
        return;
    }
    if (XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) != XML_STATUS_OK)
    {
        if (m_stray.isThere())
            tellStray();
        findSyntaxError();
    }
    finishMessages();
    checkLimits();
}

ParsedFile::ParsedFile(SourceText source, Placeholders placeholders) : m_source(std::move(source))
{
    Reader(*this, placeholders).run();
}

} // namespace tool::check
