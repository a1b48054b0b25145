#include "support/xliff.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <expat.h>
#include <iterator>
#include <random>

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);

namespace
{

constexpr char separator[] = "\f\f";
constexpr size_t separatorBytes = sizeof separator - 1;

} // namespace

MessageFileInput::MessageFileInput(const uint8_t *data, size_t size)
    : first(reinterpret_cast<const char *>(data), size), later(first), changes(false)
{
    const size_t border = first.find(separator);
    if (border == std::string::npos)
        return;
    changes = true;
    later = first.substr(border + separatorBytes);
    first.resize(border);
}

// ---- The model ----

namespace
{

struct Reading
{
    bool raw;
    std::map<int, std::string> messages;
    int id = 0;
    bool inSource = false;
};

const char *attribute(const char **attributes, const char *name)
{
    for (; *attributes != nullptr; attributes += 2)
        if (std::strcmp(*attributes, name) == 0)
            return attributes[1];
    return nullptr;
}

std::string unescaped(const std::string &text)
{
    static const std::map<char, char> meanings = {{'\\', '\\'}, {'t', '\t'}, {'r', '\r'}, {'n', '\n'}, {'"', '"'}};
    std::string result;
    for (size_t i = 0; i < text.size(); ++i)
    {
        const auto meaning = text[i] == '\\' && i + 1 < text.size() ? meanings.find(text[i + 1]) : meanings.end();
        result += meaning != meanings.end() ? meaning->second : text[i];
        i += meaning != meanings.end() ? 1 : 0;
    }
    return result;
}

void startElement(void *state, const char *name, const char **attributes)
{
    auto &reading = *static_cast<Reading *>(state);
    const std::string element = name;
    const char *const ts = attribute(attributes, "ts");
    const char *const id = attribute(attributes, "id");
    reading.inSource = element == "source";
    if (element == "trans-unit")
    {
        const char *const digits = ts != nullptr ? ts : id;
        reading.id = digits != nullptr ? static_cast<int>(std::strtol(digits, nullptr, 10)) : 0;
        reading.messages[reading.id];
    }
    else if (element == "x" && ts != nullptr && id != nullptr)
        reading.messages[reading.id] += reading.raw ? std::string(ts) : ts + ("[" + std::string(id) + "]");
}

void endElement(void *state, const char *name)
{
    auto &reading = *static_cast<Reading *>(state);
    if (std::strcmp(name, "x") == 0)
        reading.inSource = true;
    else if (std::strcmp(name, "source") == 0)
    {
        reading.inSource = false;
        reading.messages[reading.id] = unescaped(reading.messages[reading.id]);
    }
}

void characterData(void *state, const char *text, int length)
{
    auto &reading = *static_cast<Reading *>(state);
    if (reading.inSource)
        reading.messages[reading.id].append(text, static_cast<size_t>(length));
}

} // namespace

std::optional<std::map<int, std::string>> readMessages(const std::string &document, bool raw)
{
    Reading reading = {raw, {}};
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &reading);
    XML_SetElementHandler(parser, startElement, endElement);
    XML_SetCharacterDataHandler(parser, characterData);
    const XML_Status status = XML_Parse(parser, document.data(), static_cast<int>(document.size()), XML_TRUE);
    XML_ParserFree(parser);
    if (status != XML_STATUS_OK)
        return std::nullopt;
    return reading.messages;
}

// ---- The mutator ----

