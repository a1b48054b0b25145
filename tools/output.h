/**
 * Whole bytes in and out: standard output whose every failure is a Failure (a full disk, a reader that left), and whole
 * inputs.
 */
#ifndef KELTO_TOOLS_OUTPUT_H
#define KELTO_TOOLS_OUTPUT_H

#include <string>
#include <string_view>

namespace tool
{

void print(std::string_view bytes);

/** Hands what was printed to the system. */
void flushOutput();

/** A whole file, or standard input for "-"; throws for 2 GiB and more. */
std::string readWhole(const std::string &path);

/** How diagnostics name such an input. */
std::string inputName(const std::string &path);

} // namespace tool

#endif
