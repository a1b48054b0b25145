/** The form in which messages are stored, which KTMsgLen() and KTMsgCpy() know as well. */
#ifndef KELTO_MESSAGE_STORED_TEXT_H
#define KELTO_MESSAGE_STORED_TEXT_H

#include <cstddef>

namespace kelto
{

/** A message ends with as many zero bytes. */
constexpr size_t terminatorBytes = 2;

} // namespace kelto

#endif
