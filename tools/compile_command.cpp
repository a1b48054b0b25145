#include "command_line.h"
#include "message_file.h"
#include "output.h"
#include "terminal.h"
#include "text.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace tool
{
namespace
{

/** Writes a file as a whole: where that fails, what was written of it is taken away again, but never a device. */
void writeWhole(const std::string &path, const std::string &bytes)
{
    std::FILE *const file = std::fopen(path.c_str(), "we");
    if (file == nullptr)
        throw Failure(terminal().showBytes(path) + ": " + systemText(errno));
    const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    const int writeError = errno;
    if (std::fclose(file) == 0 && isWritten)
        return;
    const int error = isWritten ? errno : writeError;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored))
        std::filesystem::remove(path, ignored);
    throw Failure(terminal().showBytes(path) + ": " + systemText(error));
}

ExitStatus run(CommandLine &line)
{
    std::string output;
    bool raw = false;
    line.option("-o,--output", "OUT", output, "The catalog to write; '-' is standard output");
    line.flag("-r,--raw", raw, "Placeholders without positions: for showing, not for formatting");
    const std::string input = line.onlyFile();
    if (output.empty())
        throw line.misuse(say(Text::optionMissing, {"--output"}));
    requireOtherFile(output, {input});
    const MessageFile file(input, raw ? MessageFile::Placeholders::raw : MessageFile::Placeholders::positioned);
    const std::string catalog = file.compiled();
    if (output == "-")
        print(catalog);
    else
        writeWhole(output, catalog);
    return ExitStatus::done;
}

constexpr const char *details = R"(Programs load a compiled catalog by KTLoadCompiledMessages, about a thousand times
faster than a message file; the other subcommands read it too. The same messages
give the same bytes. For FILE '-' is standard input.

Example:
  kelto compile de.xlf -o de.ktc
)";

} // namespace

const Subcommand compileSubcommand = {"compile", "[-r] FILE -o OUT", "Compile a message file", details, run};

} // namespace tool
