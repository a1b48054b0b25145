/**
 * Conversions as C writes them, which the tools of gettext know and check: "%2$-5d" is "%-5d[2]". One that C has no
 * equal for stays as it is; neither can be mistaken for the other.
 */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_C_FORMAT_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_C_FORMAT_H

#include "bilingual/message_parts.h"

#include <optional>
#include <string>
#include <string_view>

namespace tool::bilingual
{

/** "%2$-5d" of "%-5d[2]"; nothing where C has no equal, or one that would come back as another text. */
std::optional<std::string> inC(const std::string &conversion);

/** The same the other way round, from the beginning of a text, and how much of it that takes. */
struct FromC
{
    std::string conversion;
    size_t length = 0;
};
std::optional<FromC> fromC(std::string_view text);

/** Whether both have the same arguments in C, as `msgfmt -c` sees it. */
bool agreeInC(const Parts &source, const Parts &target);

/** A message of which every conversion has an equal, with these; nothing if there is another one. */
std::optional<std::string> messageInC(const Parts &parts);

} // namespace tool::bilingual

#endif
