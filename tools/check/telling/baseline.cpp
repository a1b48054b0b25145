#include "check/telling/baseline.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::check
{
namespace
{

constexpr std::string_view heading = "# Findings that are known; `kelto check --update-baseline` writes this file.\n";

/** A finding as a line of the baseline, without its end. Line breaks in what it quotes are replaced. */
std::string lineOf(const Finding &finding, std::string_view file)
{
    std::string line =
        fmt::format("{}: {}: {}: {}", file, finding.message, rowOf(finding.rule).name, sayInEnglish(finding.text));
    std::replace_if(
        line.begin(), line.end(), [](char byte) { return byte == '\n' || byte == '\r'; }, ' ');
    return line;
}

} // namespace

Baseline::Baseline(std::string_view text)
{
    while (!text.empty())
    {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (!line.empty() && line[0] != '#')
        {
            ++m_lines[std::string(line)];
            ++m_left;
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

void Baseline::takeKnown(Findings &findings, std::string_view file)
{
    if (m_lines.empty())
        return;
    const auto isKnown = [&](const Finding &finding) {
        if (isFixed(finding.rule))
            return false;
        const std::string line = lineOf(finding, file);
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_lines.find(line);
        if (found == m_lines.end() || found->second == 0)
            return false;
        --found->second;
        --m_left;
        ++m_known;
        return true;
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isKnown), findings.end());
}

void BaselineWriter::add(const Findings &findings, std::string_view file, const Levels &levels)
{
    for (const Finding &finding : findings)
        if (!isFixed(finding.rule) && levels[finding.rule] != Severity::off)
        {
            std::string line = lineOf(finding, file);
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_lines.insert(std::move(line));
        }
}

std::string BaselineWriter::text() const
{
    std::string text(heading);
    for (const std::string &line : m_lines)
        text += line + '\n';
    return text;
}

} // namespace tool::check
