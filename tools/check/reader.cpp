#include "check/catalog.h"
#include "check/digest.h"
#include "check/xml_fault.h"
#include "kelto.h"
#include "memory_file.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <expat.h>
#include <fmt/core.h>
#include <memory>
#include <optional>

namespace tool::check
{
namespace
{

enum class Element : uint8_t
{
    document, // what holds the document element
    xliff,
    file,
    header,
    body,
    transUnit,
    source,
    x,
    contextGroup,
    context,
    note
};

constexpr unsigned bit(Element element)
{
    return 1U << static_cast<unsigned>(element);
}

struct ElementRow
{
    const char *name;
    unsigned parents;    // bits of the elements in which it may stand
    bool isSingle;       // at most once in its parent
    unsigned needed;     // bits of the elements that it must hold
    const char *belongs; // in which it is at home
};

/** By Element. */
constexpr ElementRow elements[] = {
    {"", 0, false, 0, ""},
    {"xliff", bit(Element::document), true, bit(Element::file), ""},
    {"file", bit(Element::xliff), true, bit(Element::header) | bit(Element::body), "xliff"},
    {"header", bit(Element::file), true, 0, "file"},
    {"body", bit(Element::file), true, 0, "file"},
    {"trans-unit", bit(Element::body), false, bit(Element::source), "body"},
    {"source", bit(Element::transUnit), true, 0, "trans-unit"},
    {"x", bit(Element::source), false, 0, "source"},
    {"context-group", bit(Element::transUnit), false, 0, "trans-unit"},
    {"context", bit(Element::source) | bit(Element::contextGroup) | bit(Element::note), false, 0, "context-group"},
    {"note", bit(Element::transUnit), false, 0, "trans-unit"},
};

const ElementRow &rowOf(Element element)
{
    return elements[static_cast<size_t>(element)];
}

/** Element::document for a name that is none. */
Element findElement(const char *name)
{
    constexpr Element frequent[] = {Element::transUnit, Element::source, Element::x,     Element::contextGroup,
                                    Element::context,   Element::note,   Element::xliff, Element::file,
                                    Element::header,    Element::body};
    for (const Element element : frequent)
        if (name[0] == rowOf(element).name[0] && std::strcmp(name, rowOf(element).name) == 0)
            return element;
    return Element::document;
}

const char *findAttribute(const char **attributes, const char *name)
{
    for (; attributes[0] != nullptr; attributes += 2)
        if (std::strcmp(attributes[0], name) == 0)
            return attributes[1];
    return nullptr;
}

bool isEmpty(const char *value)
{
    return value == nullptr || *value == '\0';
}

struct FreeParser
{
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserOwner = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser>;

/** Whether the library loads these bytes, at the cost that it allows; also where that cannot be found out. */
bool libraryLoads(std::string_view bytes)
{
    const MemoryFile file(bytes);
    if (!file.isThere())
        return true;
    std::string path = file.path();
    MessageTable *table = nullptr;
    const int result = KTLoadMessages(path.data(), &table);
    if (result == 0)
        KTFreeMessages(table);
    return result != KT_ERR_BAD_MSG_FILE;
}

/** Whether these bytes are what KTCompileMessages() makes, which people may take for a message file. */
bool isCompiled(std::string_view bytes)
{
    constexpr std::string_view magic = "\x89KTC";
    return bytes.substr(0, magic.size()) == magic;
}

/** What parts two versions of a file, at the beginning of a line; nothing where no such mark stands at the offset. */
std::optional<Range> mergeMarkAt(const SourceText &source, size_t offset)
{
    constexpr std::u32string_view marks = U"<|=>";
    constexpr size_t markLength = 7;
    const size_t size = source.bytes().size();
    if (offset >= size || !source.beginsLine(offset))
        return std::nullopt;
    size_t end = offset;
    const char32_t mark = source.take(end, size);
    if (marks.find(mark) == std::u32string_view::npos)
        return std::nullopt;
    for (size_t count = 1; count < markLength; ++count)
        if (end >= size || source.take(end, size) != mark)
            return std::nullopt;
    size_t next = end;
    const char32_t behind = end < size ? source.take(next, size) : '\n';
    return behind == ' ' || behind == '\n' || behind == '\r' ? std::optional(Range{offset, end}) : std::nullopt;
}

// Where the library refuses a document type, what is read on its behalf is limited to what costs nothing to speak of.
constexpr size_t mostNestedEntities = 100;
constexpr size_t mostDefaults = 250;
constexpr size_t unquestionedBytes = size_t{8} << 20;
constexpr size_t mostExpansion = 100;

// Files with a longer token than this are refused for it; files that are shorter cannot hold one.
constexpr size_t shortFile = size_t{8} << 20;

constexpr size_t longestText = size_t{1} << 31;

constexpr size_t unitDepth = 4; // what is open around a "trans-unit", the document included

} // namespace

/** One pass over a file. */
class Reader
{
public:
    Reader(Catalog &catalog, Catalog::Placeholders placeholders)
        : m_catalog(catalog), m_isRaw(placeholders == Catalog::Placeholders::raw), m_parser(XML_ParserCreate(nullptr))
    {
        if (m_parser == nullptr)
            throw std::bad_alloc();
        m_open.push_back({Element::document, {}, 0, false});
    }

