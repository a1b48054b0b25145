// KTSelectMessage(): from a message that selects others to the one that arguments choose.

#include "format/variants/selector.h"
#include "lifecycle/global_state.h"
#include "message/table_view.h"

namespace
{

/** The first message at the places that are wanted: its number, or 0. */
uint32_t firstThere(const kelto::TableView &table, uint32_t row, kelto::WantedPlaces wanted)
{
    for (; !wanted.isEmpty(); wanted.pop())
        if (table.message(uint64_t{row} + wanted.front()) != nullptr)
            return row != 0 ? row + wanted.front() : 0;
    return 0;
}

/** Follows selectors from a message to the number of the one that they lead to; 0 where there is none. */
int follow(const kelto::TableView &table, kelto::LanguageRules rules, const KTArgument *arguments, size_t count,
           uint32_t &id)
{
    for (unsigned steps = 0;; ++steps)
    {
        const char *const message = table.message(id);
        if (message == nullptr)
            id = 0;
        if (id == 0)
            return 0;
        kelto::Selector selector;
        if (!kelto::readSelector(message, selector))
        {
            // The message that was asked for is looked through. A variant is only where it begins as a selector does:
            // a selector in the middle of it is refused by the format call to come.
            const bool isLookedThrough = steps == 0 || *message == '%';
            return isLookedThrough && kelto::findSelectorFault(message).rule != KT_RULE_NONE ? int{KT_ERR_FORMAT_SYNTAX}
                                                                                             : 0;
        }
        if (steps == kelto::maxSelectionSteps)
            return KT_ERR_FORMAT_SYNTAX;
        const kelto::WantedPlaces wanted = kelto::findWantedPlaces(selector, rules, arguments, count);
        if (wanted.result != 0)
            return wanted.result;
        id = firstThere(table, selector.row, wanted);
    }
}

} // namespace

// Flattened like the format calls.
[[gnu::flatten]] int KTSelectMessage(MessageTable *table, unsigned int *id, const char *locale,
                                     const KTArgument *arguments, size_t count, char **message)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (message != nullptr)
        *message = nullptr;
    if (message == nullptr || id == nullptr || (arguments == nullptr && count != 0))
        return KT_ERR_INVALID_PARAMETER;
    kelto::TableView view;
    if (!view.open(table))
        return KT_ERR_TABLE_NOT_FOUND;
    uint32_t selected = *id;
    const kelto::LanguageRules rules =
        locale != nullptr ? kelto::rulesOf(locale) : kelto::rulesOf(view.language(), view.country());
    if (const int result = follow(view, rules, arguments, count, selected))
        return result;
    *id = selected;
    *message = const_cast<char *>(view.message(selected));
    return 0;
}
