#include "check/rules/conversions/order.h"

#include "check/texts/characters.h"
#include "check/texts/language_words.h"

#include <algorithm>
#include <optional>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

/** The marks and words around an argument; a member is 0 or empty where there are none. */
struct Surrounding
{
    const Token *token;
    std::string_view conversion; // its name, as "s"
    bool isInQuotes;
    bool isInBrackets;
    bool isHead;     // stands in front of a colon, as in "store: no such file"
    uint32_t before; // the word or mark that it touches or follows
    uint32_t behind;
    uint32_t beforeAtBlank; // the word in front of it, whatever stands between
    Relation behindRelation;
};

bool isQuote(char32_t mark)
{
    return mark == '`' || isQuotationMark(mark);
}

bool isDash(char32_t mark)
{
    constexpr std::u32string_view dashes = U"-–—~～〜‑‐−";
    return isAmong(mark, dashes);
}

/** The same for all forms of a mark. */
uint32_t classOf(char32_t mark)
{
    if (isDash(mark))
        return '-';
    constexpr std::u32string_view wide = U"（）：／＃＝×";
    constexpr std::u32string_view plain = U"():/#=x";
    const size_t place = wide.find(mark);
    return place != std::u32string_view::npos ? plain[place] : mark;
}

/** Whether a mark belongs to no argument, since translations move it. */
bool isLoose(char32_t mark)
{
    constexpr std::u32string_view marks = U".,;!?…。、，；！？،؛؟";
    return isAmong(mark, marks);
}

std::string_view nameIn(std::string_view placeholder)
{
    const size_t begin = placeholder.find_first_not_of("-+ #.*!0123456789", 1);
    return placeholder.substr(begin, placeholder.find('[') - begin);
}

/** The word or sign beside an argument, as both languages may have it: a unit, a name; 0 where there is none. */
uint32_t sideOf(const Tokens &tokens, size_t at, bool isBehind)
{
    if (isBehind ? at + 1 >= tokens.size() : at == 0)
        return 0;
    const Token &side = tokens[isBehind ? at + 1 : at - 1];
    if (side.kind == Token::Kind::word)
        return side.content;
    const bool touches = (isBehind ? side : tokens[at]).isJoined;
    const bool isTold = side.isMark() && touches && !isLoose(side.content) && !isQuote(side.content) &&
                        classOf(side.content) != '(' && classOf(side.content) != ')' && classOf(side.content) != '-' &&
                        classOf(side.content) != ':' && classOf(side.content) != '/';
    return isTold ? classOf(side.content) : 0;
}

/** The word in front of an argument, quotation marks aside. */
uint32_t wordInFront(const Tokens &tokens, size_t at)
{
    for (size_t back = at; back > 0 && at - back < 3;)
    {
        const Token &word = tokens[--back];
        if (word.isWord())
            return word.content;
        if (!word.isMark() || !isQuote(word.content))
            break;
    }
    return 0;
}

/** What a word or ending behind an argument says of it, quotation marks and blanks aside. */
Relation relationBehind(const Tokens &tokens, size_t at, std::string_view language)
{
    const std::string_view text = tokens.text();
    size_t behind = tokens[at].end;
    for (size_t next = at + 1; next < tokens.size() && tokens[next].isMark() && isQuote(tokens[next].content); ++next)
        behind = tokens[next].end;
    behind = std::min(text.find_first_not_of(' ', behind), text.size());
    return markedBehind(language, text.substr(behind));
}

