/**
 * A text taken apart into words, numbers, placeholders and the marks between them: what the rules compare that look at
 * what two languages have in common. Words of a writing without blanks are as long as no mark parts them.
 */
#ifndef KELTO_TOOLS_CHECK_TEXTS_TOKENS_H
#define KELTO_TOOLS_CHECK_TEXTS_TOKENS_H

#include "check/texts/source_text.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace tool::check
{

struct Token
{
    enum class Kind : uint8_t
    {
        word,
        number,
        placeholder, // as "%5d[1]"
        mark         // one character
    };

    Kind kind;
    bool isJoined;    // nothing stands between it and the token before
    bool isCapital;   // a word whose first letter is one
    uint8_t letters;  // of a word, 255 for more
    uint32_t content; // the hash of a word in small letters or of a number's digits, the position, the character
    size_t begin, end;

    bool isWord() const { return kind == Kind::word; }
    bool isMark() const { return kind == Kind::mark; }
    bool isMark(char32_t character) const { return kind == Kind::mark && content == character; }
};

class Tokens
{
public:
    explicit Tokens(std::string_view utf8Text);

    size_t size() const { return m_tokens.size(); }
    const Token &operator[](size_t index) const { return m_tokens[index]; }
    std::vector<Token>::const_iterator begin() const { return m_tokens.begin(); }
    std::vector<Token>::const_iterator end() const { return m_tokens.end(); }
    std::string_view text(const Token &token) const { return m_text.substr(token.begin, token.end - token.begin); }

    std::string_view text() const { return m_text; }
    size_t words() const { return m_words; }
    size_t placeholders() const { return m_placeholders; }

    bool hasWord(uint32_t hash) const;

private:
    size_t takeWord(size_t at, char32_t first, bool isJoined);
    size_t takeNumber(size_t at, bool isJoined);

    std::string_view m_text;
    std::vector<Token> m_tokens;
    size_t m_words = 0;
    size_t m_placeholders = 0;
};

constexpr uint32_t emptyHash = 2166136261U;

constexpr uint32_t hashedWith(uint32_t hash, char32_t character)
{
    return (hash ^ character) * 16777619U;
}

/** The hash of a word that is written in small letters. */
uint32_t hashOfWord(std::string_view utf8Word);

/** Whether something holds for one of the words of a list, which has blanks between them; the first ends it. */
template <typename Test> bool anyWordOf(std::string_view words, const Test &test)
{
    for (size_t begin = words.find_first_not_of(' '); begin < words.size();)
    {
        const size_t end = std::min(words.find(' ', begin), words.size());
        if (test(words.substr(begin, end - begin)))
            return true;
        begin = words.find_first_not_of(' ', end);
    }
    return false;
}

/** A set of words, which a text lists with blanks between them. */
class WordSet
{
public:
    explicit WordSet(std::string_view words);
    bool has(uint32_t hash) const;

private:
    std::vector<uint32_t> m_hashes;
};

} // namespace tool::check

#endif
