#include "check/rules/marks/pairs.h"

#include "check/texts/blanks.h"
#include "check/texts/characters.h"

#include <array>

namespace tool::check
{
namespace
{

/** How many more of a kind are opened than closed; of quotation marks, whether one is left over. */
struct Balance
{
    std::array<int, 3> brackets{};
    bool hasOddQuote = false;
    bool closesFirst = false; // a bracket is closed before it is opened

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
        const bool isPlain = character == ' ' || (character | 0x20U) - 'a' < 26; // most characters are
        if (isPlain)
            continue;
        balance.hasOddQuote = balance.hasOddQuote != isAmong(character, quotes);
        for (size_t i = 0; i < std::size(pairs); ++i)
            if (const size_t place = pairs[i].find(character); place != std::u32string_view::npos)
            {
                balance.brackets[i] += place % 2 == 0 ? 1 : -1;
                balance.closesFirst = balance.closesFirst || balance.brackets[i] < 0;
            }
    }
    return balance;
}

void compareBalance(Subject &subject)
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
    const Range core = coreOf(text);
    size_t next = core.begin;
    return core.begin < core.end &&
           (isQuotationMark(takeUtf8(text, next)) || isQuotationMark(characterBefore(text, core.end)));
}

/** Finds a text in quotation marks, as a cell of a table in text form is written and copied by mistake. */
void compareWrapping(Subject &subject)
{
    const Range core = coreOf(subject.text());
    const std::string_view here = partOf(subject.text(), core);
    if (here.size() > 2 && here.front() == '"' && here.back() == '"' && !touchesQuote(subject.originalText()))
        subject.find(Rule::unbalanced, subject.message().source, {Text::wrappedInQuotes});
}

} // namespace

void comparePairs(Subject &subject)
{
    compareBalance(subject);
    compareWrapping(subject);
}

} // namespace tool::check
