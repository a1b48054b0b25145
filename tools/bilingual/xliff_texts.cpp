#include "bilingual/xliff_texts.h"

#include "bilingual/message_parts.h"

#include <algorithm>

namespace tool::bilingual
{
namespace
{

using check::Piece;
using check::Range;

/**
 * The bytes of a conversion. A placeholder without a conversion stands for that of its "id": without a limit, a few
 * bytes of a tag could stand for megabytes, again and again.
 */
constexpr size_t longestConversion = 250;

/** Wrapped lines: a line end with the white space around it becomes one blank, at the ends of the text nothing. */
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

} // namespace

void UnitTexts::clear()
{
    *this = UnitTexts();
}

void UnitTexts::add(std::string_view words, Range place, bool isVerbatim)
{
    const auto begin = static_cast<uint32_t>(m_open->raw.size());
    m_open->raw += words;
    const auto end = static_cast<uint32_t>(m_open->raw.size());
    std::vector<Piece> &pieces = m_open->pieces;
    if (isVerbatim && !pieces.empty() && pieces.back().kind == Piece::Kind::text &&
        pieces.back().place.end == place.begin)
    {
        pieces.back().end = end;
        pieces.back().place.end = place.end;
    }
    else
        pieces.push_back({begin, end, isVerbatim ? Piece::Kind::text : Piece::Kind::replaced, begin, place});
}

bool UnitTexts::addPlaceholder(const Tag &tag, Range place)
{
    const std::string id = tag.get("id");
    std::string conversion = tag.get("equiv-text");
    if (conversion.empty())
        conversion = tag.get("equiv");
    if (const auto data = m_data.find(tag.get("dataRef")); data != m_data.end())
        conversion = data->second;
    if (const auto known = m_placeholders.find(id); conversion.empty() && known != m_placeholders.end())
        conversion = known->second;
    if (conversion.empty() || conversion.size() > longestConversion)
        return false;
    if (m_open == &m_source)
        m_placeholders[id] = conversion;
    std::string &raw = m_open->raw;
    const auto begin = static_cast<uint32_t>(raw.size());
    raw += escaped(conversion);
    const size_t bracket = raw.rfind('[');
    const auto position = static_cast<uint32_t>(bracket != std::string::npos && bracket >= begin ? bracket : begin);
    m_open->pieces.push_back({begin, static_cast<uint32_t>(raw.size()), Piece::Kind::placeholder, position, place});
    return true;
}

void UnitTexts::close(bool keepsSpace)
{
    if (!keepsSpace && m_open->raw.find('\n') != std::string::npos)
        unwrap(*m_open);
    m_open = nullptr;
}

void UnitTexts::copySource(size_t begin, Range place)
{
    std::string &raw = m_target.raw;
    const auto from = static_cast<uint32_t>(raw.size());
    raw += m_source.raw.substr(std::min(begin, m_source.raw.size()));
    const auto to = static_cast<uint32_t>(raw.size());
    if (to > from)
        m_target.pieces.push_back({from, to, Piece::Kind::replaced, from, place});
}

} // namespace tool::bilingual
