/** How a message ends in a table, and with that how long it is; KTMsgLen() and KTMsgCpy() go by it. */
#ifndef KELTO_MESSAGE_MESSAGE_LENGTH_COPY_H
#define KELTO_MESSAGE_MESSAGE_LENGTH_COPY_H

#include <cstddef>

namespace kelto
{

/** A message ends with as many zero bytes. */
constexpr size_t terminatorBytes = 2;

} // namespace kelto

#endif
