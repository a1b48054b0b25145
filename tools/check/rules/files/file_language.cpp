#include "check/rules/files/file_language.h"

#include <algorithm>
#include <cctype>
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

char folded(char byte)
{
    return byte == '_' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
}

/**
 * Whether two names of languages begin with the same `length` bytes, whatever their case, "_" being "-": with the
 * length of the shorter one, "pt" agrees with "pt-BR", and "de_AT" with "de-at".
 */
bool agree(std::string_view a, std::string_view b, size_t length)
{
    return std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(length), b.begin(),
                      [](char x, char y) { return folded(x) == folded(y); });
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

void checkLanguage(const ParsedFile &parsed, const ParsedFile *reference, Findings &findings)
{
    const std::string &language = parsed.language();
    if (language.empty())
        return;
    const Range place = parsed.languagePlace();
    const std::string inPath = languageInPath(parsed.source().name());
    const size_t common = std::min(inPath.size(), language.size());
    if (!inPath.empty() && !agree(inPath, language, common))
        findings.push_back({Rule::pathLanguage, 0, place.begin, place,
                            Phrase{Text::languageNotOfPath, {quotation(language), inPath}}, std::nullopt});
    if (reference != nullptr && language.size() == reference->language().size() &&
        agree(language, reference->language(), language.size()))
        findings.push_back({Rule::sameLanguage, 0, place.begin, place, Phrase{Text::languageOfReference, {language}},
                            Note{true, reference->languagePlace(), {Text::referenceHasItHere}}});
}

} // namespace tool::check
