#include "check/rules/files/neighbours.h"

#include "check/texts/language_words.h"
#include "check/texts/utf8.h"

#include <algorithm>
#include <cmath>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

/** Without marks: at the ends they differ with the place of a text, as "…" and ":"; those of keys stand anywhere. */
uint64_t hashOf(const Tokens &tokens)
{
    uint64_t hash = 1469598103934665603U;
    for (const Token &token : tokens)
        if (!token.isMark())
            hash = (hash ^ token.content ^ (token.kind == Token::Kind::placeholder ? 1U << 31U : 0U)) * 1099511628211U;
    return hash;
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

Neighbours::Neighbours(const ParsedFile &parsed, const ParsedFile &reference)
    : m_language(std::string_view(parsed.language()).substr(0, 2)),
      m_originalLanguage(std::string_view(reference.language()).substr(0, 2)),
      m_countsWords(isWrittenWithBlanks(m_language))
{
    m_said.reserve(parsed.messages().size());
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

void Neighbours::add(Subject &subject, Lengths lengths)
{
    const Tokens &tokens = subject.tokensWithoutKeys();
    const Tokens &original = subject.originalTokensWithoutKeys();
    Said said;
    said.message = &subject.message();
    said.original = &subject.original();
    said.isSame = subject.text() == subject.originalText();
    said.hash = hashOf(tokens);
    said.lengths = lengths;
    said.placeholders = kindsOf(original);
    said.words = static_cast<uint16_t>(std::min<size_t>(tokens.words(), UINT16_MAX));
    said.denies = denies(m_language, tokens);
    said.originalDenies = denies(m_originalLanguage, original);
    if (original.words() == 1)
        said.originalWord =
            std::find_if(original.begin(), original.end(), [](const Token &token) { return token.isWord(); })->content;
    said.stems = stemsIn(tokens, languageBit(m_language));
    said.originalStems = stemsIn(original, languageBit(m_originalLanguage));
    m_said.push_back(said);
}

void Neighbours::find(Findings &findings, const Said &said, Phrase text, const Said &other)
{
    findings.push_back({Rule::otherMeaning, said.message->id, said.message->unit.begin, said.message->source,
                        std::move(text), Note{false, other.message->source, {Text::otherIsHere}}});
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
    return std::any_of(std::begin(pairs), std::end(pairs), [&](const auto &pair) {
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
        const bool isLong = m_countsWords ? one.words > 1 : one.lengths.text >= longEnough;
        if (!isNear && !isLong)
            continue;
        // Nobody can tell which of both is wrong.
        find(findings, one, {Text::textOfOther, {static_cast<unsigned>(next.message->id)}}, next);
        find(findings, next, {Text::textOfOther, {static_cast<unsigned>(one.message->id)}}, one);
    }
}

void Neighbours::findExchanged(double usual, Findings &findings) const
{
    if (usual == 0)
        return;
    const auto distance = [usual](const Said &said, const Said &other) {
        return std::abs(std::log((said.lengths.text + 1) / ((other.lengths.original + 1) * usual)));
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
        find(findings, one, {Text::textsExchanged, {static_cast<unsigned>(next.message->id)}}, next);
        find(findings, next, {Text::textsExchanged, {static_cast<unsigned>(one.message->id)}}, one);
    }
}

void Neighbours::finish(double usualRatio, Findings &findings)
{
    findRepeated(findings);
    findExchanged(usualRatio, findings);
}

} // namespace tool::check
