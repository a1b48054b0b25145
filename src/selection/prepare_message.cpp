// The messages that a selector leads to are visited depth first. A message that is met again is found by its number,
// together with the count of selectors below it. So each message is prepared once, and their number bounds the work.

#include "selection/prepare_message.h"

#include "format/arguments/typed_argument.h"
#include "format/grammar/format_string.h"
#include "format/grammar/problem_report.h"
#include "format/prepared/compare_formats.h"
#include "format/prepared/prepared_variants.h"
#include "format/variants/nil_conversion.h"
#include "lifecycle/global_state.h"

#include <algorithm>
#include <cstring>

namespace
{

using kelto::FormatVerdict;
using kelto::MessageVerdict;
using kelto::PreparedOwner;
using kelto::PreparedVariants;
using kelto::Selector;
using kelto::TableView;

constexpr const char *missing = "missing"; // said of an argument

constexpr KTProblem noProblem = {0, KT_RULE_NONE, 0, 0, 0, 0, nullptr, nullptr, 0};

/** A message that was visited. */
struct Visited
{
    uint32_t id;
    bool isSelector;
    uint32_t height;          // of the selectors from it on, itself counted; 0 for an ordinary message
    KTPreparedFormat *format; // null while its row is visited
    Selector selector;
};

/** The messages that were visited, by their numbers; it owns their formats. */
class VisitedMessages
{
public:
    VisitedMessages() = default;
    ~VisitedMessages()
    {
        for (size_t i = 0; i < m_count; ++i)
            if (m_messages[i].format != nullptr)
                ZEL_free(m_messages[i].format);
    }
    VisitedMessages(const VisitedMessages &) = delete;
    VisitedMessages &operator=(const VisitedMessages &) = delete;

    size_t count() const { return m_count; }
    Visited *begin() { return m_messages.get(); }
    Visited *end() { return m_messages.get() + m_count; }

    /** The message of a number, or null. It moves when another is inserted. */
    Visited *find(uint32_t id)
    {
        Visited *const place = placeOf(id);
        return place != end() && place->id == id ? place : nullptr;
    }

    /** False when memory ran out. */
    bool insert(const Visited &message)
    {
        if (m_count == m_capacity && !grow())
            return false;
        Visited *const place = placeOf(message.id);
        std::copy_backward(place, end(), end() + 1);
        *place = message;
        ++m_count;
        return true;
    }

    /** Gives up the formats: the first one owns them from now on. */
    void release() { m_count = 0; }

private:
    Visited *placeOf(uint32_t id)
    {
        return std::lower_bound(begin(), end(), id,
                                [](const Visited &message, uint32_t wanted) { return message.id < wanted; });
    }

    bool grow()
    {
        constexpr size_t usual = 10;
        const size_t capacity = m_capacity != 0 ? m_capacity * 2 : usual;
        auto grown = kelto::allocate<Visited>(glbResHandle, capacity);
        if (grown == nullptr)
            return false;
        std::copy(begin(), end(), grown.get());
        m_messages = std::move(grown);
        m_capacity = capacity;
        return true;
    }

    kelto::TagBlock<Visited> m_messages;
    size_t m_count = 0, m_capacity = 0;
};

/** Prepares one message with all that it leads to. */
class MessagePreparation
{
public:
    MessagePreparation(const TableView &table, const char *locale, formTable *forms)
        : m_table(table),
          m_rules(locale != nullptr ? kelto::rulesOf(locale) : kelto::rulesOf(table.language(), table.country())),
          m_forms(forms), m_withNil(forms)
    {
    }

    MessageVerdict run(uint32_t id, PreparedOwner &prepared)
    {
        if (m_table.message(id) == nullptr)
            return refused(KT_ERR_INVALID_MSG_ID, {0, KT_RULE_VARIANT_MISSING, 0, 0, 0, 0, nullptr, nullptr, id});
        int result = visit(id, 0);
        for (const Visited *message = m_messages.begin(); message != m_messages.end() && result == 0; ++message)
            result = checkArgument(*message);
        if (result == 0)
            result = handOver(id, prepared);
        return {result, m_problem};
    }

private:
    MessageVerdict refused(int result, const KTProblem &problem)
    {
        m_problem = problem;
        return {result, problem};
    }

