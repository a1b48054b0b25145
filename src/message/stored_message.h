/** A message as a table holds it: bytes that end with two zero bytes. KTMsgLen() and KTMsgCpy() live here. */
#ifndef KELTO_MESSAGE_STORED_MESSAGE_H
#define KELTO_MESSAGE_STORED_MESSAGE_H

#include <cstddef>

namespace kelto
{

/** The zero bytes at the end of a message. */
constexpr size_t terminatorBytes = 2;

} // namespace kelto

#endif
