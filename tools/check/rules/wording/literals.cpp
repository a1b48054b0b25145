#include "check/rules/wording/literals.h"

#include "check/texts/characters.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

/** A text with ASCII for every decimal digit, and without the marks that part groups of digits. */
std::string withPlainNumbers(std::string_view text)
{
    std::string plain;
    bool isBehindDigit = false;
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        const int32_t digit = u_charDigitValue(static_cast<UChar32>(character));
        size_t next = at;
        const bool isParting =
            isBehindDigit &&
            (std::u32string_view(U".,'’٫٬ \u00A0\u202F").find(character) != std::u32string_view::npos) &&
            at < text.size() && u_charDigitValue(static_cast<UChar32>(takeUtf8(text, next))) >= 0;
        if (isParting)
            continue;
        isBehindDigit = digit >= 0;
        if (isBehindDigit)
            plain += static_cast<char>('0' + digit);
        else
            plain += text.substr(begin, at - begin);
    }
    return plain;
}

bool isIdentifier(std::string_view word)
{
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char byte) {
        return isAsciiLetter(byte) || isAsciiDigit(byte) || byte == '_' || byte == '.';
    });
}

/** As "store.conf" and "*.jpg". */
bool isFileName(std::string_view word)
{
    constexpr std::string_view endings[] = {
        "bat",  "c",   "cfg", "conf", "cpp",  "csv", "dll", "exe", "gif",  "gz",  "h",   "htm", "html", "ini",
        "jpeg", "jpg", "js",  "json", "log",  "md",  "mo",  "mp3", "mp4",  "pdf", "png", "po",  "py",   "sh",
        "so",   "sql", "svg", "tar",  "toml", "txt", "xlf", "xml", "yaml", "yml", "zip", "com", "net",  "org"};
    const size_t dot = word.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || (!isIdentifier(word.substr(0, dot)) && word.substr(0, dot) != "*"))
        return false;
    return std::find(std::begin(endings), std::end(endings), word.substr(dot + 1)) != std::end(endings);
}

/** As "/etc/store". */
bool isPath(std::string_view word)
{
    constexpr std::string_view others = "/._-~+";
    return (word[0] == '/' || word.substr(0, 2) == "~/") && std::count(word.begin(), word.end(), '/') > 1 &&
           std::all_of(word.begin(), word.end(), [others](char byte) {
               return isAsciiLetter(byte) || isAsciiDigit(byte) || others.find(byte) != std::string_view::npos;
           });
}

/** As "STORE_HOME" and "$HOME"; names in small letters stand for something else as often as for themselves. */
bool isVariable(std::string_view word)
{
    const auto isOfConstant = [](char byte) {
        return (byte >= 'A' && byte <= 'Z') || isAsciiDigit(byte) || byte == '_';
    };
    if (word[0] == '$')
        return std::all_of(word.begin() + 1, word.end(), isOfConstant) && isAsciiLetter(word[1]);
    const size_t low = word.find('_');
    return low != std::string_view::npos && low > 1 && low + 2 < word.size() &&
           std::all_of(word.begin(), word.end(), isOfConstant);
}

/** Whether a text is about options, where words in capitals stand for what a user writes. */
bool hasOption(std::string_view text)
{
    for (size_t at = text.find('-'); at != std::string_view::npos && at + 1 < text.size(); at = text.find('-', at + 1))
        if ((at == 0 || text[at - 1] == ' ' || text[at - 1] == '[') &&
            (isAsciiLetter(text[at + 1]) || text[at + 1] == '-'))
            return true;
    return text.find(':') < text.find("\n    ") && text.find("\n    ") != std::string_view::npos;
}

/** Whether a word is the same in every language: an address, an option, a name, a number of two digits and more. */
bool isLiteral(std::string_view word)
{
    if (word.size() < 2)
        return false;
    const auto isName = [](char byte) { return (byte >= 'a' && byte <= 'z') || byte == '-'; };
    const size_t at = word.find('@');
    const bool isAddress = word.find("://") != std::string_view::npos || word.substr(0, 4) == "www." ||
                           (at != std::string_view::npos && at > 0 && word.find('.', at) != std::string_view::npos);
    const bool isOption = word.size() > 3 && word.substr(0, 2) == "--" && word[2] != '-' &&
                          std::all_of(word.begin() + 2, word.end(), isName);
    const bool isShortOption = word.size() == 2 && word[0] == '-' && isAsciiLetter(word[1]);
    return isAddress || isOption || isShortOption || isFileName(word) || isPath(word) ||
           std::all_of(word.begin(), word.end(), [](char byte) { return isAsciiDigit(byte); });
}