namespace
{

using Random = std::minstd_rand;

size_t below(Random &random, size_t limit)
{
    return limit == 0 ? 0 : random() % limit;
}

template <typename Choices> std::string pick(Random &random, const Choices &choices)
{
    return choices[below(random, std::size(choices))];
}

constexpr const char *elements[] = {"xliff", "file",          "header",  "body", "trans-unit", "source",
                                    "x",     "context-group", "context", "note", "unknown",    "h:x"};

constexpr const char *values[] = {"",
                                  "0",
                                  "1",
                                  "2",
                                  "7",
                                  "12abc",
                                  " +3",
                                  "-1",
                                  "100000",
                                  "2147483647",
                                  "2147483648",
                                  "4294967297",
                                  "99999999999999999999",
                                  "en",
                                  "en-US",
                                  "deu",
                                  "%s",
                                  "%-*.*f",
                                  "\\",
                                  "n\\",
                                  "1.0",
                                  "1234567890123456789",
                                  "12345678901234567890",
                                  "&lt;&#233;",
                                  "&e;"};

constexpr const char *texts[] = {"text",
                                 "\\n\\t\\r\\\"",
                                 "\\\\",
                                 "\\",
                                 "\\q",
                                 "n",
                                 "&amp;",
                                 "&#x1F600;",
                                 "&#0;",
                                 "&e;",
                                 "\xC3\xA9\xE2\x82\xAC",
                                 "\xFF",
                                 "\r\n",
                                 "]]>",
                                 "<![CDATA[\\n<x>]]>",
                                 "<!-- -- -->",
                                 "<?p?>",
                                 "<x ts='%s' id='1'/>",
                                 "<x ts=\"%d\" id=\"2\">t</x>",
                                 "<x/>",
                                 "<note>n</note>",
                                 "<context>c</context>",
                                 "<context-group><context/></context-group>",
                                 "<trans-unit id='3'><source>s</source></trans-unit>",
                                 "<source/>"};

constexpr const char *prologues[] = {"",
                                     "<?xml version='1.0'?>",
                                     "<?xml version='1.0' encoding='ISO-8859-1'?>",
                                     "<?xml version='1.0' encoding='UTF-16'?>",
                                     "\xEF\xBB\xBF",
                                     "<!DOCTYPE xliff [<!ENTITY e 'text'>]>",
                                     "<!DOCTYPE xliff [<!ENTITY e '<x ts=\"%s\" id=\"1\"/>'>]>",
                                     "<!DOCTYPE xliff [<!ENTITY d '&c;&c;'><!ENTITY c 'lol'><!ENTITY e '&d;&d;'>]>",
                                     "<!DOCTYPE xliff [<!ATTLIST trans-unit id CDATA '9'>]>",
                                     "<!DOCTYPE xliff SYSTEM 'other' [<!ENTITY % p SYSTEM 'p'> %p; ]>"};

std::string newDocument(Random &random)
{
    std::string body;
    for (size_t units = below(random, 6); units > 0; --units)
    {
        body += "<trans-unit id='" + std::to_string(1 + below(random, 9)) + "'><source>";
        for (size_t parts = below(random, 5); parts > 0; --parts)
            body += pick(random, texts);
        body += "</source>" + std::string(below(random, 300), ' ') + "</trans-unit>";
    }
    return pick(random, prologues) + "<xliff><file source-language='en-US' product-name='n' product-version='1'>" +
           "<header/><body>" + body + "</body></file></xliff>";
}

/** From a tag, chosen at random, to the end of the next one's or of its own. */
struct Span
{
    size_t begin, length;
};

Span pickSpan(Random &random, const std::string &xml)
{
    size_t begin = xml.find('<', below(random, xml.size()));
    if (begin == std::string::npos)
        begin = xml.find('<');
    if (begin == std::string::npos)
        return {0, 0};
    size_t end = begin;
    for (size_t tags = 1 + below(random, 4); tags > 0 && end != std::string::npos; --tags)
        end = xml.find('>', end + 1);
    return {begin, (end == std::string::npos ? xml.size() : end + 1) - begin};
}

void renameElement(Random &random, std::string &xml)
{
    const Span span = pickSpan(random, xml);
    const size_t begin = span.begin + (xml.compare(span.begin, 2, "</") == 0 ? 2 : 1);
    const size_t end = begin < xml.size() ? xml.find_first_of(" />", begin) : std::string::npos;
    if (span.length > 0 && end != std::string::npos)
        xml.replace(begin, end - begin, pick(random, elements));
}

void setAttribute(Random &random, std::string &xml)
{
    const size_t equals = xml.find('=', below(random, xml.size()));
    if (equals == std::string::npos || equals + 1 >= xml.size())
        return;
    const size_t end = xml.find(xml[equals + 1], equals + 2);
    if (end != std::string::npos)
        xml.replace(equals + 2, end - equals - 2, pick(random, values));
}

void mutateOnce(Random &random, std::string &xml)
{
    switch (below(random, 8))
    {
    case 0:
        xml = newDocument(random);
        break;
    case 1:
        xml.insert(0, pick(random, prologues));
        break;
    case 2:
        xml.insert(below(random, xml.size()), pick(random, texts));
        break;
    case 3:
        renameElement(random, xml);
        break;
    case 4:
        setAttribute(random, xml);
        break;
    case 5:
        if (xml.find(separator) == std::string::npos)
            xml += separator + xml;
        else
            xml.erase(xml.find(separator));
        break;
    case 6:
    {
        const Span span = pickSpan(random, xml);
        xml.erase(span.begin, span.length);
        break;
    }
    default:
    {
        const Span span = pickSpan(random, xml);
        const std::string copy = xml.substr(span.begin, span.length);
        xml.insert(pickSpan(random, xml).begin, copy);
    }
    }
}

} // namespace

size_t mutateMessageFile(uint8_t *data, size_t size, size_t maxSize, unsigned seed)
{
    Random random(seed);
    if (below(random, 3) == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::string xml(reinterpret_cast<char *>(data), size);
    for (size_t changes = 1 + below(random, 4); changes > 0; --changes)
        mutateOnce(random, xml);
    size = std::min(xml.size(), maxSize);
    std::memcpy(data, xml.data(), size);
    return size;
}
