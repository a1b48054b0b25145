#include "pseudo/pseudo_text.h"

#include "check/texts/utf8.h"

#include <algorithm>
#include <unicode/uchar.h>

namespace tool::pseudo
{
namespace
{

using bilingual::Part;
using bilingual::Parts;

constexpr const char *capitals[] = {"Å", "Ɓ", "Ĉ", "Đ", "É", "Ƒ", "Ĝ", "Ĥ", "Î", "Ĵ", "Ķ", "Ļ", "Ṁ",
                                    "Ñ", "Ö", "Þ", "Ǫ", "Ŕ", "Š", "Ţ", "Û", "Ṽ", "Ŵ", "Ẋ", "Ý", "Ž"};
constexpr const char *smallLetters[] = {"å", "ƀ", "ç", "ð", "é", "ƒ", "ĝ", "ĥ", "î", "ĵ", "ķ", "ļ", "ɱ",
                                        "ñ", "ö", "þ", "ǫ", "ŕ", "š", "ţ", "û", "ṽ", "ŵ", "ẋ", "ý", "ž"};

constexpr const char *rightToLeft = "\u202E"; // whatever the letters are
constexpr const char *back = "\u202C";

std::string withAccents(const std::string &text)
{
    std::string result;
    for (const char byte : text)
        if (byte >= 'A' && byte <= 'Z')
            result += capitals[byte - 'A'];
        else if (byte >= 'a' && byte <= 'z')
            result += smallLetters[byte - 'a'];
        else
            result += byte;
    return result;
}

/** Each line turned by itself, since a line's end ends what turns it. */
std::string turned(const std::string &text)
{
    constexpr const char *ends = "\n\r";
    std::string result;
    for (size_t at = 0; at < text.size();)
    {
        const size_t end = std::min(text.find_first_of(ends, at), text.size());
        if (end > at)
            result += rightToLeft + text.substr(at, end - at) + back;
        const size_t next = std::min(text.find_first_not_of(ends, end), text.size());
        result += text.substr(end, next - end);
        at = next;
    }
    return result;
}

bool isWhiteSpace(char32_t character)
{
    return u_isUWhiteSpace(static_cast<UChar32>(character)) != 0;
}

/** Takes the white space off the beginning of a text. */
std::string takeLeading(std::string &text)
{
    size_t end = 0;
    for (size_t next = 0; next < text.size() && isWhiteSpace(check::takeUtf8(text, next));)
        end = next;
    std::string taken = text.substr(0, end);
    text.erase(0, end);
    return taken;
}

std::string takeTrailing(std::string &text)
{
    size_t begin = 0; // of the white space that the text ends with
    for (size_t next = 0; next < text.size();)
        if (!isWhiteSpace(check::takeUtf8(text, next)))
            begin = next;
    std::string taken = text.substr(begin);
    text.erase(begin);
    return taken;
}

size_t countCharacters(const std::string &text)
{
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !check::isContinuation(byte); }));
}

} // namespace

std::string pseudoOf(const Parts &original, Style style, unsigned percent)
{
    Parts parts = original;
    std::string before;
    std::string behind;
    if (!parts.empty() && !parts.front().isPlaceholder)
        before = takeLeading(parts.front().text);
    if (!parts.empty() && !parts.back().isPlaceholder)
        behind = takeTrailing(parts.back().text);
    std::string middle;
    size_t characters = 0;
    for (const Part &part : parts)
    {
        middle += part.isPlaceholder ? part.text : style == Style::accents ? withAccents(part.text) : turned(part.text);
        characters += part.isPlaceholder ? 0 : countCharacters(part.text);
    }
    if (middle.empty())
        return before + behind;
    const size_t more = (characters * percent + 50) / 100;
    return before + "[" + middle + (more > 0 ? " " : "") + std::string(more, '~') + "]" + behind;
}

} // namespace tool::pseudo