    void run();

private:
    struct OpenElement
    {
        Element element;
        Range tag;
        unsigned held;     // bits of the elements that it holds
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
        self(state).addText(text, static_cast<size_t>(length));
    }
    static void xmlDeclaration(void *state, const char *, const char *encoding, int)
    {
        if (encoding != nullptr)
            self(state).m_catalog.m_source.declareEncoding(encoding);
    }
    static void comment(void *state, const char *) { self(state).checkComment(); }
    static void doctype(void *state, const char *, const char *, const char *, int) { self(state).startDoctype(); }
    static void entity(void *state, const char *, int, const char *value, int length, const char *, const char *,
                       const char *, const char *)
    {
        Reader &reader = self(state);
        if (value != nullptr && std::memchr(value, '&', static_cast<size_t>(length)) != nullptr)
            reader.limit(++reader.m_nestedEntities <= mostNestedEntities);
    }
    static void attributeList(void *state, const char *, const char *, const char *, const char *defaultValue, int)
    {
        if (defaultValue != nullptr)
            self(state).limit(++self(state).m_defaults <= mostDefaults);
    }

    void start(const char *name, const char **attributes);
    void end();
    void addText(const char *text, size_t length);
    void addStray(std::string_view text);
    void tellStray();
    bool tellMergeMark(size_t offset);
    void checkComment();
    void startDoctype();
    void limit(bool isKept);

    bool accept(Element element, const char *name);
    void startFile(const char **attributes, Range tag);
    void startUnit(const char **attributes, Range tag);
    void addPlaceholder(const char **attributes, Range tag);
    void addPiece(Piece::Kind kind, size_t begin, size_t positionBegin, Range place);
    bool isVerbatim(std::string_view text, Range place) const;
    void endSource();
    void finishMessages();
    void checkLimits();
    void findSyntaxError();

    Range event() const;
    Message *message() { return m_hasMessage ? &m_message : nullptr; }
    void find(Rule rule, Range place, Phrase text, std::optional<Note> note = std::nullopt);
    bool needAttribute(const char **attributes, const char *name, const char *element, Range tag);

    Catalog &m_catalog;
    bool m_isRaw;
    ParserOwner m_parser;
    std::vector<OpenElement> m_open;
    size_t m_skipped = 0;      // the elements that are open in one that was refused, itself included
    bool m_hasMessage = false; // the unit has a number
    Message m_message;
    bool m_takesText = false;
    std::optional<CheckerNote> m_note; // that is open
    std::string m_stray;               // how the text begins that is ignored here; empty where there is none
    Range m_strayPlace;

