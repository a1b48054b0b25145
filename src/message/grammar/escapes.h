/** What a backslash in a message and the character behind it stand for. */
#ifndef KELTO_MESSAGE_GRAMMAR_ESCAPES_H
#define KELTO_MESSAGE_GRAMMAR_ESCAPES_H

namespace kelto
{

/** The character that a backslash and this one stand for; 0 where they stand for themselves. */
constexpr char meaningOfEscape(char written) noexcept
{
    constexpr struct
    {
        char written, meant;
    } escapes[] = {{'\\', '\\'}, {'t', '\t'}, {'r', '\r'}, {'n', '\n'}, {'"', '"'}};
    for (const auto &escape : escapes)
        if (escape.written == written)
            return escape.meant;
    return '\0';
}

} // namespace kelto

#endif