    int refuse(int result, const KTProblem &problem) { return refused(result, problem).result; }

    /** Refuses a selector as a whole. */
    int refuse(int result, KTRule rule, const Visited &selector)
    {
        return refuse(result, {0, rule, 0, 0, 0, lengthOf(selector), nullptr, nullptr, selector.id});
    }

    /** Prepares a message that the table has, `steps` selectors away from the first. */
    int visit(uint32_t id, unsigned steps)
    {
        Visited message = {id, false, 0, nullptr, {}};
        message.isSelector = kelto::readSelector(m_table.message(id), message.selector);
        if (m_messages.count() == kelto::maxSelectedMessages)
            return refuse(KT_ERR_FORMAT_SYNTAX, KT_RULE_SELECTOR_SIZE, message);
        if (!message.isSelector)
            return prepareText(message);
        message.height = 1;
        if (steps == kelto::maxSelectionSteps)
            return refuse(KT_ERR_FORMAT_SYNTAX, KT_RULE_SELECTOR_DEPTH, message);
        if (!m_messages.insert(message))
            return KT_ERR_NO_MEMORY;
        if (const int result = visitRow(message, steps))
            return result;
        return fillRow(message);
    }

    int visitRow(Visited &selector, unsigned steps)
    {
        const Selector &row = selector.selector;
        bool isEmpty = true;
        for (unsigned place = 0; place < row.rowLength(); ++place)
        {
            const uint32_t id = messageAt(row, place);
            if (id == 0)
                continue;
            isEmpty = false;
            const Visited *known = m_messages.find(id);
            if (known == nullptr)
            {
                if (const int result = visit(id, steps + 1))
                    return result;
                known = m_messages.find(id);
            }
            const bool leadsBack = known->isSelector && known->format == nullptr;
            if (leadsBack || steps + 1 + known->height > kelto::maxSelectionSteps)
                return refuse(KT_ERR_FORMAT_SYNTAX, KT_RULE_SELECTOR_DEPTH, selector);
            selector.height = std::max(selector.height, known->height + 1);
        }
        return isEmpty ? refuse(KT_ERR_INVALID_MSG_ID, KT_RULE_VARIANT_MISSING, selector) : 0;
    }

    int fillRow(const Visited &selector)
    {
        const Selector &row = selector.selector;
        unsigned length = row.rowLength();
        while (messageAt(row, length - 1) == 0)
            --length;
        const PreparedOwner::pointer made = kelto::makeVariants(row, m_rules, length).release();
        if (made == nullptr)
            return KT_ERR_NO_MEMORY;
        for (unsigned place = 0; place < length; ++place)
            if (const uint32_t id = messageAt(row, place))
                made->variants->row[place] = m_messages.find(id)->format;
        Visited &message = *m_messages.find(selector.id);
        message.format = made;
        message.height = selector.height;
        return 0;
    }

    size_t lengthOf(const Visited &message) const { return std::strlen(m_table.message(message.id)); }

    /** The number of the message at a place of a row; 0 where there is none. */
    uint32_t messageAt(const Selector &selector, unsigned place) const
    {
        const uint64_t id = uint64_t{selector.row} + place;
        return selector.row != 0 && m_table.message(id) != nullptr ? static_cast<uint32_t>(id) : 0;
    }

    int prepareText(Visited &message)
    {
        PreparedOwner owner;
        FormatVerdict verdict = kelto::prepareFormat(m_table.message(message.id), m_withNil.table(), owner);
        if (verdict.result != 0)
        {
            const kelto::SelectorFault fault = kelto::findSelectorFault(m_table.message(message.id));
            const bool isMeant = fault.rule != KT_RULE_NONE && verdict.rule == KT_RULE_UNKNOWN_CONVERSION &&
                                 verdict.offset == fault.offset;
            const int rule = isMeant ? fault.rule : verdict.rule;
            return refuse(verdict.result,
                          {0, rule, 0, verdict.position, verdict.offset, verdict.length, nullptr, nullptr, message.id});
        }
        owner->table = m_forms; // the encoder is looked up there
        message.format = owner.get();
        if (m_first == nullptr)
            m_first = message.format;
        else if (const int result = compareArguments(message))
            return result;
        if (!m_messages.insert(message))
            return KT_ERR_NO_MEMORY;
        static_cast<void>(owner.release()); // the messages free it now
        return 0;
    }

