/**
 * The user's terminal: its charset, and how text from files and command lines is shown on it. What could move the
 * cursor, change the order of reading or be invisible, and what the charset cannot show, appears as an escape: \n, \t,
 * \u001B.
 */
#ifndef KELTO_TOOLS_TERMINAL_H
#define KELTO_TOOLS_TERMINAL_H

#include "io/icu.h"

#include <string>
#include <string_view>

namespace tool
{

class Terminal
{
public:
    Terminal();

    /**
     * The charset of the terminal, and of the arguments on the command line; US-ASCII where it is not known.
     */
    const std::string &charset() const { return m_charset; }

    /** The name of its charset, as the environment says. */
    const std::string &charsetName() const { return m_charsetName; }

    /** Whether what is written there is seen in colours: a terminal, and a user who did not set NO_COLOR. */
    static bool showsColors(int descriptor);

    /** The text with escapes, in UCS-2: what is left can be shown. */
    std::u16string escaped(std::u16string_view text) const;

    /** The text as bytes for the terminal. */
    std::string show(std::u16string_view text) const;

    /** A text of the program, UTF-8 and of several lines perhaps, as bytes for the terminal. */
    std::string encodedLines(const std::string &text) const;

    /** Bytes in the terminal's charset, as of a file name, in UTF-8; \xE4 for a byte that is part of no character. */
    std::string showBytes(std::string_view bytes) const;

    /** A text from a command line or a file in quotation marks, as showBytes() shows it, cut where it is long. */
    std::string quote(std::string_view bytes) const;
    std::string quote(std::u16string_view text) const;

private:
    std::u16string decoded(std::string_view bytes) const;

    std::string m_charsetName;
    std::string m_charset;
    CharacterSet m_showable;
};

/** How many columns a text without control characters takes on a terminal. */
size_t columns(std::u16string_view text);

constexpr size_t terminalColumns = 80;

/** A text in UTF-8, in lines of at most so many columns, where its words allow it. */
std::string wrapped(const std::string &text, size_t width);

/** The one terminal. */
const Terminal &terminal();

} // namespace tool

#endif
