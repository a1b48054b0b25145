#include "check/reading/xml_fault.h"

#include "check/reading/stray_text.h"

#include <algorithm>
#include <optional>

namespace tool::check
{
namespace
{

/** Where the first character stands, from an offset on, that is not as wanted. */
template <typename IsWanted> size_t behindAll(const SourceText &source, size_t offset, IsWanted isWanted)
{
    for (size_t next = offset; offset < source.bytes().size(); offset = next)
        if (!isWanted(source.take(next, source.bytes().size())))
            break;
    return offset;
}

/** What is wrong with a character that the parser takes none for; nothing where it is not known. */
std::optional<Text> wrongCharacter(const SourceText &source, Range place)
{
    size_t marks = 1; // of a merge; the parser stops at the second
    behindAll(source, place.begin, [&marks](char32_t character) {
        marks += character == '<' ? 1 : 0;
        return character == '<';
    });
    if (marks == mergeMarkLength)
        return Text::mergeMark;
    const std::string_view bytes = source.bytes();
    if (source.encoding() == SourceText::Encoding::utf16le || source.encoding() == SourceText::Encoding::utf16be)
        return std::nullopt;
    size_t at = place.begin;
    if (source.encoding() == SourceText::Encoding::utf8 && at < bytes.size() &&
        source.take(at, bytes.size()) == 0xFFFD && bytes.substr(place.begin, 3) != "\xEF\xBF\xBD")
        return Text::notUtf8;
    const char before = place.begin > 0 ? bytes[place.begin - 1] : ' ';
    const char here = place.begin < bytes.size() ? bytes[place.begin] : ' ';
    if (before == '&' || here == '&')
        return Text::bareAmpersand;
    if (before == '<' || here == '<')
        return Text::bareLess;
    return std::nullopt;
}

} // namespace

XmlFault explainXmlFault(const SourceText &source, XML_Error error, size_t index)
{
    Range place{std::min(index, source.bytes().size()), 0};
    place.end = place.begin;
    if (place.begin < source.bytes().size())
        source.take(place.end, source.bytes().size());
    std::optional<Text> why;
    if (error == XML_ERROR_UNKNOWN_ENCODING)
        place.end =
            behindAll(source, place.begin, [](char32_t character) { return character != '"' && character != '\''; });
    else if (error == XML_ERROR_INVALID_TOKEN)
        why = wrongCharacter(source, place);
    else if (error == XML_ERROR_UNDEFINED_ENTITY)
        why = Text::unknownEntity;
    return {place, why ? Shown(Phrase{*why}) : textOfXmlError(error, XML_ErrorString(error))};
}

} // namespace tool::check
