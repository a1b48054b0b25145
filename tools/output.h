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
 * A text in a charset. On a terminal '?' stands for a character that the charset cannot show, since the substitution
 * characters of many charsets are control characters.
 */
std::u16string forOutput(const std::string &charset, const std::u16string &text);

/** A text of the program, UTF-8, in the charset of the terminal. */
void printText(const std::string &text);

/** Hands what was printed to the system. */
void flushOutput();

/** A whole file, or standard input for "-"; throws for 2 GiB and more. */
std::string readWhole(const std::string &path);

/**
 * A whole message file. A FIFO and a device are refused, as by the library, since their bytes may never come; a path as
 * /dev/fd/63, which a shell passes, is read.
 */
std::string readMessageFile(const std::string &path);

/** Writes a whole file; where that fails, the file stays what it was (output_file.h). */
void writeFile(const std::string &path, std::string_view bytes);

/** Throws where an output is a regular file that is an input too, "-" among them, which it would replace. */
void requireOtherFile(const std::string &output, const std::vector<std::string> &inputs);

/** Whether both are one file, by whatever names; "-" is standard input. */
bool isSameFile(const std::string &a, const std::string &b);

/** How diagnostics name such an input. */
std::string inputName(const std::string &path);

} // namespace tool

#endif
