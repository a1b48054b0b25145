/** What the checker asks the library about a file as a whole. */
#ifndef KELTO_TOOLS_CHECK_LIBRARY_H
#define KELTO_TOOLS_CHECK_LIBRARY_H

#include <string_view>

namespace tool::check
{

/** Whether the library takes these bytes for a message file that costs no more than it allows; also where it is not known. */
bool libraryLoads(std::string_view bytes);

/** Whether these bytes are what KTCompileMessages() makes, which people may take for a message file. */
bool isCompiled(std::string_view bytes);

} // namespace tool::check

#endif
