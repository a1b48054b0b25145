#include "check/other_language.h"

#include "check/characters.h"
#include "check/language_words.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace tool::check
{
namespace
{

// Letters

/** Letters of a script that a language written in it does not have, in small letters. */
struct LettersRow
{
    std::string_view language;
    std::u32string_view foreign;
};

constexpr LettersRow letters[] = {
    {"ru", U"іїєґўјљњћђџѓќѕ"},    {"uk", U"ыэёъўјљњћђџѓќѕ"},   {"be", U"ищъїєґјљњћђџѓќѕ"}, {"bg", U"ыэёіїєґўјљњћђџѓќѕ"},
    {"sr", U"йщъыьэюяёіїєґўѓќѕ"}, {"mk", U"йщъыьэюяёіїєґўћђ"}, {"ar", U"پچژگکیٹڈڑںہھےۀ"},
};

/** The letters beyond ASCII of languages that are written in Latin ones, in small letters. */
constexpr LettersRow ownLetters[] = {
    {"de", U"äöüßéèàçñ"},       {"fr", U"àâæçéèêëîïôœùûüÿ"}, {"es", U"áéíóúüñçªº"}, {"it", U"àèéìíîòóùúç"},
    {"pt", U"áâãàçéêíóôõúüªº"}, {"nl", U"áéíóúàèëïöüê"},     {"pl", U"ąćęłńóśźżé"}, {"cs", U"áčďéěíňóřšťúůýžöü"},
    {"sv", U"åäöéàü"},          {"da", U"æøåéáó"},           {"fi", U"åäöšžé"},     {"hu", U"áéíóöőúüű"},
    {"tr", U"çğıöşüâîû"},       {"ro", U"ăâîșțşţé"},
};

// Pairs of characters in the simplified and the traditional form, at the same place of both lists.
constexpr std::u32string_view simplified =
    U"们这说时间开关请输击设应错误无为发现对话导统检测连网络载终码选项认删复库单图标题页视频传进运务闭启态览备类协议创"
    U"读"
    U"则给结让还过实际种样从电脑吗买卖书东车门问见觉观语课调谁谢谈记许论词译试该详诉"
    U"钟钱铁银链锁键镜长闻阅队阶阳阴陈难预颜额风飞饭馆马驱验鸟鱼龙";
constexpr std::u32string_view traditional =
    U"們這說時間開關請輸擊設應錯誤無為發現對話導統檢測連網絡載終碼選項認刪復庫單圖標題頁視頻傳進運務閉啟態覽備類協議創"
    U"讀"
    U"則給結讓還過實際種樣從電腦嗎買賣書東車門問見覺觀語課調誰謝談記許論詞譯試該詳訴"
    U"鐘錢鐵銀鏈鎖鍵鏡長聞閱隊階陽陰陳難預顏額風飛飯館馬驅驗鳥魚龍";

/** The characters of one form that are none of the other, in their order. */
std::u32string onlyIn(std::u32string_view form, std::u32string_view other)
{
    std::u32string only;
    for (const char32_t each : form)
        if (!isAmong(each, other))
            only += each;
    std::sort(only.begin(), only.end());
    return only;
}

bool isSimplified(char32_t character)
{
    static const std::u32string only = onlyIn(simplified, traditional);
    return std::binary_search(only.begin(), only.end(), character);
}

bool isTraditional(char32_t character)
{
    static const std::u32string only = onlyIn(traditional, simplified);
    return std::binary_search(only.begin(), only.end(), character);
}

struct EastAsian
{
    size_t han = 0, longestHan = 0, kana = 0, hangul = 0, simplified = 0, traditional = 0, chinese = 0;
    Range first{}; // the first that tells
};

EastAsian countIn(std::string_view text)
{
    EastAsian count;
    size_t inRow = 0;
    for (size_t at = 0; at < text.size();)
    {
        if (static_cast<unsigned char>(text[at]) < 0xE1)
        {
            ++at;
            inRow = 0;
            continue;
        }
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        const bool isHan = character >= 0x4E00 && character <= 0x9FFF;
        inRow = isHan ? inRow + 1 : 0;
        count.kana += character >= 0x3041 && character <= 0x30FF ? 1 : 0;
        count.hangul += character >= 0xAC00 && character <= 0xD7A3 ? 1 : 0;
        if (!isHan)
            continue;
        ++count.han;
        count.longestHan = std::max(count.longestHan, inRow);
        const bool tellsSimplified = isSimplified(character);
        count.simplified += tellsSimplified ? 1 : 0;
        count.traditional += isTraditional(character) ? 1 : 0;
        count.chinese += isAmong(character, U"您你這們沒嗎妳") ? 1 : 0;
        if (tellsSimplified && count.first.end == 0)
            count.first = {begin, at};
    }
    return count;
}

std::optional<std::string_view> otherEastAsian(std::string_view language, const EastAsian &count)
{
    constexpr size_t many = 12;
    constexpr size_t some = 5;
    const std::string_view base = language.substr(0, 2);
    if (base == "ja" && count.hangul == 0 &&
        (count.simplified > 0 || (count.kana == 0 && ((count.han >= many && count.longestHan >= some) ||
                                                      (count.han >= some && count.chinese > 0)))))
        return "zh";
    if (base == "ko" && count.hangul == 0 && count.han >= some)
        return count.kana > 0 ? "ja" : "zh";
    if (base != "zh")
        return std::nullopt;
    const std::string_view country = language.size() < 5 ? "CN" : language.substr(3); // "zh" alone is simplified
    const bool isTraditional = country == "TW" || country == "HK" || country == "MO";
    if (isTraditional && count.simplified > 1 && count.simplified > 3 * count.traditional)
        return "zh-CN";
    if ((country == "CN" || country == "SG") && count.traditional > 1 && count.traditional > 3 * count.simplified)
        return "zh-TW";
    return std::nullopt;
}

bool findOtherEastAsian(Subject &subject, std::string_view language)
{
    const std::string_view base = language.substr(0, 2);
    if (base != "ja" && base != "ko" && base != "zh")
        return false;
    const EastAsian count = countIn(subject.text());
    const std::optional<std::string_view> other = otherEastAsian(language, count);
    if (!other)
        return false;
    const bool isOne = count.first.end != 0 && count.kana > 0;
    subject.find(Rule::wrongLanguage, isOne ? subject.placeOf(count.first) : subject.message().source,
                 {Text::textInOther, {std::string(*other), std::string(language)}});
    return true;
}

bool findForeignLetter(Subject &subject, std::string_view language)
{
    const auto *const row = std::find_if(std::begin(letters), std::end(letters),
                                         [language](const LettersRow &each) { return each.language == language; });
    if (row == std::end(letters))
        return false;
    const std::string_view text = subject.text();
    for (size_t at = 0; at < text.size();)
    {
        if (static_cast<unsigned char>(text[at]) < 0xC0)
        {
            ++at;
            continue;
        }
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        const auto small = static_cast<char32_t>(u_tolower(static_cast<UChar32>(character)));
        if (!isAmong(small, row->foreign) || subject.originalHas(text.substr(begin, at - begin)))
            continue;
        subject.find(Rule::wrongLanguage, subject.placeOf({begin, at}),
                     {Text::letterOfOther, {std::string(text.substr(begin, at - begin)), std::string(language)}});
        return true;
    }
    return false;
}

// Words

bool hasOtherLetter(std::string_view word, std::u32string_view own)
{
    for (size_t at = 0; at < word.size();)
    {
        const char32_t character = takeUtf8(word, at);
        if (character < 0xC0)
            continue;
        const auto small = static_cast<char32_t>(u_tolower(static_cast<UChar32>(character)));
        if (small >= 0xC0 && !isAmong(small, own)) // the small letter of the Turkish capital I with a dot is ASCII
            return true;
    }
    return false;
}

void findOtherWords(Subject &subject, std::string_view language)
{
    const uint32_t own = languageBit(language);
    constexpr size_t fewest = 5;
    const Tokens &tokens = subject.tokens();
    if (own == 0 || tokens.words() < 3)
        return;
    const auto *const row = std::find_if(std::begin(ownLetters), std::end(ownLetters),
                                         [language](const LettersRow &each) { return each.language == language; });
    std::array<uint8_t, 32> hits{};
    size_t ours = 0;
    size_t strange = 0; // words with letters that the language does not have
    std::vector<uint32_t> seen;
    for (const Token &token : tokens)
    {
        const uint32_t languages = token.isWord() && token.letters > 1 ? languagesOfWord(token.content) : 0;
        if (row != std::end(ownLetters) && token.isWord() && languages == 0 && strange < 200 &&
            hasOtherLetter(tokens.text(token), row->foreign))
            ++strange;
        if (languages == 0 || std::find(seen.begin(), seen.end(), token.content) != seen.end())
            continue;
        seen.push_back(token.content);
        if ((languages & own) != 0)
        {
            ++ours;
            continue;
        }
        for (size_t i = 0; i < hits.size(); ++i)
            if ((languages & 1U << i) != 0 && hits[i] < 200)
                ++hits[i];
    }
    const auto *const most = std::max_element(hits.begin(), hits.end());
    const size_t score = *most + strange;
    const bool isTold = ours == 0 ? score > 1 && *most > 0 && tokens.words() >= fewest : score > 2 && score > 3 * ours;
    if (!isTold && (strange < 3 || ours > 0))
        return;
    const std::string_view other =
        *most > 0 ? languageOfBit(1U << static_cast<uint32_t>(most - hits.begin())) : std::string_view("?");
    // Another rule tells words that were taken over from the reference.
    size_t taken = 0;
    if (subject.hasOriginal())
        for (const Token &token : tokens)
            taken += token.isWord() && subject.originalTokens().hasWord(token.content) ? 1 : 0;
    if (2 * taken > tokens.words())
        return;
    subject.find(Rule::wrongLanguage, subject.message().source,
                 {Text::textInOther, {std::string(other), std::string(language)}});
}

// Charsets of one byte a letter

/** Letters that a language lacks, and that stand in place of its own where a wrong charset was taken. */
constexpr LettersRow misread[] = {
    {"de", U"õÕ"},           {"sv", U"õÕ"},        {"fi", U"õÕ"},        {"hu", U"õûÕÛ"}, {"tr", U"ðþýÐÞÝ"},
    {"cs", U"èìøùïòÈÌØÙÏÒ"}, {"sk", U"èï¾òåÈÏ¼Ò"}, {"pl", U"³¹êæœŸ¿£¯"}, {"ro", U"ºþªÞ"},
};

std::optional<Range> misreadWordIn(std::string_view text, std::u32string_view characters)
{
    char32_t before = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        if (character >= 0x80 && isAmong(character, characters))
        {
            size_t next = at;
            const char32_t behind = next < text.size() ? takeUtf8(text, next) : 0;
            const bool isInWord = isLetter(before) && isLetter(behind);
            if (isInWord || (isLetter(character) && (isLetter(before) || isLetter(behind))))
                return Range{begin, at};
        }
        before = character;
    }
    return std::nullopt;
}

/** A sign between two letters, or a capital letter beyond ASCII behind a small one, as no word has them. */
std::optional<Range> brokenWordIn(std::string_view text)
{
    constexpr std::u32string_view signs = U"÷³¹²¼½¾¤¦§¨¬±µ¶¸¿¡¢£¥†‡‰€™";
    char32_t before = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        size_t next = at;
        if (character >= 0xA1 && before != 0 && isLetter(before))
        {
            const bool isSign = isAmong(character, signs) && next < text.size() && isLetter(takeUtf8(text, next));
            const bool isCapital = character >= 0xC0 && character < 0x180 &&
                                   u_isupper(static_cast<UChar32>(character)) != 0 &&
                                   u_islower(static_cast<UChar32>(before)) != 0;
            if (isSign || isCapital)
                return Range{begin, at};
        }
        before = character;
    }
    return std::nullopt;
}

