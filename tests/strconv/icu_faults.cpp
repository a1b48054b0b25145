#include "strconv/icu_faults.h"

#include <dlfcn.h>
#include <unicode/ucnv.h>

// ICU's names carry its version; these give the name that the library calls.
#define TEXT_OF(name) #name
#define EXPANDED_TEXT_OF(name) TEXT_OF(name)

IcuFaults icuFaults;

namespace
{

bool isDue(int &countdown)
{
    return countdown > 0 && --countdown == 0;
}

} // namespace

extern "C" UConverter *ucnv_open(const char *name, UErrorCode *status)
{
    static const auto real = reinterpret_cast<decltype(&ucnv_open)>(dlsym(RTLD_NEXT, EXPANDED_TEXT_OF(ucnv_open)));
    if (!isDue(icuFaults.openFails))
        return real(name, status);
    *status = injectedStatus;
    return nullptr;
}

extern "C" int32_t ucnv_toUChars(UConverter *converter, UChar *dest, int32_t capacity, const char *src, int32_t length,
                                 UErrorCode *status)
{
    static const auto real =
        reinterpret_cast<decltype(&ucnv_toUChars)>(dlsym(RTLD_NEXT, EXPANDED_TEXT_OF(ucnv_toUChars)));
    if (!isDue(icuFaults.convertFails))
        return real(converter, dest, capacity, src, length, status);
    *status = injectedStatus;
    return 0;
}
