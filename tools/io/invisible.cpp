#include "io/invisible.h"

#include <unicode/uchar.h>

bool tool::isInvisible(char32_t character)
{
    switch (u_charType(static_cast<UChar32>(character)))
    {
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
    case U_SURROGATE:
        return true;
    default:
        return false;
    }
}

bool tool::isUnassigned(char32_t character)
{
    return u_charType(static_cast<UChar32>(character)) == U_UNASSIGNED;
}