/** Whether a character is punctuation, as it stands around words and between them. */
bool isAround(char32_t character)
{
    constexpr std::u32string_view ascii = U"\"'()<>[]{},;:.!?";
    return character < 0x80 ? ascii.find(character) != std::u32string_view::npos
                            : u_ispunct(static_cast<UChar32>(character)) != 0;
}

std::string_view withoutPunctuation(std::string_view word)
{
    for (size_t next = 0; !word.empty() && isAround(takeUtf8(word, next)); next = 0)
        word.remove_prefix(next);
    while (!word.empty() && isAround(characterBefore(word, word.size())))
        word = word.substr(0, stepBackUtf8(word, word.size()));
    return word;
}

/** The address that a word holds, without the text in front of its scheme and behind a quote; else the word. */
std::string_view addressIn(std::string_view word)
{
    constexpr std::string_view ofScheme = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-.";
    const size_t colon = word.find("://");
    if (colon == std::string_view::npos)
        return word;
    const size_t begin = word.substr(0, colon).find_last_not_of(ofScheme) + 1; // 0 where all are
    size_t end = colon;
    for (size_t next = end; end < word.size(); end = next)
    {
        const char32_t character = takeUtf8(word, next);
        if (character == '\'' || isWhiteSpace(character) || (character >= 0x80 && isAround(character)))
            break;
    }
    return withoutPunctuation(word.substr(begin, end - begin));
}

/** The part of a word that no language changes: an address up to its first placeholder, an option up to its value. */
std::string_view literalIn(std::string_view word)
{
    if (word.find("://") != std::string_view::npos)
        word = word.substr(0, word.find('%'));
    if (word.substr(0, 2) == "--")
        word = word.substr(0, word.find('='));
    return addressIn(withoutPunctuation(word));
}

unsigned occurrencesIn(std::string_view text, std::string_view part)
{
    unsigned count = 0;
    for (size_t at = text.find(part); at < text.size(); at = text.find(part, at + part.size()))
        ++count;
    return count;
}

/** Whether a text lacks a literal of its original, or has an address less often. */
bool lacks(std::string_view here, std::string_view literal, std::string_view there)
{
    const bool isAddress = literal.find_first_of("@:") != std::string_view::npos;
    return isAddress ? occurrencesIn(here, literal) < occurrencesIn(there, literal)
                     : here.find(literal) == std::string_view::npos;
}

void compareWords(Subject &subject)
{
    constexpr std::string_view between = " \t\n\r\"<>";
    const std::string_view there = subject.originalText();
    std::string here; // both without marks in numbers, made where they are needed
    std::string plainThere;
    for (size_t begin = there.find_first_not_of(between);
         begin < there.size() && !subject.isFull(Rule::literalChanged);)
    {
        const size_t end = std::min(there.find_first_of(between, begin), there.size());
        const std::string_view word = literalIn(there.substr(begin, end - begin));
        const std::string plain = withPlainNumbers(word);
        if (word.find('%') == std::string_view::npos &&
            (isLiteral(plain) || (word.size() > 1 && isVariable(word) && (word[0] == '$' || !hasOption(there)))))
        {
            if (plainThere.empty())
            {
                here = withPlainNumbers(subject.text());
                plainThere = withPlainNumbers(there);
            }
            const auto first = static_cast<size_t>(word.data() - there.data());
            if (lacks(here, plain, plainThere))
                subject.find(Rule::literalChanged, subject.message().source, {Text::literalMissing, {quotation(word)}},
                             subject.noteInOriginal({first, first + word.size()}));
        }
        begin = there.find_first_not_of(between, end);
    }
}

/** Whether a text has a percent sign of its own, and not only those of placeholders. */
bool hasPercent(const ParsedFile &parsed, const Message &message)
{
    const std::string_view raw = parsed.rawText(message);
    for (size_t at = raw.find('%'); at < raw.size(); at = raw.find('%', at + 1))
        if (parsed.isText(message, at))
            return true;
    return raw.find("٪") != std::string_view::npos || raw.find("％") != std::string_view::npos;
}

void comparePercent(Subject &subject)
{
    const size_t there = subject.originalText().find("%%");
    if (there != std::string_view::npos && !hasPercent(subject.parsed(), subject.message()))
        subject.find(Rule::literalChanged, subject.message().source, {Text::literalMissing, {"%"}},
                     subject.noteInOriginal({there, there + 2}));
}

// Numbers

/** A number that is no position of a placeholder. Its digits are without the marks between groups. */
struct Number
{
    std::string digits;
    Range place;
};

