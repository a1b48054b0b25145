/**
 * Literals of C as the documentation and the rows of the tests write them, and texts between UTF-8, in which they are
 * written, and UCS-2.
 */
#ifndef KELTO_TESTS_SUPPORT_LITERALS_H
#define KELTO_TESTS_SUPPORT_LITERALS_H

#include "kelto.h"

#include <string>

inline std::u16string toUCS2(const std::string &text)
{
    std::u16string units(text.size() + 1, u'\0');
    size_t size = units.size();
    return KTUTF8ToUCS2(text.c_str(), &size, units.data()) == 0 ? units.substr(0, size) : u"";
}

inline std::string toUTF8(const std::u16string &text)
{
    std::string bytes(3 * text.size() + 1, '\0');
    size_t size = bytes.size();
    return KTUCS2ToUTF8(text.c_str(), &size, bytes.data()) == 0 ? bytes.substr(0, size) : "";
}

/** The text that a literal stands for: "a\tb", with either quotes; anything else is returned as it is. */
inline std::string unquoted(const std::string &literal)
{
    const char quote = literal.size() < 2 ? '\0' : literal[0];
    if ((quote != '"' && quote != '\'') || literal.back() != quote)
        return literal;
    std::string text;
    for (size_t i = 1; i < literal.size() - 1; ++i)
    {
        const std::string written = "\\\"'tnr";
        const std::string meant = "\\\"'\t\n\r";
        const size_t escape = literal[i] == '\\' ? written.find(literal[i + 1]) : std::string::npos;
        if (literal.compare(i, 2, "\\x") == 0)
        {
            text += static_cast<char>(std::stoi(literal.substr(i + 2, 2), nullptr, 16));
            i += 3;
        }
        else if (escape != std::string::npos)
        {
            text += meant[escape];
            ++i;
        }
        else
            text += literal[i];
    }
    return text;
}

#endif
