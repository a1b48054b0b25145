#include "check/telling/finding.h"

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

/** Leaves as many as the limit allows, and counts what is taken away. */
void limitTo(size_t limit, Findings &findings, const Levels &levels, Report &report)
{
    if (findings.size() <= limit)
        return;
    const auto isError = [&levels](const Finding &finding) { return levels[finding.rule] == Severity::error; };
    const auto errors = static_cast<size_t>(std::count_if(findings.begin(), findings.end(), isError));
    size_t errorsLeft = std::min(errors, limit);
    size_t warningsLeft = limit - errorsLeft;
    report.untoldErrors = errors - errorsLeft;
    report.untoldWarnings = findings.size() - errors - warningsLeft;
    const auto isUntold = [&](const Finding &finding) {
        size_t &left = isError(finding) ? errorsLeft : warningsLeft;
        if (left == 0)
            return true;
        --left;
        return false;
    };
    Findings told;
    for (Finding &finding : findings)
        if (!isUntold(finding))
            told.push_back(std::move(finding));
    findings = std::move(told);
}

} // namespace

std::vector<Diagnostic> report(Findings findings, SourceText &source, const SourceText *reference, const Levels &levels)
{
    return reportUpTo(noLimit, std::move(findings), source, reference, levels).diagnostics;
}

Report reportUpTo(size_t limit, Findings findings, SourceText &source, const SourceText *reference,
                  const Levels &levels)
{
    Report report{source.name(), {}, "", 0, 0};
    const auto isOff = [&](const Finding &finding) { return levels[finding.rule] == Severity::off; };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isOff), findings.end());
    if (findings.empty())
        return report;
    const auto key = [](const Finding &finding) {
        const bool isWhole = finding.place.begin == finding.order;
        return std::make_tuple(finding.order, isWhole, finding.place.begin);
    };
    std::stable_sort(findings.begin(), findings.end(),
                     [key](const Finding &a, const Finding &b) { return key(a) < key(b); });
    limitTo(limit, findings, levels, report);
    source.index();

    std::vector<Diagnostic> &diagnostics = report.diagnostics;
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
    return report;
}

} // namespace tool::check
