#include "bilingual/xliff/xliff_texts.h"

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

bool isSpacing(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\n';
}

/** A part of a text that a tool has put in. */
struct Cut
{
    size_t begin, end;
    const char *instead;
};

/** Appends what is left of a piece of the file's own characters: what stands between the cuts, each at its place. */
void divide(const Piece &piece, const std::vector<Cut> &cuts, const std::vector<uint32_t> &places,
            std::vector<Piece> &parts)
{
    size_t at = piece.begin;
    const auto add = [&](size_t end, Piece::Kind kind) {
        const size_t offset = piece.place.begin - piece.begin;
        if (places[at] < places[end])
            parts.push_back({places[at], places[end], kind, places[at], {offset + at, offset + end}});
        at = end;
    };
    auto cut = std::partition_point(cuts.begin(), cuts.end(), [at](const Cut &other) { return other.end <= at; });
    for (; cut != cuts.end() && cut->begin < piece.end; ++cut)
    {
        add(std::max<size_t>(cut->begin, piece.begin), Piece::Kind::text);
        add(std::min<size_t>(cut->end, piece.end), Piece::Kind::replaced);
    }
    add(piece.end, Piece::Kind::text);
}

/** Makes the cuts, which are in the order of the text, and moves the pieces along. */
void make(const std::vector<Cut> &cuts, WrittenText &text)
{
    const std::string raw = std::move(text.raw);
    std::vector<uint32_t> places(raw.size() + 1);
    std::string result;
    size_t at = 0;
    const auto keep = [&](size_t end) {
        for (; at < end; ++at)
        {
            places[at] = static_cast<uint32_t>(result.size());
            result += raw[at];
        }
    };
    for (const Cut &cut : cuts)
    {
        keep(cut.begin);
        for (; at < cut.end; ++at)
            places[at] = static_cast<uint32_t>(result.size());
        result += cut.instead;
    }
    keep(raw.size());
    places[raw.size()] = static_cast<uint32_t>(result.size());
    std::vector<Piece> pieces;
    for (const Piece &piece : text.pieces)
        if (piece.kind == Piece::Kind::text)
            divide(piece, cuts, places, pieces);
        else if (places[piece.begin] < places[piece.end])
            pieces.push_back(
                {places[piece.begin], places[piece.end], piece.kind, places[piece.positionBegin], piece.place});
    text.pieces = std::move(pieces);
    text.raw = std::move(result);
}

/** Wrapped lines: a line end with the white space around it becomes one blank, at the ends of the text nothing. */
std::vector<Cut> wrappedLines(const std::string &raw)
{
    std::vector<Cut> cuts;
    for (size_t at = 0; at < raw.size(); ++at)
    {
        size_t end = at;
        while (end < raw.size() && isSpacing(raw[end]))
            ++end;
        if (raw.substr(at, end - at).find('\n') != std::string::npos)
            cuts.push_back({at, end, at > 0 && end < raw.size() ? " " : ""});
        at = end;
    }
    return cuts;
}

/**
 * Lines that a tool has begun in front of each placeholder and of the end tag, to indent them, although white space was
 * to be kept. A translator's own line ends do not all stand there.
 */
std::vector<Cut> indentedTags(const WrittenText &text)
{
    std::vector<Cut> cuts;
    const std::string &raw = text.raw;
    for (size_t at = raw.find('\n'); at != std::string::npos; at = raw.find('\n', at))
    {
        const size_t begin = at;
        while (at < raw.size() && isSpacing(raw[at]))
            ++at;
        const auto piece = std::lower_bound(text.pieces.begin(), text.pieces.end(), at,
                                            [](const Piece &other, size_t offset) { return other.begin < offset; });
        const bool isTag = piece != text.pieces.end() && piece->begin == at && piece->kind == Piece::Kind::placeholder;
        if (at < raw.size() && !isTag)
            return {};
        cuts.push_back({begin, at, ""});
    }
    const bool isAtEnd = cuts.size() > 1 && cuts.back().end == raw.size() && cuts.back().begin + 1 < raw.size();
    return isAtEnd ? cuts : std::vector<Cut>();
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
    if (isSourceOpen())
        m_placeholders[id] = conversion;
    std::string &raw = m_open->raw;
    const auto begin = static_cast<uint32_t>(raw.size());
    const std::string written = escaped(conversion);
    raw += written;
    const auto position = static_cast<uint32_t>(begin + std::min(written.rfind('['), written.size()));
    m_open->pieces.push_back({begin, static_cast<uint32_t>(raw.size()), Piece::Kind::placeholder, position, place});
    return true;
}

void UnitTexts::close(bool keepsSpace)
{
    if (m_open->raw.find('\n') != std::string::npos)
        make(keepsSpace ? indentedTags(*m_open) : wrappedLines(m_open->raw), *m_open);
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
