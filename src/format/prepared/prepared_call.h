/**
 * Calls on a prepared format for callers that fall back on another format. A text that does not fit is written as far
 * as it does. A conversion that fails makes the call fail also where the text has run out of room: whether a format
 * fails does not depend on the room.
 */
#ifndef KELTO_FORMAT_PREPARED_PREPARED_CALL_H
#define KELTO_FORMAT_PREPARED_PREPARED_CALL_H

#include "format/prepared/prepared_format.h"

namespace kelto
{

/** What a call brings besides its output. */
struct TypedCall
{
    unsigned options; /**< bits of KTFormatOption */
    void *passThru;
    const KTArgument *arguments;
    size_t count;
};

/**
 * Formats, while the library is started.
 * @param size  in: the capacity of out; out: the units of the whole text, whether it fits or not.
 * @return 0 or KT_ERR_BUFFER_TOO_SMALL; else as KTFormatPrepared() for a valid call, and out and size are of no use.
 */
template <typename Unit>
int formatWithBeginning(const KTPreparedFormat &prepared, const TypedCall &call, size_t *size, Unit *out) noexcept;
template <>
int formatWithBeginning(const KTPreparedFormat &prepared, const TypedCall &call, size_t *size, UCS2 *out) noexcept;
template <>
int formatWithBeginning(const KTPreparedFormat &prepared, const TypedCall &call, size_t *size, char *out) noexcept;

/** Whether the conversion of a position takes its arguments and can write them, by itself. The call's count is that of
 * the format's slots. */
bool canWrite(const KTPreparedFormat &prepared, unsigned position, const TypedCall &call) noexcept;

} // namespace kelto

#endif
