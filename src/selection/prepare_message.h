/**
 * A message of a table as a prepared format: an ordinary one is prepared by itself, a selector with all that it leads
 * to, each message once, however many selectors lead to it; the messages of its rows agree in their arguments. A
 * refused message comes with the reason, and with the number of the message concerned.
 */
#ifndef KELTO_SELECTION_PREPARE_MESSAGE_H
#define KELTO_SELECTION_PREPARE_MESSAGE_H

#include "format/prepared/prepared_format.h"
#include "message/table_view.h"

namespace kelto
{

/** What became of a message: a result, and the problem of a message that is refused. */
struct MessageVerdict
{
    int result;
    KTProblem problem; /**< with KT_RULE_NONE where the result says all */
};

/**
 * KTPrepareMessage() with the table itself in place of its handle.
 * @param locale  the language whose rules count; null for the file's.
 * @param forms   may be null.
 */
MessageVerdict prepareMessage(const TableView &table, uint32_t id, const char *locale, formTable *forms,
                              PreparedOwner &prepared) noexcept;

} // namespace kelto

#endif
