#include "message/escapes.h"

#include <cstddef>
#include <cstring>

namespace
{

struct Escape
{
    char written, meant;
};

constexpr Escape escapes[] = {{'\\', '\\'}, {'t', '\t'}, {'r', '\r'}, {'n', '\n'}, {'"', '"'}};

/** What a backslash and this character stand for; 0 when they stand for themselves. */
char resolveEscape(char written)
{
    for (const Escape &escape : escapes)
        if (escape.written == written)
            return escape.meant;
    return '\0';
}

} // namespace

void handleEscape(const char *text)
{
    auto *from = const_cast<char *>(std::strchr(text, '\\'));
    if (from == nullptr)
        return;
    char *to = from;
    while (*from != '\0')
    {
        const char meant = *from == '\\' ? resolveEscape(from[1]) : '\0';
        *to++ = meant != '\0' ? meant : *from;
        from += meant != '\0' ? 2 : 1;
    }
    std::memset(to, 0, static_cast<size_t>(from - to));
}
