/** Conversion specifications made of their parts, for tests that go through all of them. */
#ifndef KELTO_TESTS_FORMAT_SPECIFICATION_H
#define KELTO_TESTS_FORMAT_SPECIFICATION_H

#include "kelto.h"

#include <string>

constexpr int allFlagCharacters = FLAG_MINUS | FLAG_PLUS | FLAG_SPACE | FLAG_HASH | FLAG_ZERO;

/** '%', flag characters, width and precision, where these are not negative. */
inline std::string specificationStart(int flags, int width, int precision)
{
    std::string text = "%";
    for (const auto &[flag, character] :
         {std::pair{FLAG_MINUS, '-'}, {FLAG_PLUS, '+'}, {FLAG_SPACE, ' '}, {FLAG_HASH, '#'}, {FLAG_ZERO, '0'}})
        if ((flags & flag) != 0)
            text += character;
    if (width >= 0)
        text += std::to_string(width);
    if (precision >= 0)
        text += "." + std::to_string(precision);
    return text;
}

#endif
