#include "check/texts/tokens.h"

#include "check/texts/characters.h"

#include <algorithm>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

bool isOfWord(char32_t character)
{
    if (character < 0x80)
        return isAsciiLetter(character);
    constexpr uint32_t mask = U_GC_L_MASK | U_GC_M_MASK;
    return (U_GET_GC_MASK(static_cast<UChar32>(character)) & mask) != 0;
}

int digitOf(char32_t character)
{
    if (character < 0x80)
        return isAsciiDigit(character) ? static_cast<int>(character - '0') : -1;
    return u_charDigitValue(static_cast<UChar32>(character));
}

char32_t inSmall(char32_t character)
{
    if (character < 0x80)
        return isAsciiLetter(character) ? character | 0x20U : character;
    return static_cast<char32_t>(u_tolower(static_cast<UChar32>(character)));
}

bool isCapital(char32_t character)
{
    return character < 0x80 ? character >= 'A' && character <= 'Z' : u_isupper(static_cast<UChar32>(character)) != 0;
}

struct Written
{
    size_t end = 0; // 0 where there is no placeholder
    uint32_t position = 0;
};

/** A placeholder that begins at a percent sign. */
Written placeholderAt(std::string_view text, size_t at)
{
    size_t end = text.find_first_not_of("-+ #.*!0123456789", at + 1);
    const size_t name = end;
    while (end < text.size() && isAsciiLetter(text[end]))
        ++end;
    if (end >= text.size() || end == name || text[end] != '[')
        return {};
    Written written;
    while (++end < text.size() && isAsciiDigit(text[end]))
        written.position = written.position * 10 + static_cast<uint32_t>(text[end] - '0');
    written.end = end < text.size() && text[end] == ']' ? end + 1 : 0;
    return written;
}

bool isBlankCharacter(char32_t character)
{
    return character <= ' ' || character == 0xA0 || (character >= 0x2000 && character <= 0x200F) ||
           character == 0x202F || character == 0x3000 || (character >= 0x2066 && character <= 0x2069);
}

} // namespace

size_t Tokens::takeWord(size_t at, char32_t first, bool isJoined)
{
    Token token{Token::Kind::word, isJoined, isCapital(first), 0, emptyHash, at, at};
    while (at < m_text.size())
    {
        size_t next = at;
        const char32_t character = takeUtf8(m_text, next);
        const bool isDigitInName = first < 0x80 && digitOf(character) >= 0; // as in "JPEG2000"
        if (!isOfWord(character) && !isDigitInName)
            break;
        token.content = hashedWith(token.content, inSmall(character));
        token.letters = static_cast<uint8_t>(std::min(token.letters + 1, 255));
        at = next;
    }
    token.end = at;
    m_tokens.push_back(token);
    ++m_words;
    return at;
}

size_t Tokens::takeNumber(size_t at, bool isJoined)
{
    Token token{Token::Kind::number, isJoined, false, 0, emptyHash, at, at};
    while (at < m_text.size())
    {
        size_t next = at;
        const int digit = digitOf(takeUtf8(m_text, next));
        if (digit < 0)
            break;
        token.content = hashedWith(token.content, static_cast<char32_t>('0' + digit));
        token.letters = static_cast<uint8_t>(std::min(token.letters + 1, 255));
        at = next;
    }
    token.end = at;
    m_tokens.push_back(token);
    return at;
}

Tokens::Tokens(std::string_view utf8Text) : m_text(utf8Text)
{
    m_tokens.reserve(utf8Text.size() / 4 + 1);
    size_t behindLast = static_cast<size_t>(-1);
    for (size_t at = 0; at < m_text.size();)
    {
        const bool isJoined = at == behindLast;
        size_t next = at;
        const char32_t character = takeUtf8(m_text, next);
        if (isOfWord(character))
            behindLast = at = takeWord(at, character, isJoined);
        else if (digitOf(character) >= 0)
            behindLast = at = takeNumber(at, isJoined);
        else if (const Written written = character == '%' ? placeholderAt(m_text, at) : Written(); written.end != 0)
        {
            m_tokens.push_back({Token::Kind::placeholder, isJoined, false, 0, written.position, at, written.end});
            ++m_placeholders;
            behindLast = at = written.end;
        }
        else
        {
            const size_t begin = at;
            at = character == '%' && next < m_text.size() && m_text[next] == '%' ? next + 1 : next;
            if (isBlankCharacter(character))
                continue;
            m_tokens.push_back({Token::Kind::mark, isJoined, false, 0, character, begin, at});
            behindLast = at;
        }
    }
}

bool Tokens::hasWord(uint32_t hash) const
{
    return std::any_of(m_tokens.begin(), m_tokens.end(),
                       [hash](const Token &token) { return token.isWord() && token.content == hash; });
}

uint32_t hashOfWord(std::string_view utf8Word)
{
    uint32_t hash = emptyHash;
    for (size_t at = 0; at < utf8Word.size();)
        hash = hashedWith(hash, takeUtf8(utf8Word, at));
    return hash;
}

WordSet::WordSet(std::string_view words)
{
    anyWordOf(words, [this](std::string_view word) {
        m_hashes.push_back(hashOfWord(word));
        return false;
    });
    std::sort(m_hashes.begin(), m_hashes.end());
}

bool WordSet::has(uint32_t hash) const
{
    return std::binary_search(m_hashes.begin(), m_hashes.end(), hash);
}

} // namespace tool::check
