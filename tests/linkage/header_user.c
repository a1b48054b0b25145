/* The public headers alone, as a program in C or C++ includes them. */
#include "kelto-locale.h"
#include "kelto.h"

#include "kelto-locale.h" /* twice is once */
#include "kelto.h"

int useHeader(void);

int useHeader(void)
{
    KTFormatter list[] = {{"d", 0, 1, signedIntList, formatInteger}, {0, 0, 0, 0, 0}};
    UCS2 text[] = {'a', 0};
    unsigned long units = sizeof text / sizeof text[0];
    char format[] = "%d[1]";
    return KTFormatString(0, false, &units, text, format, list[0].argCount) == KT_ERR_BUFFER_TOO_SMALL;
}
