#include "check/rules/wording/denials.h"

#include "check/texts/language_words.h"

namespace tool::check
{
namespace
{

/** Whether an English text denies by "not" or "never", and in one sentence: several may be said in another way. */
bool deniesOnce(const Tokens &tokens)
{
    static const WordSet strong("not cannot never");
    static const uint32_t ofShortForm = hashOfWord("t");
    static const uint32_t orWord = hashOfWord("or");
    constexpr size_t shortest = 4; // "Not now" is "Later" elsewhere
    constexpr size_t longest = 30;
    if (tokens.words() < shortest || tokens.words() > longest)
        return false;
    for (size_t i = 0; i < tokens.size(); ++i)
    {
        const Token &token = tokens[i];
        const bool isShort = token.isWord() && token.content == ofShortForm && i > 1 && tokens[i - 2].isWord() &&
                             tokens[i - 1].isMark() && token.isJoined;                              // "don't"
        const bool isQuestion = i > 0 && tokens[i - 1].isWord() && tokens[i - 1].content == orWord; // "or not"
        const bool isQuoted = i > 0 && token.isJoined && tokens[i - 1].isMark() && !isShort;
        if (token.isWord() && (strong.has(token.content) || isShort) && !isQuestion && !isQuoted)
            return true;
    }
    return false;
}

} // namespace

void compareDenial(Subject &subject)
{
    const Tokens &original = subject.originalTokensWithoutKeys();
    const std::string_view language = subject.originalLanguage();
    if (language == "en" && denies(language, original) && subject.text() != subject.originalText() &&
        deniesOnce(original) && !hintsAtDenial(subject.language(), subject.tokensWithoutKeys()))
        subject.find(Rule::otherMeaning, subject.message().source, {Text::denialLost},
                     Note{true, subject.original().source, {Text::referenceIsHere}});
}

} // namespace tool::check
