#include "check/rules/wording/other_language.h"

#include "check/rules/characters/east_asian.h"
#include "check/rules/characters/one_byte_charsets.h"
#include "check/texts/characters.h"
#include "check/texts/language_words.h"

#include <algorithm>
#include <array>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

/** Letters of a script that a language written in it does not have, in small letters. */
struct LettersRow
{
    std::string_view language;
    std::u32string_view foreign;
};

constexpr LettersRow letters[] = {
    {"ru", U"іїєґўјљњћђџѓќѕ"},    {"uk", U"ыэёъўјљњћђџѓќѕ"},   {"be", U"ищъїєґјљњћђџѓќѕ"}, {"bg", U"ыэёіїєґўјљњћђџѓќѕ"},
    {"sr", U"йщъыьэюяёіїєґўѓќѕ"}, {"mk", U"йщъыьэюяёіїєґўћђ"}, {"ar", U"پچژگکیٹڈڑںہھےۀ"},
};

/** The letters beyond ASCII of languages that are written in Latin ones, in small letters. */
constexpr LettersRow ownLetters[] = {
    {"de", U"äöüßéèàçñ"},       {"fr", U"àâæçéèêëîïôœùûüÿ"}, {"es", U"áéíóúüñçªº"}, {"it", U"àèéìíîòóùúç"},
    {"pt", U"áâãàçéêíóôõúüªº"}, {"nl", U"áéíóúàèëïöüê"},     {"pl", U"ąćęłńóśźżé"}, {"cs", U"áčďéěíňóřšťúůýžöü"},
    {"sv", U"åäöéàü"},          {"da", U"æøåéáó"},           {"fi", U"åäöšžé"},     {"hu", U"áéíóöőúüű"},
    {"tr", U"çğıöşüâîû"},       {"ro", U"ăâîșțşţé"},
};

bool findForeignLetter(Subject &subject, std::string_view language)
{
    const auto *const row = std::find_if(std::begin(letters), std::end(letters),
                                         [language](const LettersRow &each) { return each.language == language; });
    if (row == std::end(letters))
        return false;
    const std::string_view text = subject.text();
    for (size_t at = 0; at < text.size();)
    {
        if (static_cast<unsigned char>(text[at]) < 0xC0)
        {
            ++at;
            continue;
        }
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        const auto small = static_cast<char32_t>(u_tolower(static_cast<UChar32>(character)));
        if (!isAmong(small, row->foreign) || subject.originalHas(text.substr(begin, at - begin)))
            continue;
        subject.find(Rule::wrongLanguage, subject.placeOf({begin, at}),
                     {Text::letterOfOther, {std::string(text.substr(begin, at - begin)), std::string(language)}});
        return true;
    }
    return false;
}

bool hasOtherLetter(std::string_view word, std::u32string_view own)
{
    for (size_t at = 0; at < word.size();)
    {
        const char32_t character = takeUtf8(word, at);
        if (character < 0xC0)
            continue;
        const auto small = static_cast<char32_t>(u_tolower(static_cast<UChar32>(character)));
        if (small >= 0xC0 && !isAmong(small, own)) // the small letter of the Turkish capital I with a dot is ASCII
            return true;
    }
    return false;
}

void findOtherWords(Subject &subject, std::string_view language)
{
    const uint32_t own = languageBit(language);
    constexpr size_t fewest = 5;
    const Tokens &tokens = subject.tokens();
    if (own == 0 || tokens.words() < 3)
        return;
    const auto *const row = std::find_if(std::begin(ownLetters), std::end(ownLetters),
                                         [language](const LettersRow &each) { return each.language == language; });
    std::array<uint8_t, 32> hits{};
    size_t ours = 0;
    size_t strange = 0; // words with letters that the language does not have
    std::vector<uint32_t> seen;
    for (const Token &token : tokens)
    {
        const uint32_t languages = token.isWord() && token.letters > 1 ? languagesOfWord(token.content) : 0;
        if (row != std::end(ownLetters) && token.isWord() && languages == 0 && strange < 200 &&
            hasOtherLetter(tokens.text(token), row->foreign))
            ++strange;
        if (languages == 0 || std::find(seen.begin(), seen.end(), token.content) != seen.end())
            continue;
        seen.push_back(token.content);
        if ((languages & own) != 0)
        {
            ++ours;
            continue;
        }
        for (size_t i = 0; i < hits.size(); ++i)
            if ((languages & 1U << i) != 0 && hits[i] < 200)
                ++hits[i];
    }
    const auto *const most = std::max_element(hits.begin(), hits.end());
    const size_t score = *most + strange;
    const bool isTold = ours == 0 ? score > 1 && *most > 0 && tokens.words() >= fewest : score > 2 && score > 3 * ours;
    if (!isTold && (strange < 3 || ours > 0))
        return;
    const std::string_view other =
        *most > 0 ? languageOfBit(1U << static_cast<uint32_t>(most - hits.begin())) : std::string_view("?");
    // Another rule tells words that were taken over from the reference.
    size_t taken = 0;
    if (subject.hasOriginal())
        for (const Token &token : tokens)
            taken += token.isWord() && subject.originalTokens().hasWord(token.content) ? 1 : 0;
    if (2 * taken > tokens.words())
        return;
    subject.find(Rule::wrongLanguage, subject.message().source,
                 {Text::textInOther, {std::string(other), std::string(language)}});
}

} // namespace

void checkLanguageOfText(Subject &subject, bool isGarbled)
{
    const std::string_view language = subject.parsed().language();
    const std::string_view base = language.substr(0, 2);
    if (language.empty() || (subject.hasOriginal() && subject.text() == subject.originalText()))
        return;
    const std::string_view text = subject.text();
    const auto isBeyond = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
    if (std::any_of(text.begin(), text.end(), isBeyond) &&
        (isGarbled || findOtherCharset(subject, base) || findOtherEastAsian(subject, language) ||
         findForeignLetter(subject, base)))
        return;
    findOtherWords(subject, base);
}

} // namespace tool::check
