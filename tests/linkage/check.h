/** One check in a program that must not link GoogleTest: it says what failed and ends the program. C and C++. */
#ifndef KELTO_TESTS_LINKAGE_CHECK_H
#define KELTO_TESTS_LINKAGE_CHECK_H

#include <stdio.h>
#include <stdlib.h>

#define CHECK(condition)                                                                                               \
    do                                                                                                                 \
        if (!(condition))                                                                                              \
        {                                                                                                              \
            fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #condition);                                    \
            exit(1);                                                                                                   \
        }                                                                                                              \
    while (0)

#endif
