// `kelto version`: the product version that message files name.

#include "command_line.h"
#include "io/charset.h"
#include "io/input.h"
#include "io/output.h"
#include "io/terminal.h"
#include "library/message_file.h"

namespace tool
{
namespace
{

ExitStatus run(CommandLine &line)
{
    const Words files = line.files();
    return forEachFile(files, [&](const std::string &file) {
        const std::string version = utf8(terminal().escaped(ucs2FromUtf8(productVersion(file))));
        printText((files.size() == 1 ? "" : inputName(file) + ": ") + version + "\n");
    });
}

constexpr const char *details = R"(Reads no more of a file than the version needs. For FILE '-' is standard input.

Example:
  kelto version en.xlf de.xlf
)";

} // namespace

const Subcommand versionSubcommand = {"version", "FILE...", "Print the product version of message files", details, run};

} // namespace tool
