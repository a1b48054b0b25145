/** What the checker asks the library about a file as a whole. */
#ifndef KELTO_TOOLS_CHECK_READING_LOADABLE_H
#define KELTO_TOOLS_CHECK_READING_LOADABLE_H

#include <string_view>

namespace tool::check
{

/**
 * Whether the library loads these bytes as a message file, at the cost that it allows; true also where no file for it
 * can be made.
 */
bool mayBeLoaded(std::string_view bytes);

/** Whether these bytes are what KTCompileMessages() makes, which people may take for a message file. */
bool isCompiled(std::string_view bytes);

} // namespace tool::check

#endif
