/** A file of settings: keys with values, in sections, as TOML writes them. */
#ifndef KELTO_TOOLS_SETTINGS_FILE_H
#define KELTO_TOOLS_SETTINGS_FILE_H

#include <string>
#include <vector>

namespace tool
{

struct SettingItem
{
    std::string section; // empty in front of the first
    std::string key;
    std::vector<std::string> values;
};

/** In the order of the file; throws where it cannot be read. */
std::vector<SettingItem> readSettings(const std::string &path);

} // namespace tool

#endif
