/**
 * Which files are checked, and each with which: folders stand for the message files in them, and where the reference is
 * a folder too, a file is compared with the one that has the same path in there.
 */
#ifndef KELTO_TOOLS_CHECK_INPUTS_H
#define KELTO_TOOLS_CHECK_INPUTS_H

#include <cstddef>
#include <string>
#include <vector>

namespace tool::check
{

struct Input
{
    static constexpr size_t none = static_cast<size_t>(-1);

    std::string path;
    size_t reference; // of the list below, or none
};

struct Inputs
{
    std::vector<std::string> references;
    std::vector<Input> files;
    bool isReferenceChecked = false; // the reference is among the files too
    std::vector<Input> missing;      // files that a folder lacks, and the references that they would be translations of
};

/** @param reference  a file or folder, or empty. */
Inputs collectInputs(const std::vector<std::string> &operands, const std::string &reference);

} // namespace tool::check

#endif
