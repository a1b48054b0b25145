#include "check/rules/files/lengths.h"

#include "check/texts/language_words.h"
#include "check/texts/utf8.h"

#include <algorithm>

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

constexpr LengthRow goodLengths[] = {{25, 0, 0, 0, 0},
                                     {40, 0.38, 2.2, 0.25, 2.6},
                                     {60, 0.44, 2.2, 0.28, 2.9},
                                     {100, 0.55, 2.1, 0.3, 3},
                                     {UINT32_MAX, 0.55, 1.85, 0.4, 2.7}};

uint32_t charactersOf(const Tokens &tokens)
{
    const std::string_view text = tokens.text();
    size_t count =
        static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
    for (const Token &token : tokens)
        if (token.kind == Token::Kind::placeholder)
            count -= token.end - token.begin;
    return static_cast<uint32_t>(std::min<size_t>(count, UINT32_MAX));
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

} // namespace

LengthCheck::LengthCheck(std::string_view language) : m_hasBlanks(isWrittenWithBlanks(language))
{
}

Lengths LengthCheck::add(Subject &subject)
{
    const Tokens &tokens = subject.tokensWithoutKeys();
    const Tokens &original = subject.originalTokensWithoutKeys();
    const Lengths lengths{charactersOf(tokens), charactersOf(original)};
    if (subject.text() != subject.originalText())
        m_measured.push_back(
            {&subject.message(), &subject.original(), lengths, sentencesIn(tokens), sentencesIn(original)});
    return lengths;
}

double LengthCheck::usualRatio() const
{
    std::vector<double> ratios;
    for (const Measured &each : m_measured)
        if (each.lengths.original > 0)
            ratios.push_back(static_cast<double>(each.lengths.text) / each.lengths.original);
    if (ratios.size() < fewest)
        return 0;
    const auto middle = ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2);
    std::nth_element(ratios.begin(), middle, ratios.end());
    return *middle;
}

void LengthCheck::finish(Findings &findings) const
{
    const double usual = usualRatio();
    if (usual == 0)
        return;
    const auto tell = [&findings](const Measured &each, Text text) {
        findings.push_back({Rule::textLength, each.message->id, each.message->unit.begin, each.message->source,
                            Phrase{text}, Note{true, each.original->source, {Text::referenceIsHere}}});
    };
    for (const Measured &each : m_measured)
    {
        const LengthRow *const row =
            std::find_if(std::begin(goodLengths), std::end(goodLengths) - 1,
                         [&each](const LengthRow &length) { return each.lengths.original < length.below; });
        if (row == std::begin(goodLengths))
            continue;
        const double ratio = each.lengths.text / (each.lengths.original * usual);
        constexpr double half = 0.7; // where a sentence is missing
        const bool isShort = ratio < (m_hasBlanks ? row->shortest : row->shortestOfSigns) ||
                             (each.sentences < each.originalSentences && ratio < half);
        if (isShort)
            tell(each, Text::textShort);
        else if (ratio > (m_hasBlanks ? row->longest : row->longestOfSigns))
            tell(each, Text::textLong);
    }
}

} // namespace tool::check
