#include "check/checks.h"

#include "check/access_keys.h"
#include "check/attributes.h"
#include "check/conversions.h"
#include "check/damage.h"
#include "check/directions.h"
#include "check/empty_messages.h"
#include "check/end_punctuation.h"
#include "check/escapes.h"
#include "check/left_over.h"
#include "check/line_breaks.h"
#include "check/literals.h"
#include "check/markup.h"
#include "check/neighbours.h"
#include "check/order.h"
#include "check/other_language.h"
#include "check/pairs.h"
#include "check/placeholders.h"
#include "check/script.h"
#include "check/subject.h"
#include "check/white_space.h"

#include <algorithm>
#include <climits>
#include <optional>

namespace tool::check
{
namespace
{

/** Most numbers up to the highest unused, and many of them. */
bool isSparse(size_t messages, int highest)
{
    constexpr size_t many = 4096;
    const size_t unused = static_cast<size_t>(highest) - std::min(messages, static_cast<size_t>(highest));
    return unused >= many && unused >= 7 * messages;
}

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
    FileCheck(const Catalog &catalog, formTable *table, const Reference *reference)
        : m_catalog(catalog), m_table(table), m_reference(reference), m_variants(catalog), m_scripts(catalog.language())
    {
        if (reference == nullptr)
            return;
        const std::vector<Message> &originals = reference->catalog().messages();
        m_original = originals.data();
        m_endOfOriginals = originals.data() + originals.size();
        m_neighbours.emplace(catalog, reference->catalog());
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

    const Catalog &m_catalog;
    formTable *m_table;
    const Reference *m_reference;
    const Variants m_variants;
    const Scripts m_scripts;
    std::optional<Neighbours> m_neighbours; // where there is a reference
    AccessKeys m_accessKeys;
    const Message *m_original = nullptr; // the next one of the reference
    const Message *m_endOfOriginals = nullptr;
    int m_done = 0; // the number of the last message that was looked at, here or there
    Findings m_findings;
};

Findings FileCheck::run()
{
    for (const Message &message : m_catalog.messages())
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
        m_neighbours->finish(m_findings);
    findMissingBelow(int64_t{INT_MAX} + 1);
    if (m_table != nullptr)
        m_variants.check(m_table, m_findings);
    checkWhole();
    return std::move(m_findings);
}

void FileCheck::findMissingBelow(int64_t id)
{
    for (; m_original != m_endOfOriginals && m_original->id < id; m_done = (m_original++)->id)
        if (m_original->id != m_done && m_catalog.isWhole() &&
            m_reference->variants().pathTo(m_original->id) == nullptr)
            m_findings.push_back({Rule::messageMissing, m_original->id, m_catalog.body().begin, m_catalog.body(),
                                  Phrase{Text::messageMissing},
                                  Note{true, m_original->unit, {Text::referenceHasItHere}}});
}

void FileCheck::findExtra(const Message &message)
{
    if (m_reference != nullptr && m_reference->catalog().isWhole() && !hasOriginal(message.id) &&
        m_variants.pathTo(message.id) == nullptr)
        m_findings.push_back({Rule::messageExtra, message.id, message.unit.begin, message.unit,
                              Phrase{Text::messageExtra}, std::nullopt});
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
    Subject subject(m_catalog, message, compared != nullptr ? &m_reference->catalog() : nullptr, compared, m_findings);
    checkEmptiness(subject);
    checkEscapes(subject);
    checkDirections(subject);
    if (m_table != nullptr && !isSelector(message))
        checkConversions(subject, m_table, compared != nullptr ? &m_reference->formatOf(*compared) : nullptr);
    checkDamage(subject);
    m_scripts.check(subject);
    if (!isSelector(message))
        checkLanguageOfText(subject);
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
    m_neighbours->add(subject);
}

void FileCheck::checkWhole()
{
    checkEncoding(m_catalog, m_findings);
    checkLanguage(m_catalog, m_reference != nullptr ? &m_reference->catalog() : nullptr, m_findings);
    if (m_reference != nullptr)
        compareProduct(m_catalog, m_reference->catalog(), m_findings);
    const std::vector<Message> &messages = m_catalog.messages();
    if (messages.empty())
        return;
    const Message &last = messages.back();
    if (isSparse(messages.size() + m_variants.reservedNumbers(), last.id))
        m_findings.push_back({Rule::sparseIds, last.id, last.unit.begin, last.unit,
                              counted(Text::sparseMessages, messages.size(), {static_cast<unsigned>(last.id)}),
                              std::nullopt});
}

} // namespace

Reference::Reference(const Catalog &catalog, formTable *table) : m_catalog(catalog), m_variants(catalog)
{
    for (const Message &message : catalog.messages())
    {
        const ResolvedText text(catalog.rawText(message));
        const bool isFormat = table != nullptr && message.isComplete && text.text().find('%') != std::string_view::npos;
        m_formats.push_back(isFormat ? parseFormat(text.text(), table) : Format());
        if (table != nullptr && message.isComplete && !takeBroken(catalog, message, text, m_formats.back()).empty())
            m_formats.back().isAccepted = false;
    }
}

Findings checkMessages(const Catalog &catalog, formTable *table, const Reference *reference)
{
    return FileCheck(catalog, table, reference).run();
}

} // namespace tool::check
