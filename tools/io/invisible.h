/** Characters that nobody sees, by their category. Whoever shows a text decides which of them to keep. */
#ifndef KELTO_TOOLS_INVISIBLE_H
#define KELTO_TOOLS_INVISIBLE_H

namespace tool
{

/** Controls, format characters (which hide, join or change the order of reading), separators of lines, surrogates. */
bool isInvisible(char32_t character);

/** Whether Unicode has not assigned a character, so that nobody knows how it is shown. */
bool isUnassigned(char32_t character);

/** ZERO WIDTH NON-JOINER and ZERO WIDTH JOINER, which spelling needs. */
constexpr bool isJoiner(char32_t character)
{
    return character == 0x200C || character == 0x200D;
}

} // namespace tool

#endif
