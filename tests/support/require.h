/**
 * How checks that tests and fuzz targets share state a property: one that does not hold ends the process, and a fuzzer
 * keeps the input.
 */
#ifndef KELTO_TESTS_SUPPORT_REQUIRE_H
#define KELTO_TESTS_SUPPORT_REQUIRE_H

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
