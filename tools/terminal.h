/**
 * The user's terminal: its charset, and how text from files and command lines is shown on it. What could move the cursor,
 * change the order of reading or be invisible, and what the charset cannot show, appears as an escape: \n, \t, \u001B.
 */
#ifndef KELTO_TOOLS_TERMINAL_H
#define KELTO_TOOLS_TERMINAL_H

#include "icu.h"

#include <string>
#include <string_view>

namespace tool
{

class Terminal
{
public:
    Terminal();

    /** The name of its charset, as the environment says; arguments on the command line are written in it too. */
    const std::string &charset() const { return m_charset; }

    /** The text with escapes, in UCS-2: what is left can be shown. */
    std::u16string escaped(std::u16string_view text) const;

    /** An escaped text in the terminal's charset. */
    std::string encoded(const std::u16string &escapedText) const;

    std::string show(std::u16string_view text) const { return encoded(escaped(text)); }

    /** Bytes in the terminal's charset, as of a file name; bytes that are none of its characters appear as \xE4. */
    std::string showBytes(std::string_view bytes) const;

    /** A text from a command line or file between quotation marks, cut where it is long. */
    std::string quote(std::string_view bytes) const;
    std::string quote(std::u16string_view text) const;

private:
    std::u16string decoded(std::string_view bytes) const;

    std::string m_charset;
    std::string m_shownCharset; // the same, or US-ASCII where nobody knows it
    CharacterSet m_showable;
};

/** How many columns a text without control characters takes on a terminal. */
size_t columns(std::u16string_view text);

/** The one terminal; the library must be started. */
const Terminal &terminal();

} // namespace tool

#endif
