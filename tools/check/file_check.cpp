#include "check/file_check.h"

#include "check/rules/characters/damage.h"
#include "check/rules/characters/directions.h"
#include "check/rules/characters/script.h"
#include "check/rules/conversions/conversions.h"
#include "check/rules/conversions/order.h"
#include "check/rules/conversions/placeholders.h"
#include "check/rules/files/attributes.h"
#include "check/rules/files/empty_messages.h"
#include "check/rules/files/file_language.h"
#include "check/rules/files/neighbours.h"
#include "check/rules/files/numbers.h"
#include "check/rules/files/outdated.h"
#include "check/rules/marks/access_keys.h"
#include "check/rules/marks/end_punctuation.h"
#include "check/rules/marks/escapes.h"
#include "check/rules/marks/line_breaks.h"
#include "check/rules/marks/markup.h"
#include "check/rules/marks/pairs.h"
#include "check/rules/marks/white_space.h"
#include "check/rules/subject.h"
#include "check/rules/wording/denials.h"
#include "check/rules/wording/left_over.h"
#include "check/rules/wording/literals.h"
#include "check/rules/wording/other_language.h"
#include "check/texts/blanks.h"

#include <algorithm>
#include <climits>
#include <optional>

namespace tool::check
{
namespace
{

/** Whether a person can have written and read both texts: what compares them part by part takes too long for others. */
bool isReadable(const Subject &subject)
{
    constexpr size_t longest = 8192;
    return subject.text().size() <= longest && subject.originalText().size() <= longest;
}

/** The check of a file: its messages in the order of their numbers, beside those of the reference. */
class FileCheck
{
public:
    FileCheck(const ParsedFile &parsed, formTable *table, const Reference *reference)
        : m_parsed(parsed), m_table(table), m_reference(reference), m_variants(parsed), m_scripts(parsed.language()),
          m_lengths(std::string_view(parsed.language()).substr(0, 2))
    {
        if (reference == nullptr)
            return;
        const std::vector<Message> &originals = reference->parsed().messages();
        m_original = originals.data();
        m_endOfOriginals = originals.data() + originals.size();
        m_neighbours.emplace(parsed, reference->parsed());
    }

    Findings run();

private:
    void findMissingBelow(int64_t id);
    void findExtra(const Message &message);
    void checkMessage(const Message &message, bool isFirst);
    const Message *counterpartOf(const Message &message, bool isFirst) const;
    void compare(Subject &subject);
    void checkWhole();

    bool hasOriginal(int id) const { return m_original != m_endOfOriginals && m_original->id == id; }
    bool isSelector(const Message &message) const { return m_variants.selector(message.id) != nullptr; }

