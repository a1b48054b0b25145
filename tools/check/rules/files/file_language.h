/**
 * The language that a file names: it is the one that the place of the file promises, by the name of its folder or the
 * end of its own name, and not the one of the reference.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_FILES_FILE_LANGUAGE_H
#define KELTO_TOOLS_CHECK_RULES_FILES_FILE_LANGUAGE_H

#include "check/reading/parsed_file.h"

#include <string>
#include <string_view>

namespace tool::check
{

/** The language that a path names, as "fr" in "fr/store.xlf", "pt-BR" in "store.pt-BR.xlf"; empty if there is none. */
std::string languageInPath(std::string_view path);

/** @param reference  null where there is none. */
void checkLanguage(const ParsedFile &parsed, const ParsedFile *reference, Findings &findings);

} // namespace tool::check

#endif
