/** The text of a message as a table stores it: how it ends, which KTMsgLen() and KTMsgCpy() know as well. */
#ifndef KELTO_MESSAGE_MESSAGE_TEXT_H
#define KELTO_MESSAGE_MESSAGE_TEXT_H

#include <cstddef>

namespace kelto
{

/** A message ends with as many zero bytes. */
constexpr size_t terminatorBytes = 2;

} // namespace kelto

#endif
