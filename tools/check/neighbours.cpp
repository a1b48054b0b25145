#include "check/neighbours.h"

#include "check/language_words.h"
#include "check/utf8.h"

#include <algorithm>
#include <cmath>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

constexpr size_t fewest = 20; // messages from which a ratio is told

/** The shortest and the longest good translation in usual lengths; of signs in languages without blanks. */
struct LengthRow
{
    uint32_t below; // characters of the original
    double shortest, longest;
    double shortestOfSigns, longestOfSigns;
};

constexpr LengthRow lengths[] = {{25, 0, 0, 0, 0},
                                 {40, 0.38, 2.2, 0.25, 2.6},
                                 {60, 0.44, 2.2, 0.28, 2.9},
                                 {100, 0.55, 2.1, 0.3, 3},
                                 {UINT32_MAX, 0.55, 1.85, 0.4, 2.7}};

uint32_t charactersOf(std::string_view text, const Tokens &tokens)
{
    size_t count =
        static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
    for (const Token &token : tokens)
        if (token.kind == Token::Kind::placeholder)
            count -= token.end - token.begin;
    return static_cast<uint32_t>(std::min<size_t>(count, UINT32_MAX));
}

/** Without marks: at the ends they differ with the place of a text, as "…" and ":"; those of keys stand anywhere. */
uint64_t hashOf(const Tokens &tokens)
{
    uint64_t hash = 1469598103934665603U;
    for (const Token &token : tokens)
        if (!token.isMark())
            hash = (hash ^ token.content ^ (token.kind == Token::Kind::placeholder ? 1U << 31U : 0U)) * 1099511628211U;
    return hash;
}

/** A text without the marks of keys, which stand within words. */
std::string withoutKeys(std::string_view text)
{
    std::string kept(text);
    kept.erase(std::remove_if(kept.begin(), kept.end(), [](char byte) { return byte == '&' || byte == '_'; }),
               kept.end());
    return kept;
}

/** How many marks end a sentence with another one behind it. */
uint8_t sentencesIn(const Tokens &tokens)
{
    constexpr std::u32string_view ends = U".!?。！？؟।";
    unsigned count = 1;
    for (size_t i = 1; i + 1 < tokens.size(); ++i)
    {
        const bool isWide = tokens[i].content >= 0x3000;
        if (tokens[i].isMark() && ends.find(tokens[i].content) != std::u32string_view::npos && tokens[i - 1].isWord() &&
            tokens[i - 1].letters > 2 && (isWide || !tokens[i + 1].isJoined))
            ++count;
    }
    return static_cast<uint8_t>(std::min(count, 255U));
}

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

/** Which conversions a text has, whatever their order. */
uint32_t kindsOf(const Tokens &tokens)
{
    uint32_t sum = 0;
    for (const Token &token : tokens)
        if (token.kind == Token::Kind::placeholder)
            sum += hashOfWord(tokens.text(token));
    return sum;
}

/** The letter without its accent, so far as it is one of Latin-1. */
char32_t plain(char32_t letter)
{
    constexpr std::string_view letters = "aaaaaaaceeeeiiiidnooooo*ouuuuypsaaaaaaaceeeeiiiidnooooo/ouuuuypy";
    return letter >= 0xC0 && letter <= 0xFF ? static_cast<unsigned char>(letters[letter - 0xC0]) : letter;
}

/** How many beginnings of words are kept of a text. */
template <typename Stems> unsigned stemsOf(const Stems &stems)
{
    return static_cast<unsigned>(stems.size()) - static_cast<unsigned>(std::count(stems.begin(), stems.end(), 0U));
}

} // namespace

Neighbours::Neighbours(const Catalog &catalog, const Catalog &reference)
    : m_language(std::string_view(catalog.language()).substr(0, 2)),
      m_originalLanguage(std::string_view(reference.language()).substr(0, 2))
{
    constexpr std::string_view withoutBlanks = "bo dz ja km lo my th zh";
    m_countsWords = m_language.empty() || withoutBlanks.find(m_language) == std::string_view::npos;
    m_said.reserve(catalog.messages().size());
}

/** The beginnings of the first longer words of a text, each once; 0 in the places behind them. */
Neighbours::Stems Neighbours::stemsIn(const Tokens &tokens, uint32_t language)
{
    const std::string_view text = tokens.text();
    Stems stems{};
    size_t count = 0;
    for (const Token &token : tokens)
    {
        constexpr uint8_t shortest = 3;
        constexpr unsigned stem = 4;
        if (!token.isWord() || token.letters < shortest || count == stems.size() ||
            (languagesOfWord(token.content) & language) != 0)
            continue;
        uint32_t hash = emptyHash;
        size_t at = token.begin;
        for (unsigned i = 0; i < stem && at < token.end; ++i)
        {
            const char32_t character = takeUtf8(text, at);
            hash = hashedWith(hash, character < 0x80
                                        ? character | 0x20U
                                        : plain(static_cast<char32_t>(u_tolower(static_cast<UChar32>(character)))));
        }
        if (std::find(stems.begin(), stems.begin() + static_cast<std::ptrdiff_t>(count), hash) ==
            stems.begin() + static_cast<std::ptrdiff_t>(count))
            stems[count++] = hash;
    }
    return stems;
}