/** Of a text with several arguments. */
std::vector<Surrounding> surroundingsIn(const Tokens &tokens, std::string_view language)
{
    std::vector<Surrounding> all;
    int depth = 0;
    bool isQuoted = false;
    for (size_t i = 0; i < tokens.size(); ++i)
    {
        const Token &token = tokens[i];
        if (token.isMark())
        {
            const uint32_t mark = classOf(token.content);
            depth += mark == '(' ? 1 : mark == ')' ? -1 : 0;
            const bool isApostrophe = (mark == '\'' || mark == U'’') && token.isJoined && i > 0 &&
                                      tokens[i - 1].isWord() && i + 1 < tokens.size() && tokens[i + 1].isWord() &&
                                      tokens[i + 1].isJoined;
            if (isQuote(token.content) && !isApostrophe)
                isQuoted = !isQuoted;
        }
        if (token.kind != Token::Kind::placeholder)
            continue;
        const bool isHead = i == 0 && tokens[1].isMark() && classOf(tokens[1].content) == ':';
        all.push_back({&token, nameIn(tokens.text(token)), isQuoted, depth > 0, isHead, sideOf(tokens, i, false),
                       sideOf(tokens, i, true), wordInFront(tokens, i), relationBehind(tokens, i, language)});
    }
    return all;
}

const Surrounding *find(const std::vector<Surrounding> &all, uint32_t position)
{
    const Surrounding *found = nullptr;
    for (const Surrounding &each : all)
        if (each.token->content == position)
        {
            if (found != nullptr)
                return nullptr;
            found = &each;
        }
    return found;
}

/** One argument here and there. */
struct Pair
{
    const Surrounding *here, *there;
};

bool isExchanged(bool a, bool b, bool aThere, bool bThere)
{
    return a != b && a == bThere && b == aThere;
}

/** Whether something that stands beside one of two arguments stands beside the other one here. */
bool sideIsExchanged(const Pair &a, const Pair &b, uint32_t Surrounding::*side)
{
    const auto isAtOther = [side](const Pair &one, const Pair &other) {
        const uint32_t mark = one.there->*side;
        return mark != 0 && other.there->*side != mark && one.here->*side != mark && other.here->*side == mark;
    };
    return isAtOther(a, b) || isAtOther(b, a);
}

/** "from", "to" and "of" in front of the one there, of the other here. */
bool relationIsExchanged(const Pair &a, const Pair &b, std::string_view here, std::string_view there)
{
    for (const Relation relation : {Relation::source, Relation::goal, Relation::whole})
    {
        const auto isMarked = [relation](const Surrounding &around, std::string_view language) {
            return marksInFront(language, around.beforeAtBlank, relation) || around.behindRelation == relation;
        };
        if (isExchanged(isMarked(*a.here, here), isMarked(*b.here, here), isMarked(*a.there, there),
                        isMarked(*b.there, there)))
            return true;
    }
    return false;
}

/** The mark alone that stands between an argument and the next, as in "8-64"; 0 where more does. */
uint32_t markBetween(const Tokens &tokens, const Token &first, const Token &second)
{
    const auto at = static_cast<size_t>(&first - &*tokens.begin());
    if (at + 2 >= tokens.size() || &tokens[at + 2] != &second || !tokens[at + 1].isMark())
        return 0;
    const uint32_t mark = classOf(tokens[at + 1].content);
    return isLoose(mark) || isQuote(mark) || mark == '(' || mark == ')' ? 0 : mark;
}

/** "%1-%2" there, "%2-%1" here. */
bool rowIsExchanged(Subject &subject, const Pair &a, const Pair &b)
{
    const uint32_t mark = markBetween(subject.originalTokens(), *a.there->token, *b.there->token);
    return mark != 0 && markBetween(subject.tokens(), *b.here->token, *a.here->token) == mark;
}

