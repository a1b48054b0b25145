/**
 * The rules of `kelto check`: a row of rules.inc for each, with its name, what it counts as, and its page for
 * --explain, which stands in docs/checking.md too. Levels says what each counts as after the options -W….
 */
#ifndef KELTO_TOOLS_CHECK_RULES_H
#define KELTO_TOOLS_CHECK_RULES_H

#include "text.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tool::check
{

/** The rules in the order of their table. */
enum class Rule
{
#define KELTO_RULE(rule, name, severity) rule,
#include "check/rules.inc"
#undef KELTO_RULE
};
constexpr size_t ruleCount = static_cast<size_t>(Rule::badName) + 1;

enum class Severity
{
    off,
    warning,
    error
};

struct RuleRow
{
    const char *name;
    Severity severity; // unless an option says otherwise
    Text summary;
    Text explanation; // three sentences
    Text wrong;       // an example of a mistake; the next member is its correction
    Text right;
};

const RuleRow &rowOf(Rule rule);
/** Whether a rule finds what keeps files from loading, so that no option changes its severity. */
constexpr bool isFixed(Rule rule)
{
    return rule <= Rule::language;
}

std::optional<Rule> findRule(std::string_view name);

/** The table as --list-rules prints it, and one row as --explain does, in the language of the user. */
std::string listOfRules();
std::string pageOf(Rule rule);

/** "error" or "warning", for machines. */
const char *nameOf(Severity severity);

class Levels
{
public:
    Levels();
    Severity operator[](Rule rule) const { return m_severities[static_cast<size_t>(rule)]; }

    /**
     * Applies the value of an option "-W": "RULE", "no-RULE", "error", "no-error", "error=RULE", "no-error=RULE".
     * @return what is wrong with the value; empty where nothing is.
     */
    std::string apply(std::string_view option);

    /** Applies "off", "warning" or "error" to the rule of a name. @return as apply(). */
    std::string set(std::string_view name, std::string_view severity);

private:
    Severity &at(Rule rule) { return m_severities[static_cast<size_t>(rule)]; }

    std::array<Severity, ruleCount> m_severities{};
};

} // namespace tool::check

#endif