    bool m_hasDoctype = false;
    Range m_doctype;
    bool m_isLimited = false;
    size_t m_nestedEntities = 0;
    size_t m_defaults = 0;
    size_t m_expanded = 0; // the bytes that the parser has handed out
};

void Reader::find(Rule rule, Range place, Phrase text, std::optional<Note> note)
{
    const bool isInUnit = m_open.size() > unitDepth;
    m_catalog.m_findings.push_back({rule, m_hasMessage ? m_message.id : 0,
                                    isInUnit ? m_message.unit.begin : place.begin, place, std::move(text),
                                    std::move(note)});
}

/** Where in the file the current event is; of what an entity holds, the place of the entity. */
Range Reader::event() const
{
    const auto begin = static_cast<size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(m_parser.get()), 0));
    const auto count = static_cast<size_t>(XML_GetCurrentByteCount(m_parser.get()));
    const SourceText &source = m_catalog.m_source;
    size_t end = begin + count;
    if (count == 0)
        for (char32_t character = 0; character != ';' && end < source.bytes().size();)
            character = source.take(end, source.bytes().size());
    return {begin, end};
}

bool Reader::accept(Element element, const char *name)
{
    OpenElement &parent = m_open.back();
    const ElementRow &row = rowOf(element);
    const char *const parentName = rowOf(parent.element).name;
    std::optional<Phrase> fault;
    if (parent.element == Element::document && element != Element::xliff)
        fault = {Text::xliffExpected, {quotation(name)}};
    else if (element == Element::document)
        fault = {Text::unknownElement, {quotation(name)}};
    else if (element == Element::xliff && parent.element != Element::document)
        fault = {Text::xliffInside, {parentName}};
    else if ((row.parents & bit(parent.element)) == 0)
        fault = {Text::misplacedElement, {name, parentName, row.belongs}};
    else if (row.isSingle && (parent.held & bit(element)) != 0)
        fault = {Text::secondElement, {name, parentName}};
    else if (parent.element == Element::transUnit && element != Element::source &&
             (parent.held & bit(Element::source)) == 0)
        fault = {Text::inFrontOfSource, {name}};
    else if (element == Element::x && (parent.held & bit(Element::context)) != 0)
        fault = {Text::behindContext};
    if (!fault)
    {
        parent.held |= bit(element);
        return true;
    }
    parent.isIncomplete = true;
    if (m_open.size() < unitDepth) // what it holds may be messages
        m_catalog.m_isWhole = false;
    if (parent.element == Element::source)
        m_message.isComplete = false;
    find(Rule::structure, event(), std::move(*fault));
    return false;
}

void Reader::start(const char *name, const char **attributes)
{
    if (m_isLimited)
        for (const char **attribute = attributes; *attribute != nullptr; ++attribute)
            m_expanded += std::strlen(*attribute);
    limit(true);
    if (!m_stray.empty())
        tellStray();
    const Element element = m_skipped == 0 ? findElement(name) : Element::document;
    if (m_skipped > 0 || !accept(element, name))
    {
        ++m_skipped;
        return;
    }
    const bool needsPlace = element != Element::context && element != Element::note && element != Element::contextGroup;
    const Range tag = needsPlace ? event() : Range{};
    m_open.push_back({element, tag, 0, false});
    m_takesText = element == Element::source;
    if (element == Element::transUnit)
        startUnit(attributes, tag);
    else if (element == Element::source)
    {
        m_message.source = tag;
        m_message.textBegin = m_catalog.m_texts.size();
        m_message.firstPiece = m_catalog.m_pieces.size();
    }
    else if (element == Element::x)
        addPlaceholder(attributes, tag);
    else if (element == Element::file)
        startFile(attributes, tag);
    else if (element == Element::body)
        m_catalog.m_body = tag;
    else if (element == Element::note && CheckerNote::isOne(findAttribute(attributes, "from")))
        m_note.emplace(event());
}

bool Reader::needAttribute(const char **attributes, const char *name, const char *element, Range tag)
{
    const char *const value = findAttribute(attributes, name);
    if (!isEmpty(value))
        return true;
    if (value != nullptr)
        find(Rule::attributeMissing, m_catalog.locateAttribute(tag, name), {Text::attributeEmpty, {element, name}});
    else
        find(Rule::attributeMissing, tag, {Text::attributeMissing, {element, name}});
    return false;
}

