#include "check/rules/marks/end_punctuation.h"

#include "check/texts/blanks.h"
#include "check/texts/characters.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace tool::check
{
namespace
{

enum class Ending
{
    none,
    stop,
    question,
    colon,
    ellipsis
};

Text nameOf(Ending ending)
{
    constexpr Text names[] = {Text::noEnding, Text::stopEnding, Text::questionEnding, Text::colonEnding,
                              Text::ellipsisEnding};
    return names[static_cast<size_t>(ending)];
}

/** Where the words of a text end: white space and quotation marks behind them do not count. */
size_t endOfWords(std::string_view text)
{
    size_t end = coreOf(text).end;
    while (end > 0)
    {
        const size_t begin = stepBackUtf8(text, end);
        size_t next = begin;
        const char32_t character = takeUtf8(text, next);
        if (!isQuotationMark(character) && !isWhiteSpace(character)) // “ opens in English, and closes in German
            break;
        end = begin;
    }
    return end;
}

Ending endingOf(std::string_view text, std::string_view language)
{
    constexpr struct
    {
        std::u32string_view characters;
        Ending ending;
    } rows[] = {{U".!。！．।॥։۔።។｡", Ending::stop},
                {U"?？؟՞፧⸮", Ending::question},
                {U":：៖", Ending::colon},
                {U"…⋯", Ending::ellipsis}};
    const size_t end = endOfWords(text);
    if (end >= 3 && text.substr(end - 3, 3) == "...")
        return Ending::ellipsis;
    const char32_t last = characterBefore(text, end);
    if (language == "el" && (last == ';' || last == 0x37E))
        return Ending::question;
    for (const auto &row : rows)
        if (row.characters.find(last) != std::u32string_view::npos)
            return row.ending;
    return Ending::none;
}

/** Whether a text ends with a short word and a full stop, as "λεπ." for minutes. */
bool endsInAbbreviation(std::string_view text)
{
    constexpr size_t longest = 4;
    size_t end = endOfWords(text);
    if (end == 0 || text[end - 1] != '.')
        return false;
    --end;
    size_t letters = 0;
    while (end > 0 && u_isalpha(static_cast<UChar32>(characterBefore(text, end))) != 0)
    {
        end = stepBackUtf8(text, end);
        ++letters;
    }
    return letters > 0 && letters <= longest;
}

/** Marks of questions and exclamations that a language has for itself. */
struct OwnMark
{
    std::string_view language;
    std::string_view plain;   // what the text ends with
    std::string_view opening; // has to stand in the text then, or is empty
    std::string_view closing; // has to stand in its place, or is empty
};
constexpr OwnMark ownMarks[] = {
    {"es", "?", "¿", ""}, {"es", "!", "¡", ""}, {"el", "?", "", ";"},
    {"ar", "?", "", "؟"}, {"fa", "?", "", "؟"}, {"ur", "?", "", "؟"},
};

void checkOwnMarks(Subject &subject, std::string_view language)
{
    const std::string_view text = subject.text();
    const size_t end = endOfWords(text);
    for (const OwnMark &row : ownMarks)
    {
        const bool isMeant = row.language == language && end > 1 && text.substr(end - 1, 1) == row.plain &&
                             subject.originalText().find(row.plain) != std::string_view::npos;
        if (!isMeant || (!row.opening.empty() && text.find(row.opening) != std::string_view::npos))
            continue;
        const bool opens = !row.opening.empty();
        subject.find(Rule::endPunctuation, subject.placeOf({end - 1, end}),
                     {opens ? Text::markOpens : Text::markOfLanguage,
                      {std::string(row.plain), std::string(opens ? row.opening : row.closing)}});
    }
}

/** The place of a colon in front of an argument, as in "Date: %s". */
std::optional<Range> colonOfField(std::string_view text)
{
    for (size_t at = text.find(':'); at < text.size(); at = text.find(':', at + 1))
    {
        const size_t next = text.find_first_not_of(' ', at + 1);
        if (next < text.size() && text[next] == '%' && text.substr(next, 2) != "%%")
            return Range{at, at + 1};
    }
    return std::nullopt;
}

void compareFieldColons(Subject &subject)
{
    const std::optional<Range> there = colonOfField(subject.originalText());
    const std::string_view here = subject.text();
    const auto has = [here](std::string_view mark) { return here.find(mark) != std::string_view::npos; };
    if (there && !has(":") && !has("：") && !has("៖") && !has("。") && !has("—") && !has("–"))
        subject.find(Rule::endPunctuation, subject.message().source, {Text::colonLost}, subject.noteInOriginal(*there));
}

void compareEndings(Subject &subject)
{
    // Sentences of these may end without a mark.
    constexpr std::string_view markless[] = {"bo", "ja", "km", "ko", "lo", "my", "th", "zh", "hy"};
    const std::string_view language = subject.language();
    const Ending here = endingOf(subject.text(), language);
    const Ending there = endingOf(subject.originalText(), subject.originalLanguage());
    const bool isMarkless = std::find(std::begin(markless), std::end(markless), language) != std::end(markless);
    const auto isFree = [isMarkless](Ending ending) {
        return isMarkless && ending != Ending::colon && ending != Ending::ellipsis;
    };
    checkOwnMarks(subject, language);
    if (here == there || (isFree(here) && isFree(there)))
        return;
    if (here == Ending::stop && there == Ending::none && endsInAbbreviation(subject.text()))
        return;
    const size_t end = endOfWords(subject.text());
    if (end == 0)
        return;
    subject.find(Rule::endPunctuation, subject.placeOf({stepBackUtf8(subject.text(), end), end}),
                 {Text::endsOtherwise, {Phrase{nameOf(here)}, Phrase{nameOf(there)}}},
                 subject.noteInOriginal({endOfWords(subject.originalText()), subject.originalText().size()}));
}

} // namespace

void comparePunctuation(Subject &subject)
{
    compareEndings(subject);
    compareFieldColons(subject);
}

} // namespace tool::check
