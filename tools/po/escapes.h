/**
 * Texts in the document: backslashes, tabs and line ends as escapes, the characters of XML as references, and control
 * characters, which XML cannot hold, as U+FFFD.
 */
#ifndef KELTO_TOOLS_PO_ESCAPES_H
#define KELTO_TOOLS_PO_ESCAPES_H

#include <string>
#include <string_view>

namespace po
{

/**
 * A text as the document has it.
 * @param hasControls  becomes true where a character was none of XML; U+FFFD stands for such a character.
 */
std::string escaped(std::string_view text, bool &hasControls);

/** The text that the escapes of the document stand for. */
std::string unescaped(const std::string &text);

} // namespace po

#endif
