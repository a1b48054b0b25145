#include "check/rules/characters/one_byte_charsets.h"

#include "check/texts/characters.h"
#include "check/texts/language_words.h"

#include <optional>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

/** Letters that stand in place of those of a language where its text was read in a wrong charset. */
struct MisreadLetters
{
    std::string_view language;
    std::u32string_view wrong;
};

constexpr MisreadLetters misread[] = {
    {"de", U"õÕ"},           {"sv", U"õÕ"},        {"fi", U"õÕ"},        {"hu", U"õûÕÛ"}, {"tr", U"ðþýÐÞÝ"},
    {"cs", U"èìøùïòÈÌØÙÏÒ"}, {"sk", U"èï¾òåÈÏ¼Ò"}, {"pl", U"³¹êæœŸ¿£¯"}, {"ro", U"ºþªÞ"},
};

std::optional<Range> misreadWordIn(std::string_view text, std::u32string_view characters)
{
    char32_t before = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        if (character >= 0x80 && isAmong(character, characters))
        {
            size_t next = at;
            const char32_t behind = next < text.size() ? takeUtf8(text, next) : 0;
            const bool isInWord = isLetter(before) && isLetter(behind);
            if (isInWord || (isLetter(character) && (isLetter(before) || isLetter(behind))))
                return Range{begin, at};
        }
        before = character;
    }
    return std::nullopt;
}

/** A sign between two letters, or a capital letter beyond ASCII behind a small one, as no word has them. */
std::optional<Range> brokenWordIn(std::string_view text)
{
    constexpr std::u32string_view signs = U"÷³¹²¼½¾¤¦§¨¬±µ¶¸¿¡¢£¥†‡‰€™";
    char32_t before = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        size_t next = at;
        if (character >= 0xA1 && isLetter(before))
        {
            const bool isSign = isAmong(character, signs) && next < text.size() && isLetter(takeUtf8(text, next));
            const bool isCapital = character >= 0xC0 && character < 0x180 &&
                                   u_isupper(static_cast<UChar32>(character)) != 0 &&
                                   u_islower(static_cast<UChar32>(before)) != 0;
            if (isSign || isCapital)
                return Range{begin, at};
        }
        before = character;
    }
    return std::nullopt;
}

/** Letters of Latin-1 in a row, in a language that is written in other letters. */
std::optional<Range> latin1RunIn(std::string_view text)
{
    constexpr size_t shortest = 3;
    size_t begin = 0;
    size_t length = 0;
    size_t letterCount = 0;
    for (size_t at = 0; at <= text.size();)
    {
        size_t next = at;
        const char32_t character = at < text.size() ? takeUtf8(text, next) : 0;
        constexpr std::u32string_view apart = U"\u00A0«»°·©®×÷±§¿¡";
        const bool isOfRun = (character >= 0xA1 && character <= 0xFF && !isAmong(character, apart)) ||
                             (length > 0 && isAmong(character, U"ƒŠŒŽšœžŸˆ˜‚„…†‡‰‹‘’“”•–—›€™"));
        if (!isOfRun)
        {
            // A word of another language has plain letters beside the others.
            const bool touchesPlain = isAsciiLetter(character) || (begin > 0 && isAsciiLetter(text[begin - 1]));
            if (letterCount >= shortest && (!touchesPlain || length >= 2 * shortest))
                return Range{begin, at};
            length = letterCount = 0;
            if (at == text.size())
                break;
        }
        else
        {
            begin = length == 0 ? at : begin;
            ++length;
            letterCount += isLetter(character) || character < 0xC0 ? 1 : 0;
        }
        at = next;
    }
    return std::nullopt;
}

/** Words whose first letter is the only small one, as KOI8-R looks when it is read as Windows-1251. */
std::optional<Range> turnedCaseIn(const Tokens &tokens, std::string_view text)
{
    constexpr uint8_t shortest = 4;
    for (const Token &token : tokens)
    {
        if (!token.isWord() || token.isCapital || token.letters < shortest)
            continue;
        size_t at = token.begin;
        if (scriptOf(takeUtf8(text, at)) != USCRIPT_CYRILLIC)
            continue;
        bool isTurned = true;
        while (isTurned && at < token.end)
            isTurned = u_isupper(static_cast<UChar32>(takeUtf8(text, at))) != 0;
        if (isTurned)
            return Range{token.begin, token.end};
    }
    return std::nullopt;
}

/** Characters that UTF-8 of Japanese and Chinese begins with where it is read as their older charsets. */
std::optional<Range> misreadEastAsianIn(std::string_view text)
{
    size_t count = 0;
    size_t first = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        if (character >= 0x80 && isAmong(character, U"縺繧繝锟斤拷쏙옙ƒ"))
        {
            first = count == 0 ? begin : first;
            if (++count == 2)
                return Range{first, at};
        }
    }
    return std::nullopt;
}

} // namespace

bool findOtherCharset(Subject &subject, std::string_view language)
{
    if (subject.has(Rule::mojibake))
        return true; // which garbles all the rest
    const std::string_view text = subject.text();
    std::optional<Range> found;
    for (const MisreadLetters &row : misread)
        if (row.language == language)
            found = misreadWordIn(text, row.wrong);
    if (!found && isWrittenInLatin(language))
        found = brokenWordIn(text);
    else if (!found)
    {
        found = latin1RunIn(text);
        if (!found)
            found = turnedCaseIn(subject.tokens(), text);
        if (!found)
            found = misreadEastAsianIn(text);
    }
    if (!found || subject.originalHas(partOf(text, *found)))
        return false;
    subject.find(Rule::mojibake, subject.placeOf(*found), {Text::oneByteCharset, {quotation(partOf(text, *found))}});
    return true;
}

} // namespace tool::check
