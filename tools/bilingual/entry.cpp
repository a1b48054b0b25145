#include "bilingual/entry.h"

#include "text.h"

#include <algorithm>
#include <climits>
#include <cstdint>

namespace tool::bilingual
{

std::string written(const Key &key)
{
    const std::string number = std::to_string(key.number);
    return key.label.empty() ? number : number + "[" + key.label + "]";
}

std::optional<Key> readKey(std::string_view text)
{
    constexpr std::string_view digits = "0123456789";
    const size_t end = std::min(text.find_first_not_of(digits), text.size());
    if (end == 0 || text[0] == '0')
        return std::nullopt;
    int64_t number = 0;
    for (const char digit : text.substr(0, end))
    {
        number = number * 10 + (digit - '0');
        if (number > INT_MAX)
            return std::nullopt;
    }
    Key key{static_cast<int>(number), ""};
    std::string_view rest = text.substr(end);
    if (rest.empty())
        return key;
    if (rest.size() > 2 && rest.front() == '[' && rest.back() == ']')
        key.label = rest.substr(1, rest.size() - 2);
    else if (rest.size() > 1 && rest.front() == '.')
        key.label = rest.substr(1);
    else
        return std::nullopt;
    constexpr std::string_view exactly = "is"; // brackets and '=' are none of the characters of an XML name
    if (rest.front() == '.' && key.label.compare(0, exactly.size(), exactly) == 0 &&
        key.label.find_first_not_of(digits, exactly.size()) == std::string::npos)
        key.label = "=" + key.label.substr(exactly.size());
    return key.label.find_first_of("[].") == std::string::npos ? std::optional(key) : std::nullopt;
}

check::Finding findingAt(check::Range place, check::Rule rule, int message, Phrase text)
{
    return {rule, message, place.begin, place, std::move(text), std::nullopt};
}

check::Findings repetitionsIn(const Bilingual &catalog)
{
    check::Findings findings;
    std::map<Key, const Entry *> first;
    for (const Entry &entry : catalog.entries)
    {
        if (entry.isObsolete || first.emplace(entry.key, &entry).second)
            continue;
        findings.push_back(findingAt(entry.place, check::Rule::duplicateId, entry.key.number,
                                     {Text::numberRepeated, {static_cast<unsigned>(entry.key.number)}}));
        findings.back().note = check::Note{false, first[entry.key]->place, {Text::numberUsedFirst}};
    }
    return findings;
}

} // namespace tool::bilingual
