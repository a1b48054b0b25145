#include "check/rules/subject.h"

#include <algorithm>

namespace tool::check
{
namespace
{

constexpr size_t mostPerRule = 100;

constexpr std::string_view keys = "&_";

bool hasKey(std::string_view text)
{
    return text.find_first_of(keys) != std::string_view::npos;
}

std::string withoutKeys(std::string_view text)
{
    std::string kept(text);
    kept.erase(
        std::remove_if(kept.begin(), kept.end(), [](char byte) { return keys.find(byte) != std::string_view::npos; }),
        kept.end());
    return kept;
}

} // namespace

Subject::Subject(const ParsedFile &parsed, const Message &message, const ParsedFile *reference, const Message *original,
                 Findings &findings)
    : m_parsed(parsed), m_message(message), m_reference(reference), m_original(original), m_findings(findings),
      m_text(parsed.rawText(message)),
      m_originalText(original != nullptr ? reference->rawText(*original) : std::string_view())
{
}

const Tokens &Subject::tokens()
{
    return m_tokens ? *m_tokens : m_tokens.emplace(text());
}

const Tokens &Subject::originalTokens()
{
    return m_originalTokens ? *m_originalTokens : m_originalTokens.emplace(originalText());
}

const Tokens &Subject::tokensWithoutKeys()
{
    if (!hasKey(text()))
        return tokens();
    return (m_withoutKeys ? *m_withoutKeys : m_withoutKeys.emplace(withoutKeys(text()))).tokens;
}

const Tokens &Subject::originalTokensWithoutKeys()
{
    if (!hasKey(originalText()))
        return originalTokens();
    return (m_originalWithoutKeys ? *m_originalWithoutKeys : m_originalWithoutKeys.emplace(withoutKeys(originalText())))
        .tokens;
}

void Subject::add(Rule rule, Range place, Phrase text, std::optional<Note> note)
{
    Found &found = m_found[rule];
    if (++found.count > mostPerRule)
        return;
    found.lastPlace = place;
    m_findings.push_back({rule, m_message.id, m_message.unit.begin, place, std::move(text), std::move(note)});
}

bool Subject::isFull(Rule rule) const
{
    const auto found = m_found.find(rule);
    return found != m_found.end() && found->second.count >= mostPerRule;
}

void Subject::finish()
{
    for (const auto &[rule, found] : m_found)
        if (found.count > mostPerRule)
            m_findings.push_back({rule, m_message.id, m_message.unit.begin, found.lastPlace,
                                  counted(Text::moreFindings, found.count - mostPerRule), std::nullopt});
}

} // namespace tool::check