/** Whether a mark parts groups of digits, or a fraction from them. */
bool isParting(const Token &token)
{
    return token.isMark() && token.isJoined &&
           std::u32string_view(U".,'’٫٬").find(token.content) != std::u32string_view::npos;
}

/** How many numbers stand in a row from an index on, with a point or a comma between two. */
size_t numbersInRow(const Tokens &tokens, size_t index)
{
    size_t count = 1;
    for (size_t at = index + 2; at < tokens.size() && isParting(tokens[at - 1]) && tokens[at].isJoined &&
                                tokens[at].kind == Token::Kind::number;
         at += 2)
        ++count;
    return count;
}

/** Whether such a row is one number: groups of three digits and a fraction, and no date, version or address. */
bool isOneNumber(const Tokens &tokens, size_t index, size_t count)
{
    size_t groups = 0;
    for (size_t i = 1; i < count; ++i)
        groups += tokens[index + 2 * i].letters == 3 ? 1 : 0;
    return groups + 2 >= count;
}

std::vector<Number> numbersIn(const Tokens &tokens)
{
    std::vector<Number> numbers;
    const auto add = [&](size_t first, size_t last) {
        Number number{"", {tokens[first].begin, tokens[last].end}};
        for (size_t i = first; i <= last; ++i)
            if (tokens[i].kind == Token::Kind::number)
                number.digits += withPlainNumbers(tokens.text(tokens[i]));
        numbers.push_back(number);
    };
    for (size_t i = 0; i < tokens.size(); ++i)
    {
        if (tokens[i].kind != Token::Kind::number)
            continue;
        const size_t count = numbersInRow(tokens, i);
        const size_t last = i + 2 * (count - 1);
        size_t end = last;
        if (isOneNumber(tokens, i, count))
        {
            while (end + 1 < tokens.size() && tokens[end + 1].kind == Token::Kind::number &&
                   tokens[end + 1].letters == 3)
                ++end; // groups with a blank between
            add(i, end);
        }
        else
            for (size_t each = i; each <= last; each += 2)
                add(each, each);
        i = end;
    }
    return numbers;
}

/** The first number of a list that another has not, of one digit or of more. */
const Number *missingIn(const std::vector<Number> &other, const std::vector<Number> &numbers, bool isOfOneDigit)
{
    for (const Number &number : numbers)
    {
        const auto isSame = [&number](const Number &each) { return each.digits == number.digits; };
        if ((number.digits.size() == 1) == isOfOneDigit && std::none_of(other.begin(), other.end(), isSame))
            return &number;
    }
    return nullptr;
}

/** The first number of one digit in a list that another has too, but less often. */
const Number *repeatedIn(const std::vector<Number> &numbers, const std::vector<Number> &other)
{
    for (const Number &number : numbers)
    {
        const auto isSame = [&number](const Number &each) { return each.digits == number.digits; };
        const auto there = std::count_if(other.begin(), other.end(), isSame);
        if (number.digits.size() == 1 && there > 0 && std::count_if(numbers.begin(), numbers.end(), isSame) > there)
            return &number;
    }
    return nullptr;
}

// Of one digit a number may be written as a word, but not as another number.
void compareNumbers(Subject &subject, bool isTold)
{
    const std::vector<Number> ours = numbersIn(subject.tokens());
    if (ours.empty())
        return;
    const std::vector<Number> theirs = numbersIn(subject.originalTokens());
    const Number *const lost = missingIn(ours, theirs, true);
    const Number *other = missingIn(theirs, ours, true);
    if (lost != nullptr && other == nullptr)
        other = repeatedIn(ours, theirs);
    if (lost != nullptr && other != nullptr)
        subject.find(Rule::literalChanged, subject.placeOf(other->place), {Text::literalMissing, {lost->digits}},
                     subject.noteInOriginal(lost->place));
    const Number *const extra = isTold ? nullptr : missingIn(theirs, ours, false);
    std::string all; // a time may be "10:30" there and "10.30" here
    for (const Number &number : theirs)
        all += number.digits;
    if (extra != nullptr && all.find(extra->digits) == std::string::npos)
        subject.find(Rule::literalChanged, subject.placeOf(extra->place),
                     {Text::numberExtra, {quotation(partOf(subject.text(), extra->place))}});
}

// Units

/** Which power of a thousand bytes a word names: 1 for "KB"; 0 for any other word. */
unsigned powerOf(uint32_t word)
{
    static const WordSet powers[] = {WordSet("kb kib ko kio кб киб кбайт"), WordSet("mb mib mo mio мб миб мбайт"),
                                     WordSet("gb gib go gio гб гиб гбайт"), WordSet("tb tib tio тб тиб тбайт")};
    for (size_t i = 0; i < std::size(powers); ++i)
        if (powers[i].has(word))
            return static_cast<unsigned>(i + 1);
    return 0;
}

