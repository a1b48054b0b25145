#include "check/path_language.h"

#include <cstring>
#include <unicode/uloc.h>

namespace tool::check
{
namespace
{

/** As "fr", "pt-BR" or "pt_BR", of a language that there is. */
bool isLanguage(std::string_view word)
{
    const auto isLower = [](char byte) { return byte >= 'a' && byte <= 'z'; };
    const auto isUpper = [](char byte) { return byte >= 'A' && byte <= 'Z'; };
    const bool isShort = word.size() == 2;
    const bool isLong = word.size() == 5 && (word[2] == '-' || word[2] == '_') && isUpper(word[3]) && isUpper(word[4]);
    if ((!isShort && !isLong) || !isLower(word[0]) || !isLower(word[1]))
        return false;
    for (const char *const *known = uloc_getISOLanguages(); *known != nullptr; ++known)
        if (std::strlen(*known) == 2 && word.substr(0, 2) == *known)
            return true;
    return false;
}

} // namespace

std::string languageInPath(std::string_view path)
{
    const size_t slash = path.rfind('/') + 1; // 0 where there is none
    std::string_view name = path.substr(slash);
    name = name.substr(0, name.rfind('.'));
    if (isLanguage(name))
        return std::string(name);
    for (const size_t length : {5U, 2U}) // "store.pt_BR", "store_fr"
        if (name.size() > length && std::strchr("._-", name[name.size() - length - 1]) != nullptr &&
            isLanguage(name.substr(name.size() - length)) && (length == 5 || name[name.size() - length - 1] != '-'))
            return std::string(name.substr(name.size() - length));
    for (size_t end = slash; end > 0;)
    {
        --end;
        const size_t begin = end == 0 ? 0 : path.rfind('/', end - 1) + 1;
        if (isLanguage(path.substr(begin, end - begin)))
            return std::string(path.substr(begin, end - begin));
        end = begin;
    }
    return "";
}

} // namespace tool::check
