/** Where bytes come from: whole files, or standard input for "-"; every failure is a Failure. */
#ifndef KELTO_TOOLS_INPUT_H
#define KELTO_TOOLS_INPUT_H

#include <string>
#include <vector>

namespace tool
{

/** A whole file, or standard input for "-"; throws for 2 GiB and more. */
std::string readWhole(const std::string &path);

/**
 * A whole message file. A FIFO and a device are refused, as by the library, since their bytes may never come; a path as
 * /dev/fd/63, which a shell passes, is read.
 */
std::string readMessageFile(const std::string &path);

/** Whether both are one file, by whatever names; "-" is standard input. */
bool isSameFile(const std::string &a, const std::string &b);

/** Throws where an output is a regular file that is an input too, "-" among them, which it would replace. */
void requireOtherFile(const std::string &output, const std::vector<std::string> &inputs);

/** How diagnostics name such an input. */
std::string inputName(const std::string &path);

} // namespace tool

#endif