/** The first unit behind a number or an argument. */
const Token *unitIn(const Tokens &tokens)
{
    for (size_t i = 1; i < tokens.size(); ++i)
        if (tokens[i].isWord() && !tokens[i - 1].isWord() && !tokens[i - 1].isMark() && powerOf(tokens[i].content) > 0)
            return &tokens[i];
    return nullptr;
}

void compareUnits(Subject &subject)
{
    const Token *const there = unitIn(subject.originalTokens());
    const Token *const here = there != nullptr ? unitIn(subject.tokens()) : nullptr;
    if (here == nullptr || powerOf(here->content) == powerOf(there->content))
        return;
    const auto hasPower = [](const Tokens &tokens, unsigned power) {
        return std::any_of(tokens.begin(), tokens.end(),
                           [power](const Token &token) { return token.isWord() && powerOf(token.content) == power; });
    };
    if (!hasPower(subject.tokens(), powerOf(there->content)) &&
        !hasPower(subject.originalTokens(), powerOf(here->content)))
        subject.find(Rule::literalChanged, subject.placeOf({here->begin, here->end}),
                     {Text::literalMissing, {quotation(subject.originalTokens().text(*there))}},
                     subject.noteInOriginal({there->begin, there->end}));
}

/** The bars of a table's row, and the marks between the fields of a list that a program takes apart. */
void compareSeparators(Subject &subject)
{
    constexpr unsigned fewestCommas = 3;
    const auto separatorsIn = [](std::string_view text, char mark) {
        unsigned count = 0;
        for (size_t at = text.find(mark); at < text.size(); at = text.find(mark, at + 1))
            count += mark == '|' || (at > 0 && text[at - 1] != ' ' && at + 1 < text.size() && text[at + 1] != ' ' &&
                                     !isAsciiDigit(text[at + 1]) && text[at + 1] != '\n')
                         ? 1
                         : 0;
        return count;
    };
    for (const char mark : {'|', ';', ','})
    {
        const unsigned there = separatorsIn(subject.originalText(), mark);
        const unsigned here = there == 0 ? 0 : separatorsIn(subject.text(), mark);
        const bool isRow = mark == '|' || (mark == ';' ? there > 1 : here > 0 && there >= fewestCommas);
        if (here < there && isRow)
            subject.find(
                Rule::literalChanged, subject.message().source, {Text::literalMissing, {std::string(1, mark)}},
                subject.noteInOriginal({subject.originalText().find(mark), subject.originalText().find(mark) + 1}));
    }
}

/** Temperatures of one scale that became those of the other. */
void compareDegrees(Subject &subject)
{
    constexpr std::string_view scales[] = {"°C", "°F"};
    for (size_t i = 0; i < std::size(scales); ++i)
    {
        const std::string_view scale = scales[i];
        const std::string_view other = scales[1 - i];
        const auto has = [](std::string_view text, std::string_view part) {
            return text.find(part) != std::string_view::npos;
        };
        const size_t there = subject.originalText().find(scale);
        if (there != std::string_view::npos && !has(subject.text(), scale) && has(subject.text(), other) &&
            !has(subject.originalText(), other))
            subject.find(Rule::literalChanged, subject.message().source, {Text::literalMissing, {quotation(scale)}},
                         subject.noteInOriginal({there, there + scale.size()}));
    }
}

/** As "{name}" and "{0}", which a program replaces. */
void compareBraces(Subject &subject)
{
    const std::string_view there = subject.originalText();
    for (size_t at = there.find('{'); at < there.size(); at = there.find('{', at + 1))
    {
        const size_t end = there.find('}', at);
        if (end == std::string_view::npos)
            return;
        const std::string_view name = there.substr(at, end + 1 - at);
        if (isIdentifier(name.substr(1, name.size() - 2)) && name[1] != '.' &&
            subject.text().find(name) == std::string_view::npos)
            return subject.find(Rule::literalChanged, subject.message().source,
                                {Text::literalMissing, {quotation(name)}}, subject.noteInOriginal({at, end + 1}));
    }
}

} // namespace

void compareLiterals(Subject &subject)
{
    const size_t before = subject.findings();
    compareWords(subject);
    compareNumbers(subject, subject.findings() > before); // a lost number is not told again as an extra one
    comparePercent(subject);
    compareUnits(subject);
    compareDegrees(subject);
    compareSeparators(subject);
    compareBraces(subject);
}

} // namespace tool::check
