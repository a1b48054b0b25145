/**
 * Texts of programs that use printf: their conversions become those of messages, with positions. What C has and
 * messages have not is refused in words, since nothing else would write the same.
 */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_PRINTF_FORMAT_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_PRINTF_FORMAT_H

#include <string>
#include <string_view>
#include <vector>

namespace tool::bilingual
{

struct FromPrintf
{
    std::string message;
    std::vector<std::string> refused; // the conversions without an equal, as they are written
};

/** "%s[1]: %!d[2]" of "%s: %ld". */
FromPrintf fromPrintf(std::string_view text);

} // namespace tool::bilingual

#endif
