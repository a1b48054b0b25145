#include "message/stored_message.h"

#include "kelto.h"

#include <cstring>

namespace
{

/** Where the first two zero bytes in a row begin. */
const char *terminatingPair(const char *message)
{
    const char *zero = message + std::strlen(message);
    while (zero[1] != '\0')
        zero += 1 + std::strlen(zero + 1);
    return zero;
}

} // namespace

int KTMsgLen(const char *message)
{
    return static_cast<int>(terminatingPair(message) - message);
}

const char *KTMsgCpy(const char *source, char *destination)
{
    const char *const end = terminatingPair(source);
    const size_t length = static_cast<size_t>(end - source);
    std::memmove(destination, source, length);
    std::memset(destination + length, 0, kelto::terminatorBytes);
    return end;
}
