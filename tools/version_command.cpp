#include "charset.h"
#include "command_line.h"
#include "kelto.h"
#include "message_file.h"
#include "output.h"
#include "terminal.h"

#include <fmt/core.h>

namespace tool
{
namespace
{

constexpr size_t versionRoom = 20;

std::string versionOf(const std::string &file)
{
    std::string path = file; // the library takes it without const
    char version[versionRoom];
    const int result = KTGetMsgFileVer(path.data(), version);
    if (result != 0)
        throw fileFailure(path, result);
    return terminal().show(ucs2FromUtf8(version));
}

} // namespace

ExitStatus versionCommand(CommandLine &line)
{
    const Words files = line.files();
    return forEachFile(files, [&](const std::string &file) {
        const std::string version = versionOf(file);
        print(files.size() == 1 ? version + "\n" : fmt::format("{}: {}\n", terminal().showBytes(file), version));
    });
}

} // namespace tool
