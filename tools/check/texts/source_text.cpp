#include "check/texts/source_text.h"

#include "check/texts/utf8.h"

#include <algorithm>
#include <strings.h>
#include <unicode/utf16.h>

// A place is found by its line, in an ascending list of the offsets at which lines begin, and its column by the code
// points in front of it: their number is known at the beginning of each block of bytes and counted from there on.

namespace tool::check
{
namespace
{

constexpr size_t blockBytes = 512; // even, so that no unit of two bytes is cut

constexpr size_t longestShownLine = 160;
constexpr size_t shownBefore = 60;
constexpr size_t shownBehind = 60;

bool startsWith(std::string_view bytes, std::string_view prefix)
{
    return bytes.substr(0, prefix.size()) == prefix;
}

} // namespace

// As the XML parser tells them apart.
SourceText::SourceText(std::string name, std::string bytes) : m_name(std::move(name)), m_bytes(std::move(bytes))
{
    using namespace std::string_view_literals;
    struct Row
    {
        std::string_view prefix;
        Encoding encoding;
        size_t markBytes;
    };
    constexpr Row rows[] = {{"\xEF\xBB\xBF"sv, Encoding::utf8, 3},
                            {"\xFF\xFE"sv, Encoding::utf16le, 2},
                            {"\xFE\xFF"sv, Encoding::utf16be, 2},
                            {"<\0"sv, Encoding::utf16le, 0},
                            {"\0"sv, Encoding::utf16be, 0}};
    for (const Row &row : rows)
        if (startsWith(m_bytes, row.prefix))
        {
            m_encoding = row.encoding;
            m_begin = row.markBytes;
            return;
        }
}

void SourceText::declareEncoding(std::string_view name)
{
    if (m_encoding == Encoding::utf8 && strcasecmp(std::string(name).c_str(), "ISO-8859-1") == 0)
        m_encoding = Encoding::latin1;
}

char32_t SourceText::unitAt(size_t offset) const
{
    const auto byte = [this](size_t at) { return static_cast<unsigned char>(at < m_bytes.size() ? m_bytes[at] : 0); };
    switch (m_encoding)
    {
    case Encoding::utf16le:
        return static_cast<char32_t>(byte(offset) | byte(offset + 1) << 8);
    case Encoding::utf16be:
        return static_cast<char32_t>(byte(offset) << 8 | byte(offset + 1));
    default:
        return byte(offset);
    }
}

char32_t SourceText::take(size_t &offset, size_t end) const
{
    end = std::min(end, m_bytes.size());
    if (m_encoding == Encoding::utf8)
        return takeUtf8(bytes().substr(0, end), offset);
    const char32_t unit = unitAt(offset);
    offset = std::min(offset + (isUtf16() ? 2 : 1), m_bytes.size()); // the last unit may be half of one
    if (!isUtf16() || !U16_IS_SURROGATE(unit))
        return unit;
    const char32_t next = offset < end ? unitAt(offset) : 0;
    if (!U16_IS_LEAD(unit) || !U16_IS_TRAIL(next))
        return 0xFFFD;
    offset += 2;
    return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, next));
}

bool SourceText::beginsLine(size_t offset) const
{
    if (offset <= m_begin)
        return true;
    const char32_t before = unitAt(offset - (isUtf16() ? 2 : 1));
    return before == '\n' || before == '\r';
}

size_t SourceText::sizeAsUtf8(Range range) const
{
    if (m_encoding == Encoding::utf8)
        return range.end - range.begin;
    size_t size = 0;
    for (size_t at = range.begin; at < range.end;)
        size += utf8Size(take(at, range.end));
    return size;
}

size_t SourceText::behindUtf8(Range range, size_t utf8Bytes) const
{
    if (m_encoding == Encoding::utf8)
        return std::min(range.begin + utf8Bytes, range.end);
    size_t at = range.begin;
    for (size_t size = 0; size < utf8Bytes && at < range.end;)
        size += utf8Size(take(at, range.end));
    return at;
}

size_t SourceText::countCodePoints(size_t begin, size_t end) const
{
    const auto *const bytes = m_bytes.data();
    if (m_encoding == Encoding::utf8)
        return static_cast<size_t>(
            std::count_if(bytes + begin, bytes + end, [](char byte) { return !isContinuation(byte); }));
    if (m_encoding == Encoding::latin1)
        return end - begin;
    size_t count = 0;
    for (size_t at = begin; at < end; at += 2)
        count += U16_IS_TRAIL(unitAt(at)) ? 0 : 1;
    return count;
}

