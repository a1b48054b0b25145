#include "check/reading/stray_text.h"

#include "check/telling/finding.h"

#include <cstring>

namespace tool::check
{
namespace
{

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t';
}

/** The offset of the first byte that is no blank. Nearly all of such text is indentation. */
size_t skipBlanks(std::string_view text)
{
    constexpr std::string_view indentation = "        ";
    size_t at = 0;
    while (text.size() - at >= indentation.size() &&
           std::memcmp(text.data() + at, indentation.data(), indentation.size()) == 0)
        at += indentation.size();
    while (at < text.size() && isBlank(text[at]))
        ++at;
    return at;
}

} // namespace

void StrayText::add(std::string_view text, const SourceText &source, Range place)
{
    const size_t begin = skipBlanks(text);
    if (begin == text.size())
        return;
    size_t end = text.size();
    while (isBlank(text[end - 1]))
        --end;
    if (isVerbatim(text, source, place))
        place = {source.behindUtf8(place, begin), source.behindUtf8(place, end)};
    if (!isThere())
    {
        m_beginning = quotation(text.substr(begin, end - begin));
        m_place.begin = place.begin;
    }
    m_place.end = place.end;
}

bool isVerbatim(std::string_view text, const SourceText &source, Range place)
{
    size_t at = place.begin;
    const bool isReference = source.take(at, place.end) == '&' && text[0] != '&';
    return !isReference && source.sizeAsUtf8(place) == text.size();
}

std::optional<Range> mergeMarkAt(const SourceText &source, size_t offset)
{
    constexpr std::u32string_view marks = U"<|=>";
    const size_t size = source.bytes().size();
    if (offset >= size || !source.beginsLine(offset))
        return std::nullopt;
    size_t end = offset;
    const char32_t mark = source.take(end, size);
    if (marks.find(mark) == std::u32string_view::npos)
        return std::nullopt;
    for (size_t count = 1; count < mergeMarkLength; ++count)
        if (end >= size || source.take(end, size) != mark)
            return std::nullopt;
    size_t next = end;
    const char32_t behind = end < size ? source.take(next, size) : '\n';
    return behind == ' ' || behind == '\n' || behind == '\r' ? std::optional(Range{offset, end}) : std::nullopt;
}

} // namespace tool::check
