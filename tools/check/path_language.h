/** The language that the place of a file promises: the name of its folder, or the end of its own name. */
#ifndef KELTO_TOOLS_CHECK_PATH_LANGUAGE_H
#define KELTO_TOOLS_CHECK_PATH_LANGUAGE_H

#include <string>
#include <string_view>

namespace tool::check
{

/** The language that a path names, as "fr" in "fr/store.xlf", "pt-BR" in "store.pt-BR.xlf"; empty if there is none. */
std::string languageInPath(std::string_view path);

} // namespace tool::check

#endif
