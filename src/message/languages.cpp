#include "message/languages.h"

#include "kelto.h"
#include "strconv/bounded_text.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace
{

constexpr std::string_view letterOrDigit = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
constexpr std::string_view inBase = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
constexpr std::string_view inModifier = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=,";

bool consistsOf(std::string_view text, std::string_view characters)
{
    return text.find_first_not_of(characters) == std::string_view::npos;
}

/** Whether a name ("C", "POSIX") stands for the texts of the program itself. */
bool isSourceLanguage(std::string_view name)
{
    return name == "C" || name == "POSIX";
}

/** The first of the variables that is set and not empty; else the empty text. */
template <size_t N> const char *firstSet(const char *const (&variables)[N])
{
    for (const char *variable : variables)
        if (const char *const value = std::getenv(variable); value != nullptr && *value != '\0')
            return value;
    return "";
}

const char *usersLanguages()
{
    const char *const locale = firstSet({"LC_ALL", "LC_MESSAGES", "LANG"});
    if (*locale == '\0' || isSourceLanguage(locale))
        return "";
    const char *const list = firstSet({"LANGUAGE"});
    return *list != '\0' ? list : locale;
}

} // namespace

namespace kelto
{

LanguageWalk::LanguageWalk(const char *list) noexcept : m_rest(list != nullptr ? list : usersLanguages())
{
}

/** Takes the next language of the list; false at the end of the list, or at a name for the texts of the program. */
bool LanguageWalk::takeElement() noexcept
{
    while (*m_rest != '\0')
    {
        const std::string_view element(m_rest, std::strcspn(m_rest, ":"));
        m_rest += element.size();
        m_rest += *m_rest == ':' ? 1 : 0;
        const std::string_view base = element.substr(0, element.find_first_of(".@"));
        const size_t at = element.find('@');
        const std::string_view modifier = at != std::string_view::npos ? element.substr(at) : "";
        if (isSourceLanguage(base))
        {
            m_rest = "";
            return false;
        }
        const bool isLanguage = !base.empty() && consistsOf(base.substr(0, 1), letterOrDigit) &&
                                consistsOf(base, inBase) && base.size() + modifier.size() <= maxLanguageLength;
        const bool isModifier = modifier.empty() || (modifier.size() > 1 && consistsOf(modifier.substr(1), inModifier));
        if (!isLanguage || !isModifier)
            continue;
        m_base[base.copy(m_base, base.size())] = '\0';
        m_modifier[modifier.copy(m_modifier, modifier.size())] = '\0';
        m_withModifier = !modifier.empty();
        return true;
    }
    return false;
}

const char *LanguageWalk::next() noexcept
{
    if (*m_base == '\0' && !takeElement())
        return nullptr;
    const size_t baseLength = std::strlen(m_base);
    std::memcpy(m_name, m_base, baseLength + 1);
    if (m_withModifier)
    {
        std::memcpy(m_name + baseLength, m_modifier, std::strlen(m_modifier) + 1);
        m_withModifier = false;
        return m_name;
    }
    size_t length = baseLength;
    while (length > 0 && m_base[length - 1] != '_' && m_base[length - 1] != '-')
        --length;
    while (length > 0 && (m_base[length - 1] == '_' || m_base[length - 1] == '-'))
        --length;
    m_base[length] = '\0';
    m_withModifier = *m_modifier != '\0';
    return m_name;
}

} // namespace kelto

int KTLanguages(const char *languages, size_t *size, char *list)
{
    if (size == nullptr || (list == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    kelto::BoundedText text(list, *size);
    kelto::LanguageWalk walk(languages);
    const char *separator = "";
    while (const char *const language = walk.next())
    {
        text.append(separator);
        text.append(language);
        separator = ":";
    }
    return text.finish(size);
}
