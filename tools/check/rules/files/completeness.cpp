#include "check/rules/files/completeness.h"

#include <algorithm>

namespace tool::check
{

void requireShare(Findings &findings, const ParsedFile &parsed, const ParsedFile &reference, unsigned percent)
{
    const auto isMissing = [](const Finding &finding) { return finding.rule == Rule::messageMissing; };
    const auto isEmpty = [](const Finding &finding) { return finding.rule == Rule::emptyMessage; };
    const auto missing = static_cast<size_t>(std::count_if(findings.begin(), findings.end(), isMissing) +
                                             std::count_if(findings.begin(), findings.end(), isEmpty));
    findings.erase(std::remove_if(findings.begin(), findings.end(), isMissing), findings.end());
    const size_t all = reference.messages().size();
    const size_t there = all - std::min(missing, all);
    if (there * 100 < all * percent)
        findings.push_back({Rule::incomplete, 0, parsed.body().begin, parsed.body(),
                            Phrase{Text::shareTooSmall, {there, all, there * 100 / all, percent}}, std::nullopt});
}

} // namespace tool::check