void Reader::startFile(const char **attributes, Range tag)
{
    if (const char *const language = findAttribute(attributes, "source-language"))
    {
        const size_t length = std::strlen(language);
        const Range place = m_catalog.locateAttribute(tag, "source-language");
        if (length == 2 || length == 5)
            m_catalog.m_language = {language, place};
        else
            find(Rule::language, place, {Text::badLanguage, {quotation(language)}});
    }
    else
        needAttribute(attributes, "source-language", "file", tag);
    for (const auto &[name, kept] : {std::pair("product-name", &m_catalog.m_productName),
                                     std::pair("product-version", &m_catalog.m_productVersion)})
        if (needAttribute(attributes, name, "file", tag))
            *kept = {findAttribute(attributes, name), m_catalog.locateAttribute(tag, name)};
}

int messageId(const char *text)
{
    return static_cast<int>(static_cast<uint32_t>(std::strtol(text, nullptr, 10)));
}

void Reader::startUnit(const char **attributes, Range tag)
{
    m_message = {};
    m_message.unit = tag;
    const char *name = "ts";
    const char *text = findAttribute(attributes, name);
    if (text == nullptr)
        text = findAttribute(attributes, name = "id");
    m_message.id = text != nullptr ? messageId(text) : 0;
    m_hasMessage = m_message.id > 0;
    if (text == nullptr)
        find(Rule::attributeMissing, tag, {Text::numberMissing});
    else if (!m_hasMessage)
        find(Rule::badId, m_catalog.locateAttribute(tag, name), {Text::badNumber, {quotation(text)}});
    if (const char *const digest = findAttribute(attributes, sourceDigest))
        m_message.madeFrom = digest;
    if (const char *const resname = findAttribute(attributes, "resname"))
    {
        m_message.name = resname;
        m_message.hasName = true;
    }
}

void Reader::addPiece(Piece::Kind kind, size_t begin, size_t positionBegin, Range place)
{
    const auto inText = [this](size_t at) { return static_cast<uint32_t>(at - m_message.textBegin); };
    m_catalog.m_pieces.push_back({inText(begin), inText(m_catalog.m_texts.size()), kind, inText(positionBegin), place});
}

void Reader::addPlaceholder(const char **attributes, Range tag)
{
    const bool hasText = needAttribute(attributes, "ts", "x", tag);
    const bool hasPosition = needAttribute(attributes, "id", "x", tag);
    m_message.hasPlaceholder = true;
    if (!hasText || !hasPosition)
    {
        m_message.isComplete = false;
        return;
    }
    std::string &texts = m_catalog.m_texts;
    const size_t begin = texts.size();
    texts += findAttribute(attributes, "ts");
    const size_t positionBegin = texts.size();
    if (!m_isRaw)
    {
        texts += '[';
        texts += findAttribute(attributes, "id");
        texts += ']';
    }
    addPiece(Piece::Kind::placeholder, begin, positionBegin, tag);
}

/** Whether a text stands in the file as it is, so that its bytes can be told apart. */
bool Reader::isVerbatim(std::string_view text, Range place) const
{
    const SourceText &source = m_catalog.m_source;
    size_t at = place.begin;
    const bool isReference = source.take(at, place.end) == '&' && text[0] != '&';
    return !isReference && source.sizeAsUtf8(place) == text.size();
}

void Reader::addText(const char *text, size_t length)
{
    if (m_isLimited)
    {
        m_expanded += length;
        limit(true);
    }
    const bool isOfMessage = m_skipped == 0 && m_takesText; // a mark in there is told when its text is checked
    if ((!isOfMessage && tellMergeMark(event().begin)) || m_skipped > 0)
        return;
    if (m_note)
        m_note->add({text, length});
    if (!m_takesText)
    {
        addStray({text, length});
        return;
    }
    std::string &texts = m_catalog.m_texts;
    if (texts.size() + length > longestText)
        XML_StopParser(m_parser.get(), XML_FALSE);
    const size_t begin = texts.size();
    texts.append(text, length);
    const Range place = event();
    const bool isText = isVerbatim({text, length}, place);
    std::vector<Piece> &pieces = m_catalog.m_pieces;
    if (isText && pieces.size() > m_message.firstPiece && pieces.back().kind == Piece::Kind::text &&
        pieces.back().place.end == place.begin)
    {
        pieces.back().end = static_cast<uint32_t>(texts.size() - m_message.textBegin);
        pieces.back().place.end = place.end;
    }
    else
        addPiece(isText ? Piece::Kind::text : Piece::Kind::replaced, begin, begin, place);
}