    const ParsedFile &m_parsed;
    formTable *m_table;
    const Reference *m_reference;
    const Variants m_variants;
    const Scripts m_scripts;
    LengthCheck m_lengths;
    std::optional<Neighbours> m_neighbours; // where there is a reference
    AccessKeys m_accessKeys;
    bool m_isGarbled = false;            // by its encoding
    const Message *m_original = nullptr; // the next one of the reference
    const Message *m_endOfOriginals = nullptr;
    int m_done = 0; // the number of the last message that was looked at, here or there
    Findings m_findings;
};

Findings FileCheck::run()
{
    m_isGarbled = checkEncoding(m_parsed, m_findings);
    for (const Message &message : m_parsed.messages())
    {
        findMissingBelow(message.id);
        const bool isFirst = m_done != message.id;
        m_done = message.id;
        findExtra(message);
        if (message.isComplete)
            checkMessage(message, isFirst);
    }
    m_accessKeys.finish(m_findings);
    if (m_neighbours)
        m_neighbours->finish(m_lengths.usualRatio(), m_findings);
    m_lengths.finish(m_findings);
    findMissingBelow(int64_t{INT_MAX} + 1);
    if (m_table != nullptr)
        m_variants.check(m_table, m_findings);
    checkWhole();
    return std::move(m_findings);
}

void FileCheck::findMissingBelow(int64_t id)
{
    for (; m_original != m_endOfOriginals && m_original->id < id; m_done = (m_original++)->id)
        if (m_original->id != m_done && m_parsed.isWhole() && m_reference->variants().pathTo(m_original->id) == nullptr)
            tellMissing(m_parsed, *m_original, m_findings);
}

void FileCheck::findExtra(const Message &message)
{
    if (m_reference != nullptr && m_reference->parsed().isWhole() && !hasOriginal(message.id) &&
        m_variants.pathTo(message.id) == nullptr)
        tellExtra(message, m_findings);
}

/** Sentences are compared with sentences, whatever row holds them here and there; null where there is none. */
const Message *FileCheck::counterpartOf(const Message &message, bool isFirst) const
{
    if (m_reference == nullptr || !isFirst || isSelector(message))
        return nullptr;
    const Variants &theirs = m_reference->variants();
    const Message *compared = nullptr;
    if (const Path *const path = m_variants.pathTo(message.id))
        compared = theirs.counterpart(*path);
    else if (hasOriginal(message.id))
        compared = theirs.selector(message.id) != nullptr ? theirs.counterpart({message.id, {}}) : m_original;
    return compared != nullptr && compared->isComplete ? compared : nullptr;
}

void FileCheck::checkMessage(const Message &message, bool isFirst)
{
    const Message *const compared = counterpartOf(message, isFirst);
    Subject subject(m_parsed, message, compared != nullptr ? &m_reference->parsed() : nullptr, compared, m_findings);
    checkEmptiness(subject);
    checkEscapes(subject);
    checkDirections(subject);
    if (m_table != nullptr && !isSelector(message))
        checkConversions(subject, m_table, compared != nullptr ? &m_reference->formatOf(*compared) : nullptr);
    checkDamage(subject, m_isGarbled);
    m_scripts.check(subject);
    if (!isSelector(message))
        checkLanguageOfText(subject, m_isGarbled);
    if (compared != nullptr)
        compare(subject);
    else if (!isSelector(message))
        checkSlashes(subject);
    subject.finish();
}

void FileCheck::compare(Subject &subject)
{
    if (m_variants.pathTo(subject.message().id) == nullptr)
        compareName(subject);
    compareAge(subject);
    compareLineBreaks(subject);
    compareWhiteSpace(subject);
    if (!isBlank(subject.text()))
    {
        comparePunctuation(subject);
        comparePairs(subject);
    }
    if (isReadable(subject))
    {
        compareLiterals(subject);
        compareOrder(subject);
        compareMarkup(subject);
        findLeftOver(subject);
    }
    m_accessKeys.compare(subject);
    if (subject.tokensWithoutKeys().words() == 0 || subject.originalTokensWithoutKeys().words() == 0)
        return;
    m_neighbours->add(subject, m_lengths.add(subject));
    compareDenial(subject);
}

void FileCheck::checkWhole()
{
    checkLanguage(m_parsed, m_reference != nullptr ? &m_reference->parsed() : nullptr, m_findings);
    if (m_reference != nullptr)
        compareProduct(m_parsed, m_reference->parsed(), m_findings);
    checkNumbers(m_parsed, m_variants.reservedNumbers(), m_findings);
}

} // namespace

Reference::Reference(const ParsedFile &parsed, formTable *table) : m_parsed(parsed), m_variants(parsed)
{
    for (const Message &message : parsed.messages())
    {
        const ResolvedText text(parsed.rawText(message));
        const bool isFormat = table != nullptr && message.isComplete && text.text().find('%') != std::string_view::npos;
        m_formats.push_back(isFormat ? parseFormat(text.text(), table) : Format());
        if (table != nullptr && message.isComplete && !takeBroken(parsed, message, text, m_formats.back()).empty())
            m_formats.back().isAccepted = false;
    }
}

Findings checkMessages(const ParsedFile &parsed, formTable *table, const Reference *reference)
{
    return FileCheck(parsed, table, reference).run();
}

} // namespace tool::check