void SourceText::index()
{
    const size_t size = m_bytes.size();
    const size_t unit = isUtf16() ? 2 : 1;
    m_codePoints.assign(1, 0);
    for (size_t begin = 0; begin < size; begin += blockBytes)
        m_codePoints.push_back(m_codePoints.back() + countCodePoints(begin, std::min(begin + blockBytes, size)));
    m_lines.assign(1, m_begin);
    for (size_t at = m_begin; at < size; at += unit)
    {
        const char32_t character = unitAt(at);
        if (character == '\n' || (character == '\r' && unitAt(at + unit) != '\n'))
            m_lines.push_back(std::min(at + unit, size));
    }
}

size_t SourceText::codePointsBefore(size_t offset) const
{
    const size_t block = offset / blockBytes;
    return m_codePoints[block] + countCodePoints(block * blockBytes, offset);
}

Position SourceText::position(size_t offset) const
{
    offset = std::max(m_begin, std::min(offset, m_bytes.size()));
    const auto next = std::upper_bound(m_lines.begin(), m_lines.end(), offset);
    const size_t begin = next[-1];
    return {static_cast<size_t>(next - m_lines.begin()), codePointsBefore(offset) - codePointsBefore(begin) + 1};
}

size_t SourceText::stepBack(size_t offset, size_t floor, size_t count) const
{
    const size_t unit = isUtf16() ? 2 : 1;
    for (; count > 0 && offset > floor; --count)
    {
        offset -= unit;
        const auto isTrail = [this](size_t at) {
            return isUtf16() ? U16_IS_TRAIL(unitAt(at)) : m_encoding == Encoding::utf8 && isContinuation(m_bytes[at]);
        };
        while (offset > floor && isTrail(offset))
            offset -= unit;
    }
    return offset;
}

size_t SourceText::lineEnd(size_t line) const
{
    const size_t unit = isUtf16() ? 2 : 1;
    size_t end = line < m_lines.size() ? m_lines[line] : m_bytes.size();
    while (end >= m_lines[line - 1] + unit && (unitAt(end - unit) == '\n' || unitAt(end - unit) == '\r'))
        end -= unit;
    return end;
}

std::u16string SourceText::decode(size_t begin, size_t end) const
{
    std::u16string text;
    while (begin < end)
    {
        const char32_t character = take(begin, end);
        if (U_IS_SUPPLEMENTARY(character))
        {
            text += static_cast<char16_t>(U16_LEAD(character));
            text += static_cast<char16_t>(U16_TRAIL(character));
        }
        else
            text += character == '\t' ? u' ' : static_cast<char16_t>(character);
    }
    return text;
}

Excerpt SourceText::excerpt(Range range) const
{
    const Position place = position(range.begin);
    const size_t lineBegin = m_lines[place.line - 1];
    const size_t end = lineEnd(place.line);
    const size_t begin = std::min(std::max(range.begin, lineBegin), end);
    const size_t markEnd = std::max(begin, std::min(range.end, end));

    size_t shownFrom = lineBegin;
    size_t shownTo = end;
    size_t shownMarkTo = markEnd;
    const size_t most = longestShownLine * (isUtf16() ? 2 : 1);
    if (end - lineBegin > most) // what is shorter in bytes is so in code points too
    {
        const auto stepForward = [this, end](size_t at, size_t count) {
            for (; count > 0 && at < end; --count)
                take(at, end);
            return at;
        };
        shownFrom = stepBack(begin, lineBegin, shownBefore);
        shownMarkTo = std::min(markEnd, stepForward(begin, longestShownLine - shownBefore));
        shownTo = shownMarkTo < markEnd ? shownMarkTo : stepForward(markEnd, shownBehind);
    }
    // NOLINTNEXTLINE(readability-suspicious-call-argument); the line begins in front of its mark
    Excerpt excerpt{decode(shownFrom, begin), decode(begin, shownMarkTo), decode(shownMarkTo, shownTo)};
    if (shownFrom > lineBegin)
        excerpt.before.insert(0, u"...");
    if (shownTo < end)
        excerpt.behind += u"...";
    return excerpt;
}

std::string quotation(std::string_view utf8Text)
{
    constexpr size_t longest = 200;
    if (utf8Text.size() <= longest)
        return std::string(utf8Text);
    size_t end = longest;
    while (isContinuation(utf8Text[end]))
        --end;
    return std::string(utf8Text.substr(0, end)) + "...";
}

} // namespace tool::check
