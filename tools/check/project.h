/**
 * The file in which a project says once what is checked and how: "kelto-check.toml".
 *
 *   reference = "messages/en"
 *   files = ["messages/de", "messages/fr"]
 *
 *   [rules]
 *   end-punctuation = "off"
 */
#ifndef KELTO_TOOLS_CHECK_PROJECT_H
#define KELTO_TOOLS_CHECK_PROJECT_H

#include "check/rules.h"

#include <string>
#include <vector>

namespace tool::check
{

constexpr const char *projectFileName = "kelto-check.toml";

struct Project
{
    std::string reference; // a path from where the program runs, like all of them
    std::string baseline;
    std::vector<std::string> files;
    std::vector<std::string> forms;
    std::string complete;
    std::string limit;
    std::string isRaw; // "true" or "false"
};

/** Reads the file, and applies its severities. Throws where a key or a value is not known. */
Project readProject(const std::string &path, Levels &levels);

} // namespace tool::check

#endif