/** Takes note of text that is no part of a message and not meant for people either. */
void Reader::addStray(std::string_view text)
{
    const auto isBlank = [](char byte) { return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t'; };
    constexpr std::string_view indentation = "        ";
    size_t begin = 0;
    while (text.size() - begin >= indentation.size() &&
           std::memcmp(text.data() + begin, indentation.data(), indentation.size()) == 0)
        begin += indentation.size();
    while (begin < text.size() && isBlank(text[begin]))
        ++begin;
    const Element parent = m_open.back().element;
    if (begin == text.size() || parent == Element::note || parent == Element::context)
        return;
    size_t end = text.size();
    while (isBlank(text[end - 1]))
        --end;
    Range place = event();
    if (isVerbatim(text, place))
        place = {m_catalog.m_source.behindUtf8(place, begin), m_catalog.m_source.behindUtf8(place, end)};
    if (m_stray.empty())
    {
        m_stray = quotation(text.substr(begin, end - begin));
        m_strayPlace.begin = place.begin;
    }
    m_strayPlace.end = place.end;
}

void Reader::tellStray()
{
    const Element parent = m_open.back().element;
    find(Rule::strayText, m_strayPlace,
         parent == Element::source ? Phrase{Text::textBehindContext, {m_stray}}
                                   : Phrase{Text::textIgnored, {m_stray, rowOf(parent).name}});
    m_stray.clear();
}

/** Whether a merge of two versions left its mark at an offset. */
bool Reader::tellMergeMark(size_t offset)
{
    const std::optional<Range> mark = mergeMarkAt(m_catalog.m_source, offset);
    if (mark)
        find(Rule::strayText, *mark, {Text::mergeMark});
    return mark.has_value();
}

void Reader::checkComment()
{
    const Range place = event();
    for (size_t at = place.begin; at < place.end; m_catalog.m_source.take(at, place.end))
        tellMergeMark(at);
}

void Reader::end()
{
    if (m_skipped > 0)
    {
        --m_skipped;
        return;
    }
    if (!m_stray.empty())
        tellStray();
    const OpenElement closed = m_open.back();
    m_open.pop_back();
    m_takesText = m_open.back().element == Element::source && (m_open.back().held & bit(Element::context)) == 0;
    if (closed.element == Element::source)
        endSource();
    if (closed.element == Element::note && m_note)
    {
        m_note->finish(m_message.id, m_message.unit.begin, m_catalog.m_suppressions, m_catalog.m_findings);
        m_note.reset();
    }
    const unsigned missing = rowOf(closed.element).needed & ~closed.held;
    if (missing != 0 && !closed.isIncomplete)
        for (const Element element : {Element::file, Element::header, Element::body, Element::source})
            if ((missing & bit(element)) != 0)
                find(Rule::structure, closed.tag,
                     {Text::elementMissing, {rowOf(closed.element).name, rowOf(element).name}});
    if (closed.element == Element::transUnit)
    {
        if (m_hasMessage)
        {
            m_message.isComplete = m_message.isComplete && (closed.held & bit(Element::source)) != 0;
            m_catalog.m_messages.push_back(std::move(m_message));
        }
        m_hasMessage = false;
    }
}

void Reader::endSource()
{
    m_message.textEnd = m_catalog.m_texts.size();
    m_message.endPiece = m_catalog.m_pieces.size();
    m_catalog.m_texts += '\0';
}

void Reader::startDoctype()
{
    using namespace std::string_view_literals;
    m_hasDoctype = true;
    const SourceText &source = m_catalog.m_source;
    m_doctype = {};
    size_t at = 0;
    const size_t size = source.bytes().size();
    // Nothing but comments and the XML declaration stands in front of it.
    const bool isWide =
        source.encoding() == SourceText::Encoding::utf16le || source.encoding() == SourceText::Encoding::utf16be;
    const std::string_view name = source.encoding() == SourceText::Encoding::utf16le   ? "<\0!\0D\0O\0"sv
                                  : source.encoding() == SourceText::Encoding::utf16be ? "\0<\0!\0D\0O"sv
                                                                                       : "<!DO"sv;
    const auto eventAt = static_cast<size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(m_parser.get()), 0));
    at = source.bytes().rfind(name, eventAt);
    if (at != std::string_view::npos)
        m_doctype = {at, std::min(at + (isWide ? 18 : 9), size)};
    find(Rule::doctype, m_doctype, {Text::hasDoctype});
    m_isLimited = !libraryLoads(source.bytes());
}

