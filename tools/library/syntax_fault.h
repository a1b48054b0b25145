/**
 * A fault of a format string as a user is shown it: what the library says of it, and the text with the place
 * underlined.
 */
#ifndef KELTO_TOOLS_SYNTAX_FAULT_H
#define KELTO_TOOLS_SYNTAX_FAULT_H

#include "library/message_file.h"

#include <string>

namespace tool
{

/** The first fault of a refused format string, UTF-8, in three lines: what and where, the text, and carets below. */
std::string describeSyntaxFault(const std::string &format, formTable *forms);

/** The fault of a message that cannot be prepared, or of one that it leads to, in the same way. */
std::string describeMessageFault(const MessageFile &file, unsigned id);

} // namespace tool

#endif
