/**
 * Whole bytes in and out: standard output whose every failure is a Failure (a full disk, a reader that left), and whole
 * inputs.
 */
#ifndef KELTO_TOOLS_OUTPUT_H
#define KELTO_TOOLS_OUTPUT_H

#include <string>
#include <string_view>
#include <vector>

namespace tool
{

void print(std::string_view bytes);

/**
 * A text as it is then written in a charset: as it is, but for a terminal with '?' for what the charset cannot show,
 * since the substitution characters of many charsets are control characters.
 */
std::u16string forOutput(const std::string &charset, const std::u16string &text);

/** A text of the program, UTF-8, in the charset of the terminal. */
void printText(const std::string &text);

/** Hands what was printed to the system. */
void flushOutput();

/** A whole file, or standard input for "-"; throws for 2 GiB and more. */
std::string readWhole(const std::string &path);

/**
 * The same of a message file, which is no FIFO and no device: as the library, it does not wait for what may never come.
 * What a shell passes as /dev/fd/63 is read.
 */
std::string readMessageFile(const std::string &path);

/** Writes a whole file, which stays what it was where that fails (output_file.h). */
void writeFile(const std::string &path, std::string_view bytes);

/** Throws where an output is a regular file that is an input too, "-" among them, which it would replace. */
void requireOtherFile(const std::string &output, const std::vector<std::string> &inputs);

/** Whether both are one file, by whatever names; "-" is standard input. */
bool isSameFile(const std::string &a, const std::string &b);

/** How diagnostics name such an input. */
std::string inputName(const std::string &path);

} // namespace tool

#endif