    /** Compares the arguments of a variant with those of the first. */
    int compareArguments(const Visited &message)
    {
        KTProblem problem = kelto::compareSlots(*message.format, *m_first);
        if (problem.rule == KT_RULE_NONE)
            return 0;
        kelto::findPlace(m_table.message(message.id), problem);
        problem.rule = KT_RULE_VARIANT_ARGUMENTS;
        problem.found = problem.found != nullptr ? problem.found : missing;
        problem.expected = problem.expected != nullptr ? problem.expected : missing;
        problem.message = message.id;
        return refuse(KT_ERR_FORMAT_SYNTAX, problem);
    }

    /** Checks that the variants take an integer or number at the place by which a selector selects. */
    int checkArgument(const Visited &message)
    {
        if (!message.isSelector)
            return 0;
        const Selector &selector = message.selector;
        const bool isThere = selector.argument <= m_first->slotCount;
        const uint32_t code = isThere ? m_first->slots[selector.argument - 1].code : 0;
        if (kelto::selectsBy(selector, code))
            return 0;
        const bool isText = code == KT_SLOT_UTF8 || code == KT_SLOT_UCS2;
        const char *const found = isText ? "a text" : isThere ? kelto::slotName(code) : missing;
        return refuse(KT_ERR_INVALID_PARAMETER, {0, KT_RULE_SELECTOR_ARGUMENT, selector.argument, selector.argument, 0,
                                                 lengthOf(message), nullptr, found, message.id});
    }

    int handOver(uint32_t id, PreparedOwner &prepared)
    {
        KTPreparedFormat *const first = m_messages.find(id)->format;
        if (first->variants != nullptr)
        {
            auto owned = kelto::allocate<KTPreparedFormat *>(glbResHandle, m_messages.count());
            if (owned == nullptr)
                return KT_ERR_NO_MEMORY;
            PreparedVariants &variants = *first->variants;
            for (const Visited &message : m_messages)
                if (message.format != first)
                    owned[variants.ownedCount++] = message.format;
            variants.owned = owned.release();
            variants.slotCount = m_first->slotCount;
            first->slots = m_first->slots;
        }
        prepared.reset(first);
        m_messages.release();
        return 0;
    }

    const TableView &m_table;
    kelto::LanguageRules m_rules;
    formTable *m_forms;
    kelto::WithNil m_withNil;
    VisitedMessages m_messages;
    const KTPreparedFormat *m_first = nullptr; // the first ordinary message
    KTProblem m_problem = noProblem;
};

} // namespace

namespace kelto
{

MessageVerdict prepareMessage(const TableView &table, uint32_t id, const char *locale, formTable *forms,
                              PreparedOwner &prepared) noexcept
{
    return MessagePreparation(table, locale, forms).run(id, prepared);
}

} // namespace kelto

int KTPrepareMessage(MessageTable *table, unsigned int id, const char *locale, formTable *forms,
                     KTPreparedFormat **prepared)
{
    if (prepared != nullptr)
        *prepared = nullptr;
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (prepared == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    TableView view;
    if (!view.open(table))
        return KT_ERR_TABLE_NOT_FOUND;
    PreparedOwner owner;
    const int result = kelto::prepareMessage(view, id, locale, forms, owner).result;
    *prepared = owner.release();
    return result;
}

int KTExplainMessage(MessageTable *table, unsigned int id, formTable *forms, KTProblem *problem)
{
    const kelto::ProblemReport report(problem);
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (!report.isUsable())
        return KT_ERR_INVALID_PARAMETER;
    TableView view;
    if (!view.open(table))
        return KT_ERR_TABLE_NOT_FOUND;
    PreparedOwner owner;
    const MessageVerdict verdict = kelto::prepareMessage(view, id, nullptr, forms, owner);
    report.set(verdict.problem);
    return verdict.result;
}
