#include "format/selector.h"
#include "lifecycle/global_state.h"
#include "message/table_view.h"

namespace
{

/** The message at one of the places that are wanted: its number, or 0. */
uint32_t firstThere(const kelto::TableView &table, uint32_t row, const kelto::WantedPlaces &wanted)
{
    for (unsigned i = 0; i < wanted.count && row != 0; ++i)
        if (table.message(uint64_t{row} + wanted.places[i]) != nullptr)
            return row + wanted.places[i];
    return 0;
}

/** Follows selectors from a message; the number of the message that they lead to is 0 where there is none. */
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
        const kelto::SelectorReading reading = kelto::readSelector(message);
        if (!reading.isSelector)
            return reading.fault == KT_RULE_NONE ? 0 : KT_ERR_FORMAT_SYNTAX;
        if (steps == kelto::maxSelectionSteps)
            return KT_ERR_FORMAT_SYNTAX;
        kelto::WantedPlaces wanted;
        if (const int result = kelto::findWantedPlaces(reading.selector, rules, arguments, count, wanted))
            return result;
        id = firstThere(table, reading.selector.row, wanted);
    }
}

} // namespace

int KTSelectMessage(MessageTable *table, unsigned int *id, const char *locale, const KTArgument *arguments,
                    size_t count, char **message)
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
    const char *const language = locale != nullptr ? locale : view.language();
    if (const int result = follow(view, kelto::rulesOf(language), arguments, count, selected))
        return result;
    *id = selected;
    *message = const_cast<char *>(view.message(selected));
    return 0;
}
