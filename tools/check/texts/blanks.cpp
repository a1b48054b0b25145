#include "check/texts/blanks.h"

#include "check/texts/characters.h"

namespace tool::check
{

Range coreOf(std::string_view text)
{
    Range core{0, text.size()};
    for (size_t next = 0; core.begin < text.size() && isWhiteSpace(takeUtf8(text, next));)
        core.begin = next;
    if (core.begin == core.end)
        return {0, 0};
    while (core.end > core.begin)
    {
        const size_t last = stepBackUtf8(text, core.end);
        size_t next = last;
        if (!isWhiteSpace(takeUtf8(text, next)))
            break;
        core.end = last;
    }
    return core;
}

bool isBlank(std::string_view text)
{
    return coreOf(text).end == 0;
}

std::optional<Range> doubleBlankIn(std::string_view text)
{
    const Range core = coreOf(text);
    for (size_t at = text.find("  ", core.begin); at < core.end; at = text.find("  ", at))
    {
        const size_t end = text.find_first_not_of(' ', at);
        if (at > 0 && text[at - 1] != '\n' && text[at - 1] != '\r' && text[end] != '\n' && text[end] != '\r')
            return Range{at, end};
        at = end;
    }
    return std::nullopt;
}

} // namespace tool::check
