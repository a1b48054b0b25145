/**
 * The second pass over a message file, which fills a table and the block of its messages. Its handlers keep to the
 * state below. They rely on the first pass, which has checked and measured: they write without a bound. The file of the
 * loader may have changed in between, so it puts guards in front of them.
 */
#ifndef KELTO_MESSAGE_SECOND_PASS_H
#define KELTO_MESSAGE_SECOND_PASS_H

#include "kelto.h"
#include "message/grammar/attributes.h"
#include "message/grammar/elements.h"
#include "message/stored_message.h"
#include "message/table_list.h"

struct SecondPassState
{
    bool raw;            /**< placeholders are written without their positions */
    int error;           /**< 0, or the result that ends the pass: all handlers return at once */
    bool inSource;       /**< text belongs to the current message */
    MessageTable *table; /**< gets what the "file" element says */
    char **messages;     /**< by ID */
    int currentId;       /**< of the latest "trans-unit" */
    char *cursor;        /**< the next free byte; it and all that follow are zero */
};

extern "C" {
#pragma GCC visibility push(default)

/* `state` is a SecondPassState. A duplicate ID makes its error KT_ERR_BAD_MSG_FILE, as does a missing attribute;
 * KT_ERR_NO_MEMORY when a product text cannot be copied. */
void startElement2(void *state, const char *name, const char **attrs);
void endElement2(void *state, const char *name);
void characterData2(void *state, const char *text, int length);

#pragma GCC visibility pop
}

namespace kelto
{

/** An "x" as it is written; `text` is null where there is nothing to write. */
struct WrittenPlaceholder
{
    const char *text;
    size_t textLength;
    const char *position; /**< null where only the text is written */
    size_t positionLength;

    size_t size() const noexcept { return position != nullptr ? textLength + positionLength + 2 : textLength; }
};

WrittenPlaceholder measurePlaceholder(const char **attrs, bool raw) noexcept;

void fillFile(SecondPassState &pass, const FileAttributes &file) noexcept;
void openMessage(SecondPassState &pass, int id) noexcept;
void appendPlaceholder(SecondPassState &pass, const WrittenPlaceholder &placeholder) noexcept;
void endInSecondPass(SecondPassState &pass, const ElementMapRow &element) noexcept;

/**
 * The start of an element, for handler and guard.
 * @param takePlace  called with the FileAttributes, message ID or WrittenPlaceholder of the element before that is
 *                   written; false refuses the file.
 */
template <typename TakePlace>
void startInSecondPass(SecondPassState &pass, const ElementMapRow &element, const char **attrs,
                       TakePlace takePlace) noexcept
{
    switch (element.id)
    {
    case ELM_FILE:
        if (const FileAttributes file = readFileAttributes(attrs); takePlace(file))
            return fillFile(pass, file);
        break;
    case ELM_TRANS_UNIT:
        if (const int id = readMessageId(attrs); takePlace(id))
            return openMessage(pass, id);
        break;
    case ELM_X:
        if (const WrittenPlaceholder placeholder = measurePlaceholder(attrs, pass.raw); takePlace(placeholder))
            return appendPlaceholder(pass, placeholder);
        break;
    default:
        pass.inSource = element.id == ELM_SOURCE;
        return;
    }
    pass.error = KT_ERR_BAD_MSG_FILE;
}

} // namespace kelto

#endif