/** Ends the pass where a limit is not kept. */
void Reader::limit(bool isKept)
{
    const bool isTooLong =
        m_expanded > unquestionedBytes && m_expanded / mostExpansion > m_catalog.m_source.bytes().size();
    if (m_isLimited && (!isKept || isTooLong))
        XML_StopParser(m_parser.get(), XML_FALSE);
}

/** Finds messages with the same number, and puts all in order. */
void Reader::finishMessages()
{
    std::vector<Message> &messages = m_catalog.m_messages;
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
        m_catalog.m_findings.push_back({Rule::duplicateId, message.id, message.unit.begin, message.unit,
                                        Phrase{Text::numberRepeated, {static_cast<unsigned>(message.id)}},
                                        Note{false, first->unit, {Text::numberUsedFirst}}});
    }
}

/** What only the library knows: whether a file that breaks no rule costs too much to read. */
void Reader::checkLimits()
{
    const auto isError = [](const Finding &finding) { return check::rowOf(finding.rule).severity == Severity::error; };
    const Findings &findings = m_catalog.m_findings;
    const std::string_view bytes = m_catalog.m_source.bytes();
    const bool mayCost = m_isLimited || bytes.size() > shortFile;
    if (mayCost && std::none_of(findings.begin(), findings.end(), isError) && !libraryLoads(bytes))
        find(Rule::xmlSyntax, m_doctype, {m_hasDoctype ? Text::costsTooMuch : Text::tokenTooLong});
}

void Reader::findSyntaxError()
{
    const XML_Error error = XML_GetErrorCode(m_parser.get());
    m_catalog.m_isWhole = false;
    if (error == XML_ERROR_ABORTED)
    {
        find(Rule::xmlSyntax, m_doctype, {Text::costsTooMuch});
        return;
    }
    if (error == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    const auto index = static_cast<size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(m_parser.get()), 0));
    const auto [place, why] = explainXmlFault(m_catalog.m_source, error, index);
    if (error == XML_ERROR_TAG_MISMATCH && m_skipped == 0)
        find(Rule::xmlSyntax, place, {Text::notWellFormedIn, {why, rowOf(m_open.back().element).name}});
    else
        find(Rule::xmlSyntax, place, {Text::notWellFormed, {why}});
}

void Reader::run()
{
    XML_Parser parser = m_parser.get();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, startElement, endElement);
    XML_SetCharacterDataHandler(parser, characterData);
    XML_SetXmlDeclHandler(parser, xmlDeclaration);
    XML_SetCommentHandler(parser, comment);
    XML_SetStartDoctypeDeclHandler(parser, doctype);
    XML_SetEntityDeclHandler(parser, entity);
    XML_SetAttlistDeclHandler(parser, attributeList);
    const std::string_view bytes = m_catalog.m_source.bytes();
    if (isCompiled(bytes))
    {
        m_catalog.m_isWhole = false;
        find(Rule::xmlSyntax, {}, {Text::compiledCatalog});
        return;
    }
    if (XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) != XML_STATUS_OK)
    {
        if (!m_stray.empty())
            tellStray();
        findSyntaxError();
    }
    finishMessages();
    checkLimits();
}

Catalog::Catalog(SourceText source, Placeholders placeholders) : m_source(std::move(source))
{
    Reader(*this, placeholders).run();
}

} // namespace tool::check
