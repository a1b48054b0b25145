#include "bilingual/gettext/c_format.h"

#include <algorithm>
#include <map>

namespace tool::bilingual
{
namespace
{

constexpr std::string_view decimalDigits = "0123456789";
constexpr std::string_view flags = "-+ #0";

/** The conversions of a locale, which C writes with an apostrophe. */
constexpr std::string_view number = "number";
constexpr std::string_view decimal = "decimal";

/** Takes the longest beginning that has these characters only. */
std::string_view take(std::string_view &text, std::string_view characters)
{
    const size_t end = std::min(text.find_first_not_of(characters), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end);
    return taken;
}

bool takeWord(std::string_view &text, std::string_view word)
{
    if (text.substr(0, word.size()) != word)
        return false;
    text.remove_prefix(word.size());
    return true;
}

std::string_view takePrecision(std::string_view &text)
{
    const std::string_view whole = text;
    if (!takeWord(text, "."))
        return {};
    return whole.substr(0, 1 + take(text, decimalDigits).size());
}

/** A modifier and its equal; "" is one of both. */
constexpr struct
{
    std::string_view ours, theirs;
} modifiers[] = {{"!", "ll"}, {"h", "h"}, {"l", "l"}, {"L", "L"}};

bool isSimple(std::string_view name)
{
    constexpr std::string_view names = "duoxXfcs";
    return name.size() == 1 && names.find(name[0]) != std::string_view::npos;
}

/** Whether C knows a modifier for a conversion. */
bool isKnown(std::string_view modifier, char name)
{
    constexpr std::string_view integers = "duoxX";
    if (modifier.empty())
        return true;
    if (modifier == "L")
        return name == 'f';
    return integers.find(name) != std::string_view::npos || (modifier == "l" && name == 'c');
}

std::optional<std::string> translate(std::string_view conversion)
{
    const size_t bracket = conversion.rfind('[');
    if (bracket == std::string_view::npos || conversion.back() != ']')
        return std::nullopt;
    const std::string position(conversion.substr(bracket + 1, conversion.size() - bracket - 2));
    std::string_view rest = conversion.substr(0, bracket);
    if (!takeWord(rest, "%"))
        return std::nullopt;
    std::string result = "%" + position + "$";
    std::string flagsWidth(take(rest, flags));
    flagsWidth += take(rest, decimalDigits);
    const std::string precision(takePrecision(rest));
    std::string_view modifier;
    for (const auto &row : modifiers)
        if (takeWord(rest, row.ours))
        {
            modifier = row.theirs;
            break;
        }
    const bool isLocale = rest == number || rest == decimal;
    const char name = rest == number ? 'd' : rest == decimal ? 'f' : isSimple(rest) ? rest[0] : '\0';
    if (name == '\0' || !isKnown(modifier, name))
        return std::nullopt;
    return result + (isLocale ? "'" : "") + flagsWidth + precision + std::string(modifier) + name;
}

} // namespace

std::optional<FromC> fromC(std::string_view text)
{
    std::string_view rest = text;
    if (!takeWord(rest, "%"))
        return std::nullopt;
    const std::string position(take(rest, decimalDigits));
    if (position.empty() || !takeWord(rest, "$"))
        return std::nullopt;
    bool isLocale = takeWord(rest, "'");
    std::string before(take(rest, flags));
    isLocale = takeWord(rest, "'") || isLocale; // people and tools put it anywhere
    before += take(rest, flags);
    before += take(rest, decimalDigits);
    before += takePrecision(rest);
    std::string_view modifier;
    for (const auto &row : modifiers)
        if (takeWord(rest, row.theirs))
        {
            modifier = row.ours;
            break;
        }
    const std::string_view name = rest.substr(0, 1);
    if (!isSimple(name) || (isLocale && name != "d" && name != "f"))
        return std::nullopt;
    rest.remove_prefix(1);
    const std::string_view ours = !isLocale ? name : name == "d" ? number : decimal;
    return FromC{"%" + before + std::string(modifier) + std::string(ours) + "[" + position + "]",
                 text.size() - rest.size()};
}

std::optional<std::string> inC(const std::string &conversion)
{
    const std::optional<std::string> translated = translate(conversion);
    if (!translated)
        return std::nullopt;
    const std::optional<FromC> back = fromC(*translated);
    return back && back->conversion == conversion && back->length == translated->size() ? translated : std::nullopt;
}

std::optional<std::string> messageInC(const Parts &parts)
{
    std::string message;
    for (const Part &part : parts)
    {
        if (!part.isPlaceholder)
        {
            message += part.text;
            continue;
        }
        const std::optional<std::string> conversion = inC(part.text);
        if (!conversion)
            return std::nullopt;
        message += *conversion;
    }
    return message;
}

namespace
{

/** What C takes at each position: the size, and the kind with its sign. */
std::map<std::string, std::string> argumentsOf(const Parts &parts)
{
    std::map<std::string, std::string> arguments;
    for (const Part &part : parts)
        if (part.isPlaceholder)
        {
            const std::string conversion = inC(part.text).value_or(std::string());
            const size_t begin = conversion.find_last_not_of("hlLduoxXfcs") + 1;
            std::string kind = conversion.substr(begin);
            constexpr std::string_view unsignedNames = "oxX";
            if (!kind.empty() && unsignedNames.find(kind.back()) != std::string_view::npos)
                kind.back() = 'u';
            arguments.emplace(part.position(), kind);
        }
    return arguments;
}

} // namespace

bool agreeInC(const Parts &source, const Parts &target)
{
    return argumentsOf(source) == argumentsOf(target);
}

} // namespace tool::bilingual