unsigned Neighbours::common(const Stems &a, const Stems &b)
{
    unsigned count = 0;
    for (const uint32_t stem : a)
        if (stem != 0 && std::find(b.begin(), b.end(), stem) != b.end())
            ++count;
    return count;
}

void Neighbours::add(Subject &subject)
{
    const auto hasKey = [](std::string_view text) { return text.find_first_of("&_") != std::string_view::npos; };
    const bool isPlain = !hasKey(subject.text()) && !hasKey(subject.originalText());
    if (isPlain)
        return add(subject, subject.tokens(), subject.originalTokens());
    const std::string text = withoutKeys(subject.text());
    const std::string original = withoutKeys(subject.originalText());
    add(subject, Tokens(text), Tokens(original));
}

void Neighbours::add(Subject &subject, const Tokens &tokens, const Tokens &original)
{
    if (tokens.words() == 0 || original.words() == 0)
        return;
    Said said;
    said.message = &subject.message();
    said.original = &subject.original();
    said.isSame = subject.text() == subject.originalText();
    said.hash = hashOf(tokens);
    said.size = charactersOf(tokens.text(), tokens);
    said.originalSize = charactersOf(original.text(), original);
    said.placeholders = kindsOf(original);
    said.words = static_cast<uint16_t>(std::min<size_t>(tokens.words(), UINT16_MAX));
    said.denies = denies(m_language, tokens);
    said.originalDenies = denies(m_originalLanguage, original);
    said.sentences = sentencesIn(tokens);
    said.originalSentences = sentencesIn(original);
    if (original.words() == 1)
        said.originalWord =
            std::find_if(original.begin(), original.end(), [](const Token &token) { return token.isWord(); })->content;
    said.stems = stemsIn(tokens, languageBit(m_language));
    said.originalStems = stemsIn(original, languageBit(m_originalLanguage));
    m_said.push_back(said);
    if (m_originalLanguage == "en" && said.originalDenies && !said.isSame && deniesOnce(original) &&
        !hintsAtDenial(m_language, tokens))
        subject.find(Rule::otherMeaning, subject.message().source, {Text::denialLost},
                     Note{true, subject.original().source, {Text::referenceIsHere}});
}

void Neighbours::find(Findings &findings, Rule rule, const Said &said, Phrase text, const Said *other)
{
    const Note note{true, said.original->source, {Text::referenceIsHere}};
    findings.push_back({rule, said.message->id, said.message->unit.begin, said.message->source, std::move(text),
                        other == nullptr ? note : Note{false, other->message->source, {Text::otherIsHere}}});
}

/** Whether the originals are two words that no language has one word for. */
bool Neighbours::areOpposites(const Said &a, const Said &b)
{
    constexpr std::pair<std::string_view, std::string_view> pairs[] = {
        {"yes", "no"},        {"on", "off"},          {"true", "false"},    {"start", "stop"},      {"open", "close"},
        {"show", "hide"},     {"enable", "disable"},  {"left", "right"},    {"up", "down"},         {"first", "last"},
        {"next", "previous"}, {"minimum", "maximum"}, {"min", "max"},       {"from", "to"},         {"in", "out"},
        {"add", "remove"},    {"before", "after"},    {"import", "export"}, {"upload", "download"}, {"and", "or"},
    };
    const auto is = [](const Said &said, std::string_view word) { return said.originalWord == hashOfWord(word); };
    return a.originalWord != 0 && b.originalWord != 0 &&
           std::any_of(std::begin(pairs), std::end(pairs), [&](const auto &pair) {
               return (is(a, pair.first) && is(b, pair.second)) || (is(a, pair.second) && is(b, pair.first));
           });
}

/** Whether nothing in their originals lets two messages say the same. */
bool Neighbours::isDistinct(const Said &a, const Said &b)
{
    const unsigned shorter = std::min(stemsOf(a.originalStems), stemsOf(b.originalStems));
    const unsigned shared = common(a.originalStems, b.originalStems);
    return shorter > 0 && (shared == 0 || (shorter - shared > 1 && 2 * shared <= shorter));
}

