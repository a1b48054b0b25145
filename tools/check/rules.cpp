#include "check/rules.h"

#include "charset.h"
#include "terminal.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::check
{
namespace
{

constexpr RuleRow rows[] = {
    {"xml-syntax", Severity::error, Text::xmlSyntaxRule, Text::xmlSyntaxPage, Text::xmlSyntaxWrong,
     Text::xmlSyntaxRight},
    {"structure", Severity::error, Text::structureRule, Text::structurePage, Text::structureWrong,
     Text::structureRight},
    {"attribute-missing", Severity::error, Text::attributeMissingRule, Text::attributeMissingPage,
     Text::attributeMissingWrong, Text::attributeMissingRight},
    {"bad-id", Severity::error, Text::badIdRule, Text::badIdPage, Text::badIdWrong, Text::badIdRight},
    {"duplicate-id", Severity::error, Text::duplicateIdRule, Text::duplicateIdPage, Text::duplicateIdWrong,
     Text::duplicateIdRight},
    {"language", Severity::error, Text::languageRule, Text::languagePage, Text::languageWrong, Text::languageRight},
    {"bad-conversion", Severity::error, Text::badConversionRule, Text::badConversionPage, Text::badConversionWrong,
     Text::badConversionRight},
    {"position-gap", Severity::error, Text::positionGapRule, Text::positionGapPage, Text::positionGapWrong,
     Text::positionGapRight},
    {"position-repeat", Severity::error, Text::positionRepeatRule, Text::positionRepeatPage, Text::positionRepeatWrong,
     Text::positionRepeatRight},
    {"bad-placeholder", Severity::error, Text::badPlaceholderRule, Text::badPlaceholderPage, Text::badPlaceholderWrong,
     Text::badPlaceholderRight},
    {"argument-type", Severity::error, Text::argumentTypeRule, Text::argumentTypePage, Text::argumentTypeWrong,
     Text::argumentTypeRight},
    {"argument-missing", Severity::error, Text::argumentMissingRule, Text::argumentMissingPage,
     Text::argumentMissingWrong, Text::argumentMissingRight},
    {"argument-extra", Severity::error, Text::argumentExtraRule, Text::argumentExtraPage, Text::argumentExtraWrong,
     Text::argumentExtraRight},
    {"selector-alone", Severity::error, Text::selectorAloneRule, Text::selectorAlonePage, Text::selectorAloneWrong,
     Text::selectorAloneRight},
    {"selector-argument", Severity::error, Text::selectorArgumentRule, Text::selectorArgumentPage,
     Text::selectorArgumentWrong, Text::selectorArgumentRight},
    {"selector-depth", Severity::error, Text::selectorDepthRule, Text::selectorDepthPage, Text::selectorDepthWrong,
     Text::selectorDepthRight},
    {"variant-arguments", Severity::error, Text::variantArgumentsRule, Text::variantArgumentsPage,
     Text::variantArgumentsWrong, Text::variantArgumentsRight},
    {"variant-missing", Severity::error, Text::variantMissingRule, Text::variantMissingPage, Text::variantMissingWrong,
     Text::variantMissingRight},
    {"encoding-lost", Severity::error, Text::encodingLostRule, Text::encodingLostPage, Text::encodingLostWrong,
     Text::encodingLostRight},
    {"region-open", Severity::warning, Text::regionOpenRule, Text::regionOpenPage, Text::regionOpenWrong,
     Text::regionOpenRight},
    {"message-missing", Severity::warning, Text::messageMissingRule, Text::messageMissingPage,
     Text::messageMissingWrong, Text::messageMissingRight},
    {"message-extra", Severity::warning, Text::messageExtraRule, Text::messageExtraPage, Text::messageExtraWrong,
     Text::messageExtraRight},
    {"sparse-ids", Severity::warning, Text::sparseIdsRule, Text::sparseIdsPage, Text::sparseIdsWrong,
     Text::sparseIdsRight},
    {"variant-number", Severity::warning, Text::variantNumberRule, Text::variantNumberPage, Text::variantNumberWrong,
     Text::variantNumberRight},
    {"variant-unused", Severity::warning, Text::variantUnusedRule, Text::variantUnusedPage, Text::variantUnusedWrong,
     Text::variantUnusedRight},
    {"variant-label", Severity::warning, Text::variantLabelRule, Text::variantLabelPage, Text::variantLabelWrong,
     Text::variantLabelRight},
    {"variant-unreached", Severity::warning, Text::variantUnreachedRule, Text::variantUnreachedPage,
     Text::variantUnreachedWrong, Text::variantUnreachedRight},
    {"conversion-changed", Severity::warning, Text::conversionChangedRule, Text::conversionChangedPage,
     Text::conversionChangedWrong, Text::conversionChangedRight},
    {"typed-conversion", Severity::warning, Text::typedConversionRule, Text::typedConversionPage,
     Text::typedConversionWrong, Text::typedConversionRight},
    {"lone-percent", Severity::warning, Text::lonePercentRule, Text::lonePercentPage, Text::lonePercentWrong,
     Text::lonePercentRight},
    {"trailing-backslash", Severity::warning, Text::trailingBackslashRule, Text::trailingBackslashPage,
     Text::trailingBackslashWrong, Text::trailingBackslashRight},
    {"unknown-escape", Severity::warning, Text::unknownEscapeRule, Text::unknownEscapePage, Text::unknownEscapeWrong,
     Text::unknownEscapeRight},
    {"white-space", Severity::warning, Text::whiteSpaceRule, Text::whiteSpacePage, Text::whiteSpaceWrong,
     Text::whiteSpaceRight},
    {"empty-message", Severity::warning, Text::emptyMessageRule, Text::emptyMessagePage, Text::emptyMessageWrong,
     Text::emptyMessageRight},
    {"stray-text", Severity::warning, Text::strayTextRule, Text::strayTextPage, Text::strayTextWrong,
     Text::strayTextRight},
    {"same-language", Severity::warning, Text::sameLanguageRule, Text::sameLanguagePage, Text::sameLanguageWrong,
     Text::sameLanguageRight},
    {"bidi-controls", Severity::warning, Text::bidiControlsRule, Text::bidiControlsPage, Text::bidiControlsWrong,
     Text::bidiControlsRight},
    {"doctype", Severity::warning, Text::doctypeRule, Text::doctypePage, Text::doctypeWrong, Text::doctypeRight},
    {"outdated", Severity::warning, Text::outdatedRule, Text::outdatedPage, Text::outdatedWrong, Text::outdatedRight},
    {"mojibake", Severity::warning, Text::mojibakeRule, Text::mojibakePage, Text::mojibakeWrong, Text::mojibakeRight},
    {"lost-character", Severity::warning, Text::lostCharacterRule, Text::lostCharacterPage, Text::lostCharacterWrong,
     Text::lostCharacterRight},
    {"double-escape", Severity::warning, Text::doubleEscapeRule, Text::doubleEscapePage, Text::doubleEscapeWrong,
     Text::doubleEscapeRight},
    {"invisible-character", Severity::warning, Text::invisibleCharacterRule, Text::invisibleCharacterPage,
     Text::invisibleCharacterWrong, Text::invisibleCharacterRight},
    {"wrong-script", Severity::warning, Text::wrongScriptRule, Text::wrongScriptPage, Text::wrongScriptWrong,
     Text::wrongScriptRight},
    {"line-break", Severity::warning, Text::lineBreakRule, Text::lineBreakPage, Text::lineBreakWrong,
     Text::lineBreakRight},
    {"end-punctuation", Severity::warning, Text::endPunctuationRule, Text::endPunctuationPage,
     Text::endPunctuationWrong, Text::endPunctuationRight},
    {"unbalanced", Severity::warning, Text::unbalancedRule, Text::unbalancedPage, Text::unbalancedWrong,
     Text::unbalancedRight},
    {"literal-changed", Severity::warning, Text::literalChangedRule, Text::literalChangedPage,
     Text::literalChangedWrong, Text::literalChangedRight},
    {"untranslated", Severity::off, Text::untranslatedRule, Text::untranslatedPage, Text::untranslatedWrong,
     Text::untranslatedRight},
    {"argument-order", Severity::warning, Text::argumentOrderRule, Text::argumentOrderPage, Text::argumentOrderWrong,
     Text::argumentOrderRight},
    {"markup-changed", Severity::warning, Text::markupChangedRule, Text::markupChangedPage, Text::markupChangedWrong,
     Text::markupChangedRight},
    {"access-key", Severity::warning, Text::accessKeyRule, Text::accessKeyPage, Text::accessKeyWrong,
     Text::accessKeyRight},
    {"left-over", Severity::warning, Text::leftOverRule, Text::leftOverPage, Text::leftOverWrong, Text::leftOverRight},
    {"wrong-language", Severity::warning, Text::wrongLanguageRule, Text::wrongLanguagePage, Text::wrongLanguageWrong,
     Text::wrongLanguageRight},
    {"other-meaning", Severity::warning, Text::otherMeaningRule, Text::otherMeaningPage, Text::otherMeaningWrong,
     Text::otherMeaningRight},
    {"text-length", Severity::warning, Text::textLengthRule, Text::textLengthPage, Text::textLengthWrong,
     Text::textLengthRight},
    {"attribute-differs", Severity::warning, Text::attributeDiffersRule, Text::attributeDiffersPage,
     Text::attributeDiffersWrong, Text::attributeDiffersRight},
    {"path-language", Severity::warning, Text::pathLanguageRule, Text::pathLanguagePage, Text::pathLanguageWrong,
     Text::pathLanguageRight},
    {"bad-suppression", Severity::warning, Text::badSuppressionRule, Text::badSuppressionPage,
     Text::badSuppressionWrong, Text::badSuppressionRight},
    {"incomplete", Severity::error, Text::incompleteRule, Text::incompletePage, Text::incompleteWrong,
     Text::incompleteRight},
    {"bad-name", Severity::error, Text::badNameRule, Text::badNamePage, Text::badNameWrong, Text::badNameRight},
};
static_assert(sizeof rows == ruleCount * sizeof(RuleRow));

/** Whether the text begins with the prefix, which is then taken off. */
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

/** With blanks behind it up to a number of columns. */
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
