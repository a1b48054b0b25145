#include "check/finding.h"

#include "check/utf8.h"

#include <algorithm>
#include <tuple>

namespace tool::check
{
namespace
{

Place locate(const SourceText &source, Range range)
{
    return {source.name(), source.position(range.begin), source.position(range.end), range, false};
}

} // namespace

std::string quotation(std::string_view utf8Text)
{
    constexpr size_t longest = 200;
    if (utf8Text.size() <= longest)
        return std::string(utf8Text);
    size_t end = longest;
    while (isContinuation(utf8Text[end]))
        --end;
    return std::string(utf8Text.substr(0, end)) + "...";
}

std::vector<Diagnostic> report(Findings findings, SourceText &source, const SourceText *reference, const Levels &levels)
{
    const auto isOff = [&](const Finding &finding) { return levels[finding.rule] == Severity::off; };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isOff), findings.end());
    if (findings.empty())
        return {};
    const auto key = [](const Finding &finding) {
        const bool isWhole = finding.place.begin == finding.order;
        return std::make_tuple(finding.order, isWhole, finding.place.begin);
    };
    std::stable_sort(findings.begin(), findings.end(),
                     [key](const Finding &a, const Finding &b) { return key(a) < key(b); });
    source.index();

    std::vector<Diagnostic> diagnostics;
    diagnostics.reserve(findings.size());
    for (Finding &finding : findings)
    {
        Diagnostic diagnostic{finding.rule,
                              levels[finding.rule],
                              finding.message,
                              locate(source, finding.place),
                              std::move(finding.text),
                              source.excerpt(finding.place),
                              std::nullopt,
                              {}};
        if (finding.note)
        {
            diagnostic.notePlace = locate(finding.note->isInReference ? *reference : source, finding.note->place);
            diagnostic.noteText = std::move(finding.note->text);
        }
        diagnostics.push_back(std::move(diagnostic));
    }
    return diagnostics;
}

} // namespace tool::check
