/**
 * Where bytes of the program go: standard output, whose every failure is a Failure (a full disk, a reader that left),
 * and whole files.
 */
#ifndef KELTO_TOOLS_OUTPUT_H
#define KELTO_TOOLS_OUTPUT_H

#include <string>
#include <string_view>

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

/** Writes a whole file; where that fails, the file stays what it was (output_file.h). */
void writeFile(const std::string &path, std::string_view bytes);

} // namespace tool

#endif
