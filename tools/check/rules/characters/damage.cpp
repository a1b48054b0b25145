#include "check/rules/characters/damage.h"

#include "check/reading/stray_text.h"
#include "check/rules/characters/mojibake.h"
#include "check/texts/characters.h"
#include "check/texts/language_words.h"

#include <algorithm>
#include <fmt/core.h>
#include <map>
#include <optional>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>

namespace tool::check
{
namespace
{

std::string codePoint(char32_t character)
{
    return fmt::format("U+{:04X}", static_cast<uint32_t>(character));
}

/** Whether a character cannot be seen and is hardly ever meant. */
bool isInvisible(char32_t character, std::string_view language)
{
    if (character == 0x200B)
        return isWrittenWithBlanks(language); // else it parts words
    constexpr char32_t others[] = {0x7F, 0x180E, 0x2028, 0x2029, 0x2060, 0x2061, 0x2062, 0x2063, 0x2064, 0xFEFF};
    return std::find(std::begin(others), std::end(others), character) != std::end(others) ||
           (character >= 0xFFF9 && character <= 0xFFFB) || (character >= 0xE0000 && character <= 0xE007F);
}

/** Whether a place lies between ASCII letters and blanks, as in a command, where nothing is to be parted. */
bool isInAscii(std::string_view text, Range place)
{
    const auto isOfWord = [](char byte) {
        return isAsciiLetter(byte) || isAsciiDigit(byte) || byte == ' ' || byte == '-';
    };
    return place.begin > 0 && place.end < text.size() && isOfWord(text[place.begin - 1]) && isOfWord(text[place.end]);
}

struct Damage
{
    Rule rule;
    Text text;
};

std::optional<Damage> damageOf(char32_t character, std::string_view language)
{
    if (character == 0xFFFD)
        return Damage{Rule::lostCharacter, Text::characterLost};
    if (character >= 0x80 && character < 0xA0)
        return Damage{Rule::mojibake, Text::controlCharacter};
    if (isInvisible(character, language))
        return Damage{Rule::invisibleCharacter, Text::characterInvisible};
    return std::nullopt;
}

/** Finds characters that are lost, and characters that cannot be seen, unless the original has them too. */
void checkCharacters(Subject &subject)
{
    const std::string_view text = subject.text();
    const std::string_view language = subject.language();
    std::map<char32_t, bool> inOriginal;
    for (size_t at = 0; at < text.size();)
    {
        if (static_cast<unsigned char>(text[at]) < 0x7F)
        {
            ++at;
            continue;
        }
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        const std::optional<Damage> damage =
            damageOf(character, isInAscii(text, {begin, at}) ? std::string_view() : language);
        if (!damage)
            continue;
        const auto [known, isNew] = inOriginal.try_emplace(character);
        if (isNew)
            known->second = subject.originalHas(text.substr(begin, at - begin));
        if (!known->second)
            subject.find(damage->rule, subject.placeOf({begin, at}), {damage->text, {codePoint(character)}});
    }
}

/** Letters in parts, an accent behind its letter, as some file systems and programs write them. */
void checkComposition(Subject &subject)
{
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2 *const composed = unorm2_getNFCInstance(&status);
    const std::string_view text = subject.text();
    char32_t before = 0;
    for (size_t at = 0; U_SUCCESS(status) && at < text.size();)
    {
        if (static_cast<unsigned char>(text[at]) < 0xC0)
        {
            before = static_cast<unsigned char>(text[at++]);
            continue;
        }
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        const bool isPart =
            unorm2_composePair(composed, static_cast<UChar32>(before), static_cast<UChar32>(character)) >= 0 ||
            (character == 0x307 && before == 'i');
        if (isPart)
            return subject.find(Rule::invisibleCharacter, subject.placeOf({begin, at}),
                                {Text::letterInParts, {codePoint(character)}});
        before = character;
    }
}

/** Whether question marks in a word stand in place of letters: within it, in front of it, or many in a row. */
bool replaceLetters(const Subject &subject, std::string_view word, Range marks)
{
    const size_t many = subject.hasOriginal() ? 2 : 4;
    if (marks.end - marks.begin >= many)
        return true;
    if (marks.end == word.size())
        return false;
    size_t next = marks.end;
    const auto behind = static_cast<UChar32>(takeUtf8(word, next));
    if (marks.begin == 0)
        return u_islower(behind) != 0 && subject.hasOriginal() && !subject.originalHas("?");
    size_t last = stepBackUtf8(word, marks.begin);
    return isLetter(takeUtf8(word, last)) && u_isalpha(behind) != 0 && u_isupper(behind) == 0;
}

/** @param word  of the text, from an offset on. */
void checkQuestionMarksOf(Subject &subject, std::string_view word, size_t offset)
{
    if (word.find_first_of("/=&:.") != std::string_view::npos) // an address
        return;
    bool isNew = false; // looked up only for a word that is told
    for (size_t mark = word.find('?'); mark < word.size() && !subject.isFull(Rule::lostCharacter);)
    {
        const Range marks{mark, std::min(word.find_first_not_of('?', mark), word.size())};
        mark = word.find('?', marks.end);
        if (!replaceLetters(subject, word, marks))
            continue;
        if (!isNew && subject.originalHas(word))
            return;
        isNew = true;
        subject.find(Rule::lostCharacter, subject.placeOf({offset + marks.begin, offset + marks.end}),
                     {Text::lettersLost, {quotation(word.substr(marks.begin, marks.end - marks.begin))}});
    }
}

void checkQuestionMarks(Subject &subject)
{
    const auto isBlank = [](char byte) { return static_cast<unsigned char>(byte) <= ' '; };
    const std::string_view text = subject.text();
    size_t mark = text.find('?');
    if (mark == std::string_view::npos || subject.originalHas("??"))
        return;
    while (mark < text.size())
    {
        size_t begin = mark;
        while (begin > 0 && !isBlank(text[begin - 1]))
            --begin;
        size_t end = mark;
        while (end < text.size() && !isBlank(text[end]))
            ++end;
        checkQuestionMarksOf(subject, text.substr(begin, end - begin), begin);
        mark = text.find('?', end);
    }
}

/** How long a reference as "&lt;" is that a text begins with; 0 where there is none. */
size_t referenceLength(std::string_view text)
{
    constexpr std::string_view names[] = {"amp",  "lt",    "gt",     "quot",  "apos",   "nbsp",   "copy",
                                          "reg",  "trade", "hellip", "ndash", "mdash",  "laquo",  "raquo",
                                          "auml", "ouml",  "uuml",   "szlig", "eacute", "egrave", "agrave"};
    constexpr size_t longest = 32;
    const size_t end = text.substr(0, longest).find(';');
    if (end == std::string_view::npos || end < 2)
        return 0;
    const std::string_view name = text.substr(1, end - 1);
    const bool isNamed = std::find(std::begin(names), std::end(names), name) != std::end(names);
    const std::string_view digits = name[0] != '#'              ? std::string_view()
                                    : name.substr(0, 2) == "#x" ? name.substr(2)
                                                                : name.substr(1);
    const bool isNumber =
        !digits.empty() && digits.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
    return isNamed || isNumber ? end + 1 : 0;
}

void checkEscapedTwice(Subject &subject)
{
    const std::string_view text = subject.text();
    for (size_t at = text.find('&'); at < text.size() && !subject.isFull(Rule::doubleEscape);
         at = text.find('&', at + 1))
        if (const size_t length = referenceLength(text.substr(at));
            length > 0 && !subject.originalHas(text.substr(at, length)))
            subject.find(Rule::doubleEscape, subject.placeOf({at, at + length}),
                         {Text::escapedTwice, {quotation(text.substr(at, length))}});
}

/** A line of a message that parts two versions of it. */
void checkMergeMarks(Subject &subject)
{
    const std::string_view text = subject.text();
    for (const char mark : {'<', '|', '=', '>'})
    {
        const std::string marks(mergeMarkLength, mark);
        for (size_t at = text.find(marks); at < text.size() && !subject.isFull(Rule::strayText);
             at = text.find(marks, at))
        {
            const size_t end = std::min(text.find_first_not_of(mark, at), text.size());
            const bool isLine = (at == 0 || text[at - 1] == '\n') && end - at == marks.size() &&
                                (end == text.size() || text[end] == '\n' || text[end] == ' ');
            if (isLine && !subject.originalHas(marks))
                subject.find(Rule::strayText, subject.placeOf({at, end}), {Text::mergeMark});
            at = end;
        }
    }
}

} // namespace

bool checkEncoding(const ParsedFile &parsed, Findings &findings)
{
    const SourceText &source = parsed.source();
    if (source.encoding() != SourceText::Encoding::latin1)
        return false;
    const std::optional<size_t> first = beyondAscii(source.bytes());
    if (first)
        findings.push_back({Rule::mojibake, 0, *first, {*first, *first + 1}, Phrase{Text::utf8AsLatin1}, std::nullopt});
    return first.has_value();
}

void checkDamage(Subject &subject, bool isGarbled)
{
    if (!isGarbled)
    {
        const std::optional<Misreading> misreading = findMisreading(subject.text());
        if (misreading && !subject.originalHas(partOf(subject.text(), misreading->place)))
            subject.find(Rule::mojibake, subject.placeOf(misreading->place),
                         {Text::misread, {quotation(misreading->meant), misreading->charset}});
        else
            checkCharacters(subject);
        checkComposition(subject);
    }
    checkQuestionMarks(subject);
    checkEscapedTwice(subject);
    checkMergeMarks(subject);
}

} // namespace tool::check
