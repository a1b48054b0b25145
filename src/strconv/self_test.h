/**
 * A demonstration that character sets work on this machine: one text, converted once by ICU and once by this library,
 * printed on the standard output.
 */
#ifndef KELTO_STRCONV_SELF_TEST_H
#define KELTO_STRCONV_SELF_TEST_H

extern "C" {
#pragma GCC visibility push(default)

/** Prints the demonstration, or on the standard error stream what failed. */
void hello(void);

#pragma GCC visibility pop
}

#endif
