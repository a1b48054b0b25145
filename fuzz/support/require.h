/** How the fuzz targets state a property: an input that breaks one ends the process, and the fuzzer keeps the input. */
#ifndef KELTO_FUZZ_REQUIRE_H
#define KELTO_FUZZ_REQUIRE_H

#include <cstdio>
#include <cstdlib>

inline void require(bool holds, const char *property)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken property: %s\n", property);
    std::abort();
}

#endif
