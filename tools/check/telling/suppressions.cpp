#include "check/telling/suppressions.h"

#include <algorithm>
#include <cstring>

namespace tool::check
{

bool CheckerNote::isOne(const char *from)
{
    return from != nullptr && std::strcmp(from, "kelto check") == 0;
}

void CheckerNote::finish(int message, size_t unit, std::vector<Suppression> &suppressions, Findings &findings) const
{
    constexpr std::string_view between = " \t\r\n,";
    constexpr std::string_view prefix = "no-";
    const std::string_view words = std::string_view(m_text).substr(0, m_text.find(':')); // behind it stands the reason
    for (size_t begin = words.find_first_not_of(between); begin < words.size();)
    {
        const size_t end = std::min(words.find_first_of(between, begin), words.size());
        const std::string_view word = words.substr(begin, end - begin);
        const std::optional<Rule> rule =
            word.substr(0, prefix.size()) == prefix ? findRule(word.substr(prefix.size())) : std::nullopt;
        if (rule && !isFixed(*rule))
            suppressions.push_back({unit, *rule});
        else
            findings.push_back({Rule::badSuppression, message, unit, m_place,
                                Phrase{rule ? Text::fixedSuppression : Text::unknownSuppression, {quotation(word)}},
                                std::nullopt});
        begin = words.find_first_not_of(between, end);
    }
}

void suppress(Findings &findings, const std::vector<Suppression> &suppressions)
{
    if (suppressions.empty())
        return;
    const auto isSuppressed = [&](const Finding &finding) {
        auto row = std::lower_bound(suppressions.begin(), suppressions.end(), finding.order,
                                    [](const Suppression &a, size_t unit) { return a.unit < unit; });
        for (; row != suppressions.end() && row->unit == finding.order; ++row)
            if (row->rule == finding.rule)
                return true;
        return false;
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isSuppressed), findings.end());
}

} // namespace tool::check
