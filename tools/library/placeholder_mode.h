/** How a message file is loaded: what becomes of its placeholders. */
#ifndef KELTO_TOOLS_PLACEHOLDER_MODE_H
#define KELTO_TOOLS_PLACEHOLDER_MODE_H

namespace tool
{

enum class Placeholders
{
    positioned, // for formatting, as KTLoadMessages() makes them: "%s[1]"
    raw         // as the file has them, and KTLoadRawMessages() leaves them: "%s"
};

} // namespace tool

#endif
