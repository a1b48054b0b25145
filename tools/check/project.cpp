#include "check/project.h"

#include "failure.h"
#include "io/terminal.h"
#include "settings_file.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::check
{
namespace
{

/** A key in front of the sections. */
struct Key
{
    const char *name;
    std::string Project::*value;
    std::vector<std::string> Project::*list;
    bool isPath;
};
constexpr Key keys[] = {
    {"reference", &Project::reference, nullptr, true}, {"baseline", &Project::baseline, nullptr, true},
    {"files", nullptr, &Project::files, true},         {"form", nullptr, &Project::forms, false},
    {"complete", &Project::complete, nullptr, false},  {"limit", &Project::limit, nullptr, false},
    {"raw", &Project::isRaw, nullptr, false},
};

/** A path in a file, from where the program runs. */
std::string fromHere(const std::string &project, const std::string &file)
{
    return file.empty() || file[0] == '/' ? file : project.substr(0, project.rfind('/') + 1) + file;
}

/** What is wrong with a setting; empty where nothing is. */
std::string apply(const SettingItem &item, const std::string &path, Project &project, Levels &levels)
{
    if (item.section == "rules")
        return levels.set(item.key, item.values.size() == 1 ? item.values[0] : "");
    const auto *const key =
        std::find_if(std::begin(keys), std::end(keys), [&item](const Key &row) { return item.key == row.name; });
    if (key == std::end(keys) || !item.section.empty())
        return say(Text::noSetting);
    if (key->list == nullptr && item.values.size() != 1)
        return say(Text::oneValueOnly);
    std::vector<std::string> values = item.values;
    for (std::string &value : values)
        value = key->isPath ? fromHere(path, value) : value;
    if (key->list == nullptr)
        project.*(key->value) = values[0];
    else
        project.*(key->list) = std::move(values);
    return "";
}

} // namespace

Project readProject(const std::string &path, Levels &levels)
{
    Project project;
    for (const SettingItem &item : readSettings(path))
        if (const std::string fault = apply(item, path, project, levels); !fault.empty())
            throw Failure(fmt::format("{}: {}: {}", terminal().showBytes(path), terminal().quote(item.key), fault));
    if (!project.isRaw.empty() && project.isRaw != "true" && project.isRaw != "false")
        throw Failure(fmt::format("{}: 'raw': {}", terminal().showBytes(path), say(Text::trueOrFalse)));
    return project;
}

} // namespace tool::check
