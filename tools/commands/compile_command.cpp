// `kelto compile`: a message file as a compiled catalog.

#include "command_line.h"
#include "io/input.h"
#include "io/output.h"
#include "library/message_file.h"
#include "text.h"

namespace tool
{
namespace
{

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
    const MessageFile file(input, raw ? Placeholders::raw : Placeholders::positioned);
    if (file.isCompiled())
        throw Failure(inputName(input) + ": " + say(Text::compiledCatalog));
    const std::string catalog = file.compiled();
    if (output == "-")
        print(catalog);
    else
        writeFile(output, catalog);
    return ExitStatus::done;
}

constexpr const char *details = R"(Programs load a compiled catalog by KTLoadCompiledMessages, about a thousand
times faster than a message file; the other subcommands read it too. The same
messages give the same bytes. For FILE '-' is standard input.

Example:
  kelto compile de.xlf -o de.ktc
)";

} // namespace

const Subcommand compileSubcommand = {"compile", "[-r] FILE -o OUT", "Compile a message file", details, run};

} // namespace tool
