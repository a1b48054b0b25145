// A program that defines ZEL_malloc and ZEL_free has its own called for every block of the library, and sees its
// refusal answered.

#include "check.h"
#include "kelto.h"

#include <cstdlib>

namespace
{

unsigned taken, freed;
bool refuse;

} // namespace

extern "C" void *ZEL_malloc(void *, unsigned long size)
{
    if (refuse)
        return nullptr;
    ++taken;
    return std::malloc(size);
}

extern "C" int ZEL_free(void *block)
{
    freed += block != nullptr ? 1 : 0;
    std::free(block);
    return 0;
}

int main()
{
    CHECK(KTInit() == 0);
    CHECK(taken == 1); // the sentinel of the list of tables

    char format[] = "%s[1]";
    UCS2 text[10];
    unsigned long units = 10;
    CHECK(KTFormatString(nullptr, false, &units, text, format, "abc") == 0);
    CHECK(units == 3 && taken == 1 + 5); // the format, its parameters, the slots, the argument's copy, its UCS-2 form
    CHECK(freed == 5);

    refuse = true;
    units = 10;
    CHECK(KTFormatString(nullptr, false, &units, text, format, "abc") == KT_ERR_NO_MEMORY);
    CHECK(units == 10);
    formTable *table = nullptr;
    CHECK(KTGetBuiltInFormTable(1, &table) == KT_ERR_NO_MEMORY);
    refuse = false;

    CHECK(KTClean() == 0);
    CHECK(freed == taken);
    refuse = true;
    CHECK(KTInit() == KT_ERR_NOT_INITIALIZED);
    return 0;
}