/** Letters of Latin-1 in a row, in a language that is written in other letters. */
std::optional<Range> latin1RunIn(std::string_view text)
{
    constexpr size_t shortest = 3;
    size_t begin = 0;
    size_t length = 0;
    size_t letterCount = 0;
    for (size_t at = 0; at <= text.size();)
    {
        size_t next = at;
        const char32_t character = at < text.size() ? takeUtf8(text, next) : 0;
        constexpr std::u32string_view apart = U"\u00A0«»°·©®×÷±§¿¡";
        const bool isOfRun = (character >= 0xA1 && character <= 0xFF && !isAmong(character, apart)) ||
                             (length > 0 && isAmong(character, U"ƒŠŒŽšœžŸˆ˜‚„…†‡‰‹‘’“”•–—›€™"));
        if (!isOfRun)
        {
            // A word of another language has plain letters beside the others.
            const bool touchesPlain = (character < 0x80 && isLetter(character)) ||
                                      (length > 0 && begin > 0 &&
                                       isLetter(static_cast<unsigned char>(text[begin - 1]) < 0x80
                                                    ? static_cast<unsigned char>(text[begin - 1])
                                                    : 0));
            if (length >= shortest && letterCount >= shortest && (!touchesPlain || length >= 2 * shortest))
                return Range{begin, at};
            length = letterCount = 0;
            if (at == text.size())
                break;
        }
        else
        {
            begin = length == 0 ? at : begin;
            ++length;
            letterCount += isLetter(character) || character < 0xC0 ? 1 : 0;
        }
        at = next;
    }
    return std::nullopt;
}

