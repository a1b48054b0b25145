#include "check/rules.h"

#include "io/charset.h"
#include "io/terminal.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::check
{
namespace
{

constexpr RuleRow rows[] = {
#define KELTO_RULE(rule, name, severity)                                                                               \
    {name, Severity::severity, Text::rule##Rule, Text::rule##Page, Text::rule##Wrong, Text::rule##Right},
#include "check/rules.inc"
#undef KELTO_RULE
};

/** Takes a prefix off a text. @return false where the text does not begin with it. */
bool takePrefix(std::string_view &text, std::string_view prefix)
{
    if (text.substr(0, prefix.size()) != prefix)
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

std::string severityOf(const RuleRow &row)
{
    constexpr Text names[] = {Text::offName, Text::warningName, Text::errorName};
    return say(names[static_cast<size_t>(row.severity)]);
}

/** A text with blanks behind it, up to a number of columns. */
std::string padded(const std::string &text, size_t width)
{
    return text + std::string(width - std::min(width, columns(ucs2FromUtf8(text))), ' ');
}

} // namespace

const RuleRow &rowOf(Rule rule)
{
    return rows[static_cast<size_t>(rule)];
}

std::optional<Rule> findRule(std::string_view name)
{
    for (size_t i = 0; i < ruleCount; ++i)
        if (name == rows[i].name)
            return static_cast<Rule>(i);
    return std::nullopt;
}

const char *nameOf(Severity severity)
{
    return severity == Severity::error ? "error" : "warning";
}

std::string listOfRules()
{
    constexpr size_t nameColumns = 19;
    constexpr size_t severityColumns = 8;
    std::string text;
    for (const RuleRow &row : rows)
        text += fmt::format("{} {} {}\n", padded(row.name, nameColumns), padded(severityOf(row), severityColumns),
                            say(row.summary));
    return text;
}

std::string pageOf(Rule rule)
{
    const RuleRow &row = rowOf(rule);
    return fmt::format("{}\n\n{}\n\n{}\n  {}\n{}\n  {}\n",
                       say(Text::ruleHeading, {row.name, severityOf(row), Phrase{row.summary}}),
                       wrapped(say(row.explanation), terminalColumns), say(Text::wrongLabel), say(row.wrong),
                       say(Text::rightLabel), say(row.right));
}

Levels::Levels()
{
    for (size_t i = 0; i < ruleCount; ++i)
        m_severities[i] = rows[i].severity;
}

std::string Levels::apply(std::string_view option)
{
    std::string_view name = option;
    if (name == "error" || name == "no-error")
    {
        const Severity from = name == "error" ? Severity::warning : Severity::error;
        for (size_t i = 0; i < ruleCount; ++i)
            if (m_severities[i] == from && rows[i].severity != Severity::error)
                m_severities[i] = name == "error" ? Severity::error : Severity::warning;
        return "";
    }
    const bool isNo = takePrefix(name, "no-");
    const bool isError = takePrefix(name, "error=");
    const std::optional<Rule> rule = findRule(name);
    if (!rule)
        return say(Text::noRuleNamed, {terminal().quote(name)});
    if (isNo && isFixed(*rule))
        return say(Text::ruleStays);
    if (isError && isNo)
        at(*rule) = std::min(at(*rule), Severity::warning);
    else if (isError)
        at(*rule) = Severity::error;
    else if (isNo)
        at(*rule) = Severity::off;
    else if (at(*rule) == Severity::off)
        at(*rule) = std::max(rowOf(*rule).severity, Severity::warning);
    return "";
}

std::string Levels::set(std::string_view name, std::string_view severity)
{
    constexpr std::string_view severities[] = {"off", "warning", "error"};
    const auto *const found = std::find(std::begin(severities), std::end(severities), severity);
    if (found == std::end(severities))
        return say(Text::noSeverity, {terminal().quote(severity)});
    const std::optional<Rule> rule = findRule(name);
    if (!rule)
        return say(Text::noRuleNamed, {terminal().quote(name)});
    const auto wanted = static_cast<Severity>(found - std::begin(severities));
    if (isFixed(*rule) && wanted != Severity::error)
        return say(Text::ruleStays);
    at(*rule) = wanted;
    return "";
}

} // namespace tool::check
