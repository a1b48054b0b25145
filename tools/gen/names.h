/** The names of messages in a generated header: the attribute "resname" of a unit, or "message_3" where it has none. */
#ifndef KELTO_TOOLS_GEN_NAMES_H
#define KELTO_TOOLS_GEN_NAMES_H

#include "check/reading/parsed_file.h"
#include "text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool::gen
{

/** Why this cannot be the name of a function, as "%s[1] is a word of the language"; nothing where it can. */
std::optional<Text> faultOfName(std::string_view name);

/** In capital letters, as constants are written. */
std::string inCapitals(std::string_view name);

/** Beside the constant for the number of a message, the one for its text. */
std::string textConstant(std::string_view constant);

/** The beginning of the names of all constants in a namespace of this name. */
std::string prefixOf(std::string_view nameSpace);

/** The names of the messages of a file, in their order; the faults of names are appended to `findings`. */
std::vector<std::string> namesOf(const check::ParsedFile &parsed, std::string_view nameSpace,
                                 check::Findings &findings);

} // namespace tool::gen

#endif
