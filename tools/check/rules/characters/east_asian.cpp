#include "check/rules/characters/east_asian.h"

#include "check/texts/characters.h"

#include <algorithm>
#include <optional>
#include <string>

namespace tool::check
{
namespace
{

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

} // namespace

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

} // namespace tool::check
