#include "settings_file.h"

#include "failure.h"
#include "io/input.h"
#include "io/terminal.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace tool
{

std::vector<SettingItem> readSettings(const std::string &path)
{
    std::istringstream stream(readWhole(path));
    std::vector<SettingItem> items;
    try
    {
        for (CLI::ConfigItem &item : CLI::ConfigTOML().from_config(stream))
            if (item.name != "++" && item.name != "--") // which mark sections
                items.push_back({CLI::detail::join(item.parents, "."), std::move(item.name), std::move(item.inputs)});
    }
    catch (const CLI::Error &error)
    {
        throw Failure(terminal().showBytes(path) + ": " + error.what());
    }
    return items;
}

} // namespace tool
