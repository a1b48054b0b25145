#include "check/reading/parsed_file.h"

#include "check/texts/characters.h"

#include <algorithm>
#include <cstdlib>

// A message consists of pieces, each of which knows its part of the text and its place in the file. A part of a text is
// found by the pieces that it begins and ends in. Inside a piece of plain text bytes are counted; inside a placeholder
// the attribute is read again, with its references; a piece that replaces something is found as a whole.

namespace tool::check
{
namespace
{

bool isBlank(char32_t character)
{
    return isAmong(character, U" \t\r\n");
}

bool equals(std::u32string_view text, std::string_view ascii)
{
    return std::equal(text.begin(), text.end(), ascii.begin(), ascii.end(),
                      [](char32_t a, char b) { return a == static_cast<unsigned char>(b); });
}

/** The character that "&…;" stands for, from what stands between; 0 for one that the document declares. */
char32_t meaningOfReference(const std::u32string &name)
{
    constexpr struct
    {
        std::string_view name;
        char32_t character;
    } predefined[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto &row : predefined)
        if (equals(name, row.name))
            return row.character;
    if (name[0] != '#')
        return 0;
    const bool isHexadecimal = name[1] == 'x';
    const std::string digits(name.begin() + (isHexadecimal ? 2 : 1), name.end());
    return static_cast<char32_t>(std::strtoul(digits.c_str(), nullptr, isHexadecimal ? 16 : 10));
}

} // namespace

const Piece &ParsedFile::pieceAt(const Message &message, size_t offset) const
{
    const auto first = m_pieces.begin() + static_cast<std::ptrdiff_t>(message.firstPiece);
    const auto end = m_pieces.begin() + static_cast<std::ptrdiff_t>(message.endPiece);
    const auto behind =
        std::upper_bound(first, end, offset, [](size_t at, const Piece &piece) { return at < piece.begin; });
    return behind[-1]; // the first begins at 0
}

bool ParsedFile::isText(const Message &message, size_t offset) const
{
    return pieceAt(message, offset).kind != Piece::Kind::placeholder;
}

/** Where a byte in the middle of a piece stands, or, for the end of a part, the byte behind it. */
size_t ParsedFile::locateEdge(const Piece &piece, size_t offset, bool isEnd) const
{
    const size_t inside = offset - piece.begin;
    switch (piece.kind)
    {
    case Piece::Kind::text:
        return m_source.behindUtf8(piece.place, inside);
    case Piece::Kind::replaced:
        return isEnd ? piece.place.end : piece.place.begin;
    case Piece::Kind::placeholder:
        break;
    }
    const size_t brackets = offset < piece.positionBegin + (isEnd ? 1U : 0U) ? 0 : 1;
    const Range value = locateAttribute(piece.place, brackets == 0 ? "ts" : "id");
    if (value.begin == piece.place.begin) // the attribute is not written in the tag
        return isEnd ? value.end : value.begin;
    return brackets == 0
               ? behindExpanded(value, inside)
               : behindExpanded(value, std::max<size_t>(offset, piece.positionBegin + 1) - piece.positionBegin - 1);
}

Range ParsedFile::locate(const Message &message, Range range) const
{
    if (message.firstPiece == message.endPiece)
        return message.source;
    if (range.end <= range.begin)
    {
        const Piece &piece = pieceAt(message, range.begin);
        const size_t at = range.begin >= piece.end ? piece.place.end : locateEdge(piece, range.begin, false);
        return {at, at};
    }
    const Piece &first = pieceAt(message, range.begin);
    const Piece &last = pieceAt(message, range.end - 1);
    const bool isWhole = range.end >= first.end; // of the first piece, from `begin` on
    Range place{range.begin == first.begin && isWhole ? first.place.begin : locateEdge(first, range.begin, false),
                range.end == last.end && range.begin <= last.begin ? last.place.end
                                                                   : locateEdge(last, range.end, true)};
    if (place.end <= place.begin) // "id" may stand in front of "ts"
        place.end = locateEdge(first, first.positionBegin, true);
    return place;
}

Range ParsedFile::locateAttribute(Range tag, std::string_view name) const
{
    size_t at = tag.begin;
    size_t next = at;
    char32_t character = m_source.take(next, tag.end);
    const auto advance = [&] {
        at = next;
        character = at < tag.end ? m_source.take(next, tag.end) : 0;
    };
    const auto skipBlanks = [&] {
        while (isBlank(character))
            advance();
    };
    const auto takeName = [&] {
        std::u32string word;
        for (; character != 0 && character != '=' && !isBlank(character); advance())
            word += character;
        return word;
    };
    if (character != '<')
        return tag; // an entity holds it
    takeName();
    while (character != 0)
    {
        skipBlanks();
        const std::u32string found = takeName();
        skipBlanks();
        if (character != '=')
            return tag;
        advance();
        skipBlanks();
        const char32_t quotation = character;
        advance();
        const size_t begin = at;
        while (character != 0 && character != quotation)
            advance();
        if (equals(found, name))
            return {begin, at};
        advance();
    }
    return tag;
}

/** Where the part begins that lies `utf8Bytes` behind the beginning of a value, references in it replaced. */
size_t ParsedFile::behindExpanded(Range value, size_t utf8Bytes) const
{
    size_t at = value.begin;
    for (size_t size = 0; size < utf8Bytes && at < value.end;)
    {
        char32_t character = m_source.take(at, value.end);
        if (character == '&')
        {
            std::u32string name;
            while (at < value.end && (character = m_source.take(at, value.end)) != ';')
                name += character;
            character = meaningOfReference(name);
            if (character == 0)
                return value.end;
        }
        size += utf8Size(character);
    }
    return at;
}

} // namespace tool::check
