#include "check/rules/wording/left_over.h"

#include "check/texts/characters.h"
#include "check/texts/language_words.h"

#include <algorithm>

namespace tool::check
{
namespace
{

/** Whether a word touches what makes a name of it, as in "--help", "store.txt", "a/b". */
bool isOfName(const Tokens &tokens, size_t index)
{
    constexpr std::u32string_view marks = U"-/\\._@=<>[]{}$#~|";
    const auto isAt = [&](size_t place) {
        return place < tokens.size() && tokens[place].isMark() && isAmong(tokens[place].content, marks);
    };
    const bool isInFront = index > 0 && tokens[index].isJoined && isAt(index - 1);
    const bool isBehind =
        isAt(index + 1) && tokens[index + 1].isJoined && index + 2 < tokens.size() && tokens[index + 2].isJoined;
    return isInFront || isBehind;
}

/** Whether a word is English, and none of the language of the text. */
bool isForeign(const Tokens &tokens, size_t index, uint32_t own)
{
    const Token &token = tokens[index];
    const auto isSmall = [](char byte) { return byte >= 'a' && byte <= 'z'; };
    const std::string_view text = tokens.text(token);
    return token.isWord() && std::any_of(text.begin(), text.end(), isSmall) && isEnglishWord(token.content) &&
           (languagesOfWord(token.content) & own) == 0;
}

/** Whether a text has words to be translated; it is the same as that of its reference. */
bool hasWordsToTranslate(Subject &subject)
{
    const std::string_view language = subject.language();
    const bool isEnglish = subject.originalLanguage() == "en";
    const bool isLatin = isWrittenInLatin(language);
    const Tokens product(subject.reference().productName().value);
    const uint32_t own = languageBit(language);
    const Tokens &tokens = subject.tokens();
    size_t words = 0;
    bool hasSmall = false;
    for (size_t i = 0; i < tokens.size(); ++i)
    {
        const Token &token = tokens[i];
        if (!token.isWord() || isOfName(tokens, i) || product.hasWord(token.content))
            continue;
        constexpr uint8_t shortest = 4; // others are units and the like
        if (isForeign(tokens, i, own) && isEnglish && (token.letters >= shortest || words > 0))
            return true;
        words += token.letters > 2 ? 1 : 0;
        hasSmall = hasSmall || (!token.isCapital && token.letters >= shortest);
    }
    return (hasSmall && (words > 1 || !isLatin)) || (!isEnglish && words > 1);
}

/** Whether a text has English words and is no name, whose words all begin with capitals. */
bool hasEnglishWords(Subject &subject)
{
    const Tokens &tokens = subject.tokens();
    bool isEnglish = false;
    bool hasSmall = false;
    for (size_t i = 0; i < tokens.size(); ++i)
    {
        isEnglish = isEnglish || (isForeign(tokens, i, 0) && !isOfName(tokens, i));
        hasSmall = hasSmall || (tokens[i].isWord() && !tokens[i].isCapital);
    }
    return isEnglish && hasSmall && tokens.words() > 1 && subject.originalLanguage() == "en";
}

/** A part of both texts that is word for word the same. */
struct WordRun
{
    size_t begin, end; // tokens of the translation
    size_t there;      // where it begins in the reference
    size_t words;
    size_t foreign;
};

bool isSame(const Token &a, const Token &b)
{
    return a.kind == b.kind && a.content == b.content;
}

/** Whether a sentence goes on behind a token: it is a word of one, and no mark that parts. */
bool isOfSentence(const Tokens &tokens, size_t index)
{
    const Token &token = tokens[index];
    constexpr std::u32string_view marks = U",'’\"“”()";
    return token.isWord() ? !isOfName(tokens, index) : !token.isMark() || isAmong(token.content, marks);
}

WordRun runAround(const Tokens &here, size_t at, const Tokens &there, size_t place, uint32_t own)
{
    WordRun run{at, at + 1, place, 0, 0};
    while (run.begin > 0 && run.there > 0 && isOfSentence(here, run.begin - 1) &&
           isSame(here[run.begin - 1], there[run.there - 1]))
    {
        --run.begin;
        --run.there;
    }
    while (run.end < here.size() && run.there + (run.end - run.begin) < there.size() && isOfSentence(here, run.end) &&
           isSame(here[run.end], there[run.there + (run.end - run.begin)]))
        ++run.end;
    for (size_t i = run.begin; i < run.end; ++i)
    {
        run.words += here[i].isWord() ? 1 : 0;
        run.foreign += isForeign(here, i, own) ? 1 : 0;
    }
    return run;
}

bool endsSentence(const Tokens &tokens, size_t behind)
{
    return behind >= tokens.size() || (tokens[behind].isMark() && isAmong(tokens[behind].content, U".!?"));
}

bool beginsSentence(const Tokens &tokens, size_t begin)
{
    return begin == 0 || (tokens[begin - 1].isMark() && isAmong(tokens[begin - 1].content, U".!?"));
}

bool isQuotedWord(const Tokens &tokens, const WordRun &run)
{
    const auto quotes = [](const Token &token) {
        return token.isMark() && (isQuotationMark(token.content) || isAmong(token.content, U"`<>()（）[]"));
    };
    return run.begin > 0 && run.end < tokens.size() && quotes(tokens[run.begin - 1]) && quotes(tokens[run.end]);
}

/** Whether so many words are left that nobody meant them. */
bool isLeft(const Tokens &here, const Tokens &there, const WordRun &run, bool isLatin)
{
    if (run.foreign == 0 || isQuotedWord(here, run))
        return false;
    const size_t thereEnd = run.there + (run.end - run.begin);
    const bool isSentence = beginsSentence(there, run.there) && endsSentence(there, thereEnd) && run.words > 1;
    constexpr size_t enough = 3;
    const auto isSmallWord = [](const Token &token) { return token.isWord() && !token.isCapital; };
    const bool isName = std::none_of(here.begin() + static_cast<std::ptrdiff_t>(run.begin),
                                     here.begin() + static_cast<std::ptrdiff_t>(run.end), isSmallWord);
    return isSentence || (run.words >= enough && !isName && run.foreign > (isLatin ? 1 : 0));
}

void findWordsLeft(Subject &subject)
{
    if (subject.originalLanguage() != "en" || subject.language() == "en")
        return;
    const Tokens &here = subject.tokens();
    const Tokens &there = subject.originalTokens();
    const std::string_view language = subject.language();
    const uint32_t own = languageBit(language);
    const bool isLatin = isWrittenInLatin(language);
    for (size_t at = 0; at < here.size(); ++at)
    {
        if (!isForeign(here, at, own) || isOfName(here, at))
            continue;
        for (size_t place = 0; place < there.size(); ++place)
        {
            if (!isSame(here[at], there[place]))
                continue;
            const WordRun run = runAround(here, at, there, place, own);
            if (!isLeft(here, there, run, isLatin))
                continue;
            const Range range{here[run.begin].begin, here[run.end - 1].end};
            subject.find(Rule::leftOver, subject.placeOf(range),
                         {Text::wordsLeft, {quotation(partOf(subject.text(), range))}},
                         Note{true,
                              subject.placeOfOriginal(
                                  {there[run.there].begin, there[run.there + (run.end - run.begin) - 1].end}),
                              {Text::referenceHasItHere}});
            return;
        }
    }
}

bool isRemark(std::string_view word)
{
    constexpr std::string_view remarks[] = {"TODO", "FIXME", "XXX", "TBD", "TBT", "WIP"};
    return std::find(std::begin(remarks), std::end(remarks), word) != std::end(remarks);
}

/** Remarks that translators write into brackets, for those who come after them. */
const WordSet &remarksInBrackets()
{
    static const WordSet words(
        "fuzzy untranslated review check translate translation translator proofread verify recheck todo prüfen "
        "überprüfen "
        "übersetzen unübersetzt übersetzung übersetzer korrigieren klären vérifier relire traduire traduction revoir "
        "traducteur revisar revisión traducir traducción traductor comprobar verificar verificare tradurre traduzione "
        "rivedere controllare revisão traduzir tradução проверить перевести уточнить перевод переводчик переводчика "
        "проверка доработать перевірити перекласти переклад للمراجعة مراجعة للترجمة ترجمة للتدقيق تدقيق 要確認 要翻訳 "
        "未訳 未翻訳 翻訳中 訳注 要校正 確認中 "
        "仮訳 待翻译 待校对 待确认 未翻译 译注 待校對 待確認 未翻譯 검토필요 번역필요 미번역 sprawdzić przetłumaczyć "
        "tłumaczenie "
        "zkontrolovat přeložit překlad controleren vertalen vertaling nakijken kontrollera översätt översättning "
        "tarkista "
        "käännös kontrol oversæt ellenőrizni fordítás kontrol çeviri לבדיקה לתרגום έλεγχος μετάφραση");
    return words;
}

/** Whether an original is itself about what a remark would be about. */
bool speaksOfChecking(const Tokens &original)
{
    static const WordSet words(
        "translation translate translated translator translators translations review reviewed check "
        "checked checks verify verified verification proofread");
    return std::any_of(original.begin(), original.end(),
                       [](const Token &token) { return token.isWord() && words.has(token.content); });
}

void findRemarks(Subject &subject)
{
    const Tokens &here = subject.tokens();
    const Tokens &there = subject.originalTokens();
    int depth = 0;
    const std::string &language = subject.parsed().language();
    const std::string region = language.size() == 5 ? language.substr(3) : "";
    const bool isPseudo = region == "XA" || region == "XB"; // a pseudo-translation, whose texts are filled up
    size_t repeated = 0;
    for (size_t i = 0; i < here.size(); ++i)
    {
        const Token &token = here[i];
        if (token.isMark())
        {
            depth += isAmong(token.content, U"([{（【［") ? 1 : isAmong(token.content, U")]}）】］") ? -1 : 0;
            repeated = i > 0 && token.isJoined && isSame(token, here[i - 1]) ? repeated + 1 : 0;
            const bool isShout = repeated == 2 && !isPseudo && isAmong(token.content, U"!#*@$~");
            const std::string_view text =
                subject.text().substr(here[i - repeated].begin, token.end - here[i - repeated].begin);
            if (isShout && subject.originalText().find(text) == std::string_view::npos)
                return subject.find(Rule::leftOver, subject.placeOf({here[i - repeated].begin, token.end}),
                                    {Text::remarkLeft, {quotation(text)}});
            continue;
        }
        repeated = 0;
        const bool isFound = token.isWord() && !there.hasWord(token.content) &&
                             ((token.isCapital && token.letters <= 5 && isRemark(here.text(token))) ||
                              (depth > 0 && remarksInBrackets().has(token.content) && !speaksOfChecking(there)));
        if (isFound)
            return subject.find(Rule::leftOver, subject.placeOf({token.begin, token.end}),
                                {Text::remarkLeft, {quotation(here.text(token))}});
    }
}

/** Words that some languages rightly have twice. */
const WordSet &doubledRightly()
{
    static const WordSet words("nous vous die der das den az bye blah ha ne very");
    return words;
}

std::optional<Range> doubledWordIn(const Tokens &tokens)
{
    for (size_t i = 1; i < tokens.size(); ++i)
    {
        const Token &token = tokens[i];
        const bool isApart = token.begin == tokens[i - 1].end + 1; // by one blank, as a column is not
        if (token.isWord() && token.letters > 1 && isApart && tokens.text(token) == tokens.text(tokens[i - 1]) &&
            !isOfName(tokens, i) && !isOfName(tokens, i - 1))
            return Range{i - 1, i};
    }
    return std::nullopt;
}

/** Whether the second half of a text repeats the first, as after inserting it twice. */
bool isTwiceTheSame(const Tokens &tokens)
{
    const size_t half = tokens.size() / 2;
    constexpr size_t longEnough = 30; // in bytes, where words have no blanks between them
    if (tokens.size() % 2 != 0 || half < 2 || (tokens.words() < 4 && tokens.text().size() < longEnough))
        return false;
    return std::equal(tokens.begin(), tokens.begin() + static_cast<std::ptrdiff_t>(half),
                      tokens.begin() + static_cast<std::ptrdiff_t>(half), isSame);
}

void findDoubled(Subject &subject)
{
    constexpr std::string_view reduplicating = "vi id ms tr az zh th km lo my jv su tl ";
    const Tokens &tokens = subject.tokens();
    if (isTwiceTheSame(tokens) && !isTwiceTheSame(subject.originalTokens()))
        return subject.find(Rule::leftOver, subject.message().source, {Text::textTwice});
    if (!subject.language().empty() && reduplicating.find(subject.language()) != std::string_view::npos)
        return;
    const std::optional<Range> found = doubledWordIn(tokens);
    if (!found || doubledRightly().has(tokens[found->end].content) || doubledWordIn(subject.originalTokens()))
        return;
    const Range place{tokens[found->begin].begin, tokens[found->end].end};
    subject.find(Rule::leftOver, subject.placeOf(place),
                 {Text::wordTwice, {quotation(tokens.text(tokens[found->end]))}});
}

} // namespace

void findLeftOver(Subject &subject)
{
    if (subject.text() == subject.originalText())
    {
        // Two languages can share words only where they share letters.
        const bool isOfOtherLetters = !isWrittenInLatin(subject.language()) && hasEnglishWords(subject);
        if (subject.language() != subject.originalLanguage() && hasWordsToTranslate(subject))
            subject.find(isOfOtherLetters ? Rule::leftOver : Rule::untranslated, subject.message().source,
                         {Text::sameAsReference}, Note{true, subject.original().source, {Text::referenceIsHere}});
        return;
    }
    findWordsLeft(subject);
    findRemarks(subject);
    findDoubled(subject);
}

} // namespace tool::check