void Neighbours::findRepeated(Findings &findings) const
{
    std::vector<const Said *> sorted;
    for (const Said &said : m_said)
        if (!said.isSame)
            sorted.push_back(&said);
    std::sort(sorted.begin(), sorted.end(), [](const Said *a, const Said *b) {
        return a->hash != b->hash ? a->hash < b->hash : a->message->id < b->message->id;
    });
    for (size_t i = 0; i + 1 < sorted.size(); ++i)
    {
        const Said &one = *sorted[i];
        const Said &next = *sorted[i + 1];
        if (one.hash != next.hash)
            continue;
        constexpr uint32_t longEnough = 6; // in characters, where words cannot be counted
        const bool isNear = next.message->id - one.message->id <= 2;
        const bool isOfOther = isNear && std::max(stemsOf(one.originalStems), stemsOf(next.originalStems)) > 1;
        if (!isDistinct(one, next) && !areOpposites(one, next) &&
            (!isOfOther || common(one.originalStems, next.originalStems) > 0))
            continue;
        const bool isLong = m_countsWords ? one.words > 1 : one.size >= longEnough;
        if (!isNear && !isLong)
            continue;
        // Nobody can tell which of both is wrong.
        find(findings, Rule::otherMeaning, one, {Text::textOfOther, {static_cast<unsigned>(next.message->id)}}, &next);
        find(findings, Rule::otherMeaning, next, {Text::textOfOther, {static_cast<unsigned>(one.message->id)}}, &one);
    }
}

double Neighbours::usualRatio() const
{
    std::vector<double> ratios;
    for (const Said &said : m_said)
        if (said.originalSize > 0 && !said.isSame)
            ratios.push_back(static_cast<double>(said.size) / said.originalSize);
    if (ratios.size() < fewest)
        return 0;
    const auto middle = ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2);
    std::nth_element(ratios.begin(), middle, ratios.end());
    return *middle;
}

void Neighbours::findExchanged(Findings &findings) const
{
    const double usual = usualRatio();
    if (usual == 0)
        return;
    const auto distance = [usual](const Said &said, const Said &other) {
        return std::abs(std::log((said.size + 1) / ((other.originalSize + 1) * usual)));
    };
    const bool knowsDenials = knowsDenial(m_language) && knowsDenial(m_originalLanguage);
    for (size_t i = 0; i + 1 < m_said.size(); ++i)
    {
        const Said &one = m_said[i];
        const Said &next = m_said[i + 1];
        if (one.isSame || next.isSame || one.placeholders != next.placeholders || !isDistinct(one, next))
            continue;
        const double closer = distance(one, one) + distance(next, next) - distance(one, next) - distance(next, one);
        const int words =
            static_cast<int>(common(one.stems, next.originalStems) + common(next.stems, one.originalStems)) -
            static_cast<int>(common(one.stems, one.originalStems) + common(next.stems, next.originalStems));
        const bool deniesOther = knowsDenials && one.originalDenies != next.originalDenies &&
                                 one.denies == next.originalDenies && next.denies == one.originalDenies;
        constexpr double enough = 2;
        if (closer <= 0 || words < 0 || closer + words + (deniesOther ? 1.5 : 0) < enough)
            continue;
        if (words == 0 && !deniesOther && closer < 2 * enough)
            continue;
        find(findings, Rule::otherMeaning, one, {Text::textsExchanged, {static_cast<unsigned>(next.message->id)}},
             &next);
        find(findings, Rule::otherMeaning, next, {Text::textsExchanged, {static_cast<unsigned>(one.message->id)}},
             &one);
    }
}

void Neighbours::findLengths(Findings &findings) const
{
    const double usual = usualRatio();
    if (usual == 0)
        return;
    for (const Said &said : m_said)
    {
        const LengthRow *const row =
            std::find_if(std::begin(lengths), std::end(lengths) - 1,
                         [&said](const LengthRow &each) { return said.originalSize < each.below; });
        if (said.isSame || row == std::begin(lengths))
            continue;
        const double ratio = said.size / (said.originalSize * usual);
        constexpr double half = 0.7; // where a sentence is missing
        const bool isShort = ratio < (m_countsWords ? row->shortest : row->shortestOfSigns) ||
                             (said.sentences < said.originalSentences && ratio < half);
        if (isShort)
            find(findings, Rule::textLength, said, {Text::textShort}, nullptr);
        else if (ratio > (m_countsWords ? row->longest : row->longestOfSigns))
            find(findings, Rule::textLength, said, {Text::textLong}, nullptr);
    }
}

void Neighbours::finish(Findings &findings)
{
    findRepeated(findings);
    findExchanged(findings);
    findLengths(findings);
}

} // namespace tool::check
