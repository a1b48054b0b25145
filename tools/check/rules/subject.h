/**
 * A message under check: its text, the one that it is compared with, and where the findings against it go. A message
 * may be megabytes of one mistake, so that of each rule only the first are told, and how many more there are.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_SUBJECT_H
#define KELTO_TOOLS_CHECK_RULES_SUBJECT_H

#include "check/reading/parsed_file.h"
#include "check/texts/resolved_text.h"
#include "check/texts/tokens.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tool::check
{

class Subject
{
public:
    /** @param original  what to compare with, a message of the reference; both null where there is nothing. */
    Subject(const ParsedFile &parsed, const Message &message, const ParsedFile *reference, const Message *original,
            Findings &findings);

    const ParsedFile &parsed() const { return m_parsed; }
    const Message &message() const { return m_message; }
    bool hasOriginal() const { return m_original != nullptr; }
    const ParsedFile &reference() const { return *m_reference; }
    const Message &original() const { return *m_original; }

    /** The language of the file, and of the reference, without its country. */
    std::string_view language() const { return languageOf(m_parsed); }
    std::string_view originalLanguage() const { return languageOf(*m_reference); }

    /** As programs get them, a zero byte behind each; the second is empty where there is no original. */
    const ResolvedText &resolved() const { return m_text; }
    std::string_view text() const { return m_text.text(); }
    std::string_view originalText() const { return m_originalText.text(); }

    /** The same, taken apart. */
    const Tokens &tokens();
    const Tokens &originalTokens();

    /** The same without the marks of keys, '&' and '_', which stand within words. */
    const Tokens &tokensWithoutKeys();
    const Tokens &originalTokensWithoutKeys();

    /** Where a part of the text, or of that of the original, stands in its file. */
    Range placeOf(Range range) const { return m_parsed.locate(m_message, m_text.beforeEscapes(range)); }
    Range placeOfOriginal(Range range) const
    {
        return m_reference->locate(*m_original, m_originalText.beforeEscapes(range));
    }

    /** Says of a part of the original that it is what the text is compared with. */
    Note noteInOriginal(Range original) const { return {true, placeOfOriginal(original), {Text::referenceIsHere}}; }

    /** Whether the text of the original holds a part; false where there is none. */
    bool originalHas(std::string_view part) const { return originalText().find(part) != std::string_view::npos; }

    /** Whether a part of the text, or of that of the original, was typed as text, and is of no placeholder. */
    bool isTyped(Range range) const { return m_parsed.isText(m_message, m_text.beforeEscapes(range).begin); }
    bool isTypedInOriginal(Range range) const
    {
        return m_reference->isText(*m_original, m_originalText.beforeEscapes(range).begin);
    }

    void find(Rule rule, Range place, Phrase text) { add(rule, place, std::move(text), std::nullopt); }
    void find(Rule rule, Range place, Phrase text, Note note) { add(rule, place, std::move(text), std::move(note)); }

    /** How many findings there are, of the whole file. */
    size_t findings() const { return m_findings.size(); }

    /** Whether anything was found against a rule. */
    bool has(Rule rule) const { return m_found.find(rule) != m_found.end(); }

    /** Whether enough was found against a rule. */
    bool isFull(Rule rule) const;

    /** Tells how many findings were too many to be told. */
    void finish();

private:
    struct Found
    {
        size_t count = 0;
        Range lastPlace{}; // the place of the last finding that is told
    };

    /** A text without the marks of keys, and its tokens. */
    struct WithoutKeys
    {
        std::string text;
        Tokens tokens;

        explicit WithoutKeys(std::string kept) : text(std::move(kept)), tokens(text) {}
        WithoutKeys(const WithoutKeys &) = delete;
        WithoutKeys &operator=(const WithoutKeys &) = delete;
    };

    static std::string_view languageOf(const ParsedFile &parsed)
    {
        return std::string_view(parsed.language()).substr(0, 2);
    }
    void add(Rule rule, Range place, Phrase text, std::optional<Note> note);

    const ParsedFile &m_parsed;
    const Message &m_message;
    const ParsedFile *m_reference;
    const Message *m_original;
    Findings &m_findings;
    ResolvedText m_text;
    ResolvedText m_originalText;
    std::optional<Tokens> m_tokens; // made where they are needed
    std::optional<Tokens> m_originalTokens;
    std::optional<WithoutKeys> m_withoutKeys; // where there are keys
    std::optional<WithoutKeys> m_originalWithoutKeys;
    std::map<Rule, Found> m_found;
};

} // namespace tool::check

#endif
