#include "check/wording.h"

#include "check/characters.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace tool::check
{
namespace
{

std::string_view part(std::string_view text, Range range)
{
    return text.substr(range.begin, range.end - range.begin);
}

unsigned count(std::string_view text, char byte)
{
    return static_cast<unsigned>(std::count(text.begin(), text.end(), byte));
}

// White space

void compareEdges(Subject &subject)
{
    const std::string_view here = subject.text();
    const std::string_view there = subject.originalText();
    const Range edges = coreOf(here);
    const Range originals = coreOf(there);
    if (edges.begin == edges.end || originals.begin == originals.end)
        return; // nothing but white space
    if (here.substr(0, edges.begin) != there.substr(0, originals.begin))
        subject.find(Rule::whiteSpace, subject.placeOf({0, edges.begin}), {Text::spaceAtBeginning},
                     subject.noteInOriginal({0, originals.begin}));
    const char32_t last = characterBefore(here, edges.end);
    const bool hasWideMark =
        (last >= 0x3001 && last <= 0x3002) || (last >= 0xFF01 && last <= 0xFF5E); // with a blank in itself
    const bool isBlankOfMark = hasWideMark && edges.end == here.size() && there.substr(originals.end) == " ";
    if (here.substr(edges.end) != there.substr(originals.end) && !isBlankOfMark)
        subject.find(Rule::whiteSpace, subject.placeOf({edges.end, here.size()}), {Text::spaceAtEnd},
                     subject.noteInOriginal({originals.end, there.size()}));
}

/** The first two blanks in a row between words. */
std::optional<Range> doubleBlankIn(std::string_view text)
{
    const Range core = coreOf(text);
    for (size_t at = text.find("  ", core.begin); at < core.end; at = text.find("  ", at))
    {
        const size_t end = text.find_first_not_of(' ', at);
        if (at > 0 && text[at - 1] != '\n' && text[at - 1] != '\r' && text[end] != '\n' && text[end] != '\r')
            return Range{at, end};
        at = end;
    }
    return std::nullopt;
}

void compareBlanks(Subject &subject)
{
    if (const std::optional<Range> blanks = doubleBlankIn(subject.text());
        blanks && !doubleBlankIn(subject.originalText()))
        subject.find(Rule::whiteSpace, subject.placeOf(*blanks), {Text::blanksInARow});
}

/** Whether a letter is of a script in which words stand apart from what they are about. */
bool isApart(char32_t character)
{
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(character), &status);
    return u_isalpha(static_cast<UChar32>(character)) != 0 &&
           (script == USCRIPT_LATIN || script == USCRIPT_CYRILLIC || script == USCRIPT_GREEK);
}

/** Whether a placeholder only takes its argument, as in a sentence for a number that it does not show. */
bool writesNothing(std::string_view conversion)
{
    return conversion == "%nil" || conversion == "%!nil" || conversion == "%.0s" || conversion == "%.0U";
}

/** The first placeholder of a message that a word touches in front, or behind. */
std::optional<Range> touchedIn(const Catalog &catalog, const Message &message, bool isInFront)
{
    const std::string_view raw = catalog.rawText(message);
    for (const Piece &piece : catalog.piecesOf(message))
    {
        if (piece.kind != Piece::Kind::placeholder ||
            writesNothing(raw.substr(piece.begin, piece.positionBegin - piece.begin)))
            continue;
        size_t next = piece.end;
        const bool isEscape = piece.begin > 1 && escapeLength(raw.substr(piece.begin - 2, 2)) > 0;
        const bool isAlone = isInFront ? piece.begin == 0 || isEscape || !catalog.isText(message, piece.begin - 1)
                                       : next >= raw.size() || !catalog.isText(message, next);
        if (!isAlone && isApart(isInFront ? characterBefore(raw, piece.begin) : takeUtf8(raw, next)))
            return piece.place;
    }
    return std::nullopt;
}

void comparePlaceholderBlanks(Subject &subject)
{
    if (!subject.message().hasPlaceholder || !subject.original().hasPlaceholder)
        return;
    for (const bool isInFront : {true, false})
        if (const auto touched = touchedIn(subject.catalog(), subject.message(), isInFront);
            touched && !touchedIn(subject.reference(), subject.original(), isInFront))
            subject.find(Rule::whiteSpace, *touched, {isInFront ? Text::noBlankInFront : Text::noBlankBehind});
}

// Line breaks

struct Break
{
    char character;
    std::string_view mistyped;
    Text fewer, more;
};
constexpr Break breaks[] = {{'\n', "/n", Text::breaksFewer, Text::breaksMore},
                            {'\t', "/t", Text::tabsFewer, Text::tabsMore}};

/** Whether a text is broken where its lines are full, which each language does at other places. */
bool isFilled(std::string_view text)
{
    constexpr size_t full = 45;
    constexpr unsigned several = 2;
    unsigned lines = 0;
    bool hasFullLine = false;
    size_t begin = 0;
    for (size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
    {
        ++lines;
        hasFullLine = hasFullLine || at - begin >= full;
        begin = at + 1;
    }
    return hasFullLine && lines >= several;
}

/** How many lines of a text go on in a column, as in the help on options. */
unsigned linesOfColumn(std::string_view text)
{
    unsigned lines = 0;
    for (size_t at = text.find("\n        "); at != std::string_view::npos; at = text.find("\n        ", at + 1))
        ++lines;
    return lines;
}

/** Whether a slash stands where a backslash was meant. */
bool compareBreaks(Subject &subject)
{
    const std::string_view here = subject.text();
    const std::string_view there = subject.originalText();
    bool isMistyped = false;
    for (const Break &row : breaks)
    {
        const unsigned all = count(here, row.character);
        const size_t slash = here.find(row.mistyped);
        if (slash != std::string_view::npos && there.find(row.mistyped) == std::string_view::npos &&
            all < count(there, row.character))
        {
            subject.find(Rule::lineBreak, subject.placeOf({slash, slash + row.mistyped.size()}),
                         {Text::slashForBackslash, {std::string(row.mistyped), std::string("\\") + row.mistyped[1]}});
            isMistyped = true;
            continue;
        }
        unsigned ours = count(part(here, coreOf(here)), row.character);
        unsigned theirs = count(part(there, coreOf(there)), row.character);
        if (row.character == '\n' && ours != theirs && doubleBlankIn(there))
        {
            ours -= linesOfColumn(part(here, coreOf(here)));
            theirs -= linesOfColumn(part(there, coreOf(there)));
        }
        const bool isOtherwiseFilled = row.character == '\n' && ours > 0 && isFilled(part(there, coreOf(there)));
        if (ours != theirs && !here.empty() && !there.empty() && !isOtherwiseFilled)
            subject.find(Rule::lineBreak, subject.message().source,
                         {ours < theirs ? row.fewer : row.more, {ours, theirs}},
                         Note{true, subject.original().source, {Text::referenceIsHere}});
    }
    return isMistyped;
}

// Punctuation

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

/** A text without white space, closing quotation marks and brackets at its end; where that ends. */
size_t endOfWords(std::string_view text)
{
    size_t end = coreOf(text).end;
    while (end > 0)
    {
        const size_t begin = stepBackUtf8(text, end);
        size_t next = begin;
        const char32_t character = takeUtf8(text, next);
        const int8_t type = u_charType(static_cast<UChar32>(character));
        const bool isQuote = character == '"' || character == '\'' || type == U_FINAL_PUNCTUATION;
        if (!isQuote && !isWhiteSpace(character))
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
    if (here == there || (isFree(here) && isFree(there)) || coreOf(subject.text()).end == 0)
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

// Pairs

/** How many more of a kind are opened than closed; of quotation marks, whether one is left over. */
struct Balance
{
    std::array<int, 3> brackets{};
    bool hasOddQuote = false;
    bool closesFirst = false; // one is closed before it is opened

    bool isFull() const { return brackets == std::array<int, 3>{} && !hasOddQuote; }
};

Balance balanceOf(std::string_view text)
{
    constexpr std::u32string_view pairs[] = {U"()（）", U"{}｛｝", U"【】「」"};
    constexpr std::u32string_view quotes = U"\"„“”«»";
    Balance balance;
    for (size_t at = 0; at < text.size();)
    {
        const char32_t character = takeUtf8(text, at);
        const bool isPlain = character == ' ' || (character | 0x20U) - 'a' < 26; // as most are
        if (isPlain)
            continue;
        balance.hasOddQuote = balance.hasOddQuote != (quotes.find(character) != std::u32string_view::npos);
        for (size_t i = 0; i < std::size(pairs); ++i)
            if (const size_t place = pairs[i].find(character); place != std::u32string_view::npos)
            {
                balance.brackets[i] += place % 2 == 0 ? 1 : -1;
                balance.closesFirst = balance.closesFirst || balance.brackets[i] < 0;
            }
    }
    return balance;
}

void comparePairs(Subject &subject)
{
    const Balance here = balanceOf(subject.text());
    if (here.isFull() && !here.closesFirst)
        return;
    const Balance there = balanceOf(subject.originalText());
    if (!here.isFull() && there.isFull())
        subject.find(Rule::unbalanced, subject.message().source,
                     {here.hasOddQuote ? Text::quoteUnbalanced : Text::bracketUnbalanced});
    else if (here.isFull() && !there.closesFirst)
        subject.find(Rule::unbalanced, subject.message().source, {Text::bracketsTurned});
}

/** Whether a text begins with a quotation mark of any kind, or ends with one. */
bool touchesQuote(std::string_view text)
{
    constexpr std::u32string_view quotes = U"\"'„“”«»‘’‚‹›「」『』";
    const Range core = coreOf(text);
    size_t next = core.begin;
    return core.begin < core.end && (quotes.find(takeUtf8(text, next)) != std::u32string_view::npos ||
                                     quotes.find(characterBefore(text, core.end)) != std::u32string_view::npos);
}

/** As a cell of a table in text form is wrapped, and stays so when it is copied. */
void compareWrapping(Subject &subject)
{
    const Range core = coreOf(subject.text());
    const std::string_view here = part(subject.text(), core);
    if (here.size() > 2 && here.front() == '"' && here.back() == '"' && !touchesQuote(subject.originalText()))
        subject.find(Rule::unbalanced, subject.message().source, {Text::wrappedInQuotes});
}

} // namespace

Range coreOf(std::string_view text)
{
    Range core{0, text.size()};
    for (size_t next = 0; core.begin < text.size() && isWhiteSpace(takeUtf8(text, next));)
        core.begin = next;
    if (core.begin == core.end)
        return {0, 0};
    while (core.end > core.begin)
    {
        const size_t last = stepBackUtf8(text, core.end);
        size_t next = last;
        if (!isWhiteSpace(takeUtf8(text, next)))
            break;
        core.end = last;
    }
    return core;
}

void compareWording(Subject &subject)
{
    if (!compareBreaks(subject))
        compareEdges(subject);
    compareBlanks(subject);
    comparePlaceholderBlanks(subject);
    if (coreOf(subject.text()).end == 0)
        return;
    compareEndings(subject);
    compareFieldColons(subject);
    comparePairs(subject);
    compareWrapping(subject);
}

void checkSlashes(Subject &subject)
{
    const std::string_view text = subject.text();
    for (const Break &row : breaks)
        for (size_t at = text.find(row.mistyped); at < text.size() && !subject.isFull(Rule::lineBreak);
             at = text.find(row.mistyped, at + 1))
        {
            const size_t end = at + row.mistyped.size();
            constexpr std::string_view enders = ".!:?";
            const bool isBehindSentence = at > 0 && enders.find(text[at - 1]) != std::string_view::npos;
            if (end == text.size() ? at > 0 && text[at - 1] != ' ' : isBehindSentence)
                subject.find(
                    Rule::lineBreak, subject.placeOf({at, end}),
                    {Text::slashForBackslash, {std::string(row.mistyped), std::string("\\") + row.mistyped[1]}});
        }
}

} // namespace tool::check
