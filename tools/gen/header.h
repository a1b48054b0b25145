/**
 * A message file as a header: constants, and a function per message for C++ and for C, each with the text of the source
 * as a literal.
 */
#ifndef KELTO_TOOLS_GEN_HEADER_H
#define KELTO_TOOLS_GEN_HEADER_H

#include "check/reading/parsed_file.h"
#include "check/texts/formats.h"

#include <string>
#include <vector>

namespace tool::gen
{

struct HeaderOptions
{
    std::string fileName;  // of the header; its guard is made of it
    std::string nameSpace; // of the functions; also the beginning of the constants
    std::string catalogName;
};

/**
 * The text of the header.
 * @param names  of the messages, in their order.
 * @param table  the conversions that are known.
 */
std::string headerOf(const check::ParsedFile &parsed, const std::vector<std::string> &names, formTable *table,
                     const HeaderOptions &options);

} // namespace tool::gen

#endif