/** Words whose first letter is the only small one, as KOI8-R looks when it is read as Windows-1251. */
std::optional<Range> turnedCaseIn(const Tokens &tokens, std::string_view text)
{
    constexpr uint8_t shortest = 4;
    for (const Token &token : tokens)
    {
        if (!token.isWord() || token.isCapital || token.letters < shortest)
            continue;
        size_t at = token.begin;
        if (scriptOf(takeUtf8(text, at)) != USCRIPT_CYRILLIC)
            continue;
        bool isTurned = true;
        while (isTurned && at < token.end)
            isTurned = u_isupper(static_cast<UChar32>(takeUtf8(text, at))) != 0;
        if (isTurned)
            return Range{token.begin, token.end};
    }
    return std::nullopt;
}

/** Characters that UTF-8 of Japanese and Chinese begins with where it is read as their older charsets. */
std::optional<Range> misreadEastAsianIn(std::string_view text)
{
    size_t count = 0;
    size_t first = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        if (character >= 0x80 && isAmong(character, U"縺繧繝锟斤拷쏙옙ƒ"))
        {
            first = count == 0 ? begin : first;
            if (++count == 2)
                return Range{first, at};
        }
    }
    return std::nullopt;
}

bool findOtherCharset(Subject &subject, std::string_view language)
{
    if (subject.has(Rule::mojibake))
        return true; // which garbles all the rest
    const std::string_view text = subject.text();
    std::optional<Range> found;
    for (const LettersRow &row : misread)
        if (row.language == language)
            found = misreadWordIn(text, row.foreign);
    if (!found && isWrittenInLatin(language))
        found = brokenWordIn(text);
    else if (!found)
    {
        found = latin1RunIn(text);
        if (!found)
            found = turnedCaseIn(subject.tokens(), text);
        if (!found)
            found = misreadEastAsianIn(text);
    }
    if (!found || subject.originalHas(text.substr(found->begin, found->end - found->begin)))
        return false;
    subject.find(Rule::mojibake, subject.placeOf(*found),
                 {Text::oneByteCharset, {quotation(text.substr(found->begin, found->end - found->begin))}});
    return true;
}

} // namespace

void checkLanguageOfText(Subject &subject)
{
    const std::string_view language = subject.catalog().language();
    const std::string_view base = language.substr(0, 2);
    if (language.empty() || (subject.hasOriginal() && subject.text() == subject.originalText()))
        return;
    const std::string_view text = subject.text();
    const auto isBeyond = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
    if (std::any_of(text.begin(), text.end(), isBeyond) &&
        (findOtherCharset(subject, base) || findOtherEastAsian(subject, language) || findForeignLetter(subject, base)))
        return;
    findOtherWords(subject, base);
}

} // namespace tool::check
