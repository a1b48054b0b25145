#include "check/subject.h"

namespace tool::check
{
namespace
{

constexpr size_t mostPerRule = 100;

} // namespace

Subject::Subject(const Catalog &catalog, const Message &message, const Catalog *reference, const Message *original,
                 Findings &findings)
    : m_catalog(catalog), m_message(message), m_reference(reference), m_original(original), m_findings(findings),
      m_text(catalog.rawText(message)),
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
