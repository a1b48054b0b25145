#include "message/escapes.h"

#include "message/grammar/escapes.h"

#include <cstddef>
#include <cstring>

void handleEscape(const char *text)
{
    auto *from = const_cast<char *>(std::strchr(text, '\\'));
    if (from == nullptr)
        return;
    char *to = from;
    while (*from != '\0')
    {
        const char meant = *from == '\\' ? kelto::meaningOfEscape(from[1]) : '\0';
        *to++ = meant != '\0' ? meant : *from;
        from += meant != '\0' ? 2 : 1;
    }
    std::memset(to, 0, static_cast<size_t>(from - to));
}