void compareArgumentOrder(Subject &subject)
{
    const std::string_view language = subject.language();
    const std::string_view original = subject.originalLanguage();
    const std::vector<Surrounding> theirs = surroundingsIn(subject.originalTokens(), original);
    const std::vector<Surrounding> ours = surroundingsIn(subject.tokens(), language);
    for (size_t i = 0; i < theirs.size(); ++i)
        for (size_t j = i + 1; j < std::min(theirs.size(), i + 5); ++j)
        {
            const Pair a{find(ours, theirs[i].token->content), &theirs[i]};
            const Pair b{find(ours, theirs[j].token->content), &theirs[j]};
            if (a.here == nullptr || b.here == nullptr || theirs[i].conversion != theirs[j].conversion ||
                a.here->conversion != a.there->conversion || b.here->conversion != b.there->conversion)
                continue;
            const bool isOther =
                isExchanged(a.here->isInQuotes, b.here->isInQuotes, a.there->isInQuotes, b.there->isInQuotes) ||
                isExchanged(a.here->isInBrackets, b.here->isInBrackets, a.there->isInBrackets, b.there->isInBrackets) ||
                isExchanged(a.here->isHead, b.here->isHead, a.there->isHead, b.there->isHead) ||
                sideIsExchanged(a, b, &Surrounding::before) || sideIsExchanged(a, b, &Surrounding::behind) ||
                rowIsExchanged(subject, a, b) || (j == i + 1 && relationIsExchanged(a, b, language, original));
            if (!isOther)
                continue;
            const Pair &first = a.here->token->begin < b.here->token->begin ? a : b;
            subject.find(Rule::argumentOrder, subject.placeOf({first.here->token->begin, first.here->token->end}),
                         {Text::argumentsExchanged, {theirs[i].token->content, theirs[j].token->content}},
                         Note{true,
                              subject.placeOfOriginal({first.there->token->begin, first.there->token->end}),
                              {Text::referenceHasItHere}});
            return;
        }
}

/** The numbers of a text that are no positions. */
std::vector<const Token *> numeralsIn(const Tokens &tokens)
{
    std::vector<const Token *> numbers;
    for (const Token &token : tokens)
        if (token.kind == Token::Kind::number)
            numbers.push_back(&token);
    return numbers;
}

/** Whether two numbers in a row are of a date, whose order each language has for itself. */
bool areOfDate(const std::vector<const Token *> &numbers, size_t index)
{
    const auto areTied = [&numbers](size_t at) {
        return at + 1 < numbers.size() && numbers[at + 1] - numbers[at] == 2 && numbers[at + 1]->isJoined &&
               (numbers[at] + 1)->isJoined;
    };
    return areTied(index) && (areTied(index + 1) || (index > 0 && areTied(index - 1)));
}

void compareNumberOrder(Subject &subject)
{
    const std::vector<const Token *> theirs = numeralsIn(subject.originalTokens());
    if (theirs.size() < 2)
        return;
    const std::vector<const Token *> ours = numeralsIn(subject.tokens());
    if (ours.size() != theirs.size())
        return;
    const auto place = [](const std::vector<const Token *> &numbers, uint32_t content) -> std::optional<size_t> {
        std::optional<size_t> found;
        for (size_t i = 0; i < numbers.size(); ++i)
            if (numbers[i]->content == content)
            {
                if (found)
                    return std::nullopt;
                found = i;
            }
        return found;
    };
    constexpr std::ptrdiff_t near = 3; // as in "from 8 to 64", not in a sentence on two things
    for (size_t i = 0; i + 1 < theirs.size(); ++i)
    {
        if (theirs[i + 1] - theirs[i] > near || areOfDate(theirs, i) || !place(theirs, theirs[i]->content) ||
            !place(theirs, theirs[i + 1]->content))
            continue;
        const std::optional<size_t> first = place(ours, theirs[i]->content);
        const std::optional<size_t> second = place(ours, theirs[i + 1]->content);
        if (!first || !second || *second + 1 != *first || ours[*first] - ours[*second] > near)
            continue;
        subject.find(
            Rule::literalChanged, subject.placeOf({ours[*second]->begin, ours[*first]->end}), {Text::numbersExchanged},
            Note{true, subject.placeOfOriginal({theirs[i]->begin, theirs[i + 1]->end}), {Text::referenceHasItHere}});
        return;
    }
}

} // namespace

void compareOrder(Subject &subject)
{
    if (subject.originalTokens().placeholders() > 1 && subject.tokens().placeholders() > 1)
        compareArgumentOrder(subject);
    compareNumberOrder(subject);
}

} // namespace tool::check
