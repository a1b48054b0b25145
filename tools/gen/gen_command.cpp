// `kelto gen`: its options, and when the header is written.

#include "check/file_check.h"
#include "check/telling/writers.h"
#include "command_line.h"
#include "gen/header.h"
#include "gen/names.h"
#include "io/input.h"
#include "io/output.h"
#include "io/terminal.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <fmt/core.h>
#include <unistd.h>

namespace tool
{
namespace
{

using namespace check;

/** A path as a rule of make has it. */
std::string inMake(const std::string &path)
{
    std::string escaped;
    for (const char byte : path)
    {
        if (byte == ' ' || byte == '#' || byte == '\\')
            escaped += '\\';
        escaped += byte == '$' ? "$$" : std::string(1, byte);
    }
    return escaped;
}

/** Tells the errors of a message file; how many there are. */
size_t tellErrors(Findings findings, ParsedFile &parsed)
{
    const std::unique_ptr<Writer> writer =
        textWriter([](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); },
                   {Terminal::showsColors(STDERR_FILENO), true, "", nullptr});
    size_t errors = 0;
    const std::vector<Diagnostic> diagnostics = report(std::move(findings), parsed.source(), nullptr, Levels());
    for (const Diagnostic &diagnostic : diagnostics)
        if (diagnostic.severity == Severity::error)
        {
            writer->write(diagnostic);
            ++errors;
        }
    return errors;
}

ExitStatus run(CommandLine &line)
{
    std::string output;
    std::string nameSpace = "messages";
    std::string depfile;
    Words formWords;
    line.option("-o,--output", "FILE", output, "The header to write; '-' is standard output");
    line.option("--namespace", "NAME", nameSpace,
                "The namespace of the functions, with which the constants begin too; \"messages\" if not given");
    line.option("--depfile", "FILE", depfile, "Write a rule of make that says what the header is made of");
    line.options("--form", "NAME=TYPE[,TYPE...]", formWords,
                 "A conversion of the program's own and its arguments: char, utf8, ucs2, int, uint, double, pointer");
    const std::string input = line.onlyFile();
    if (output.empty())
        throw line.misuse(say(Text::optionMissing, {"--output"}));
    if (const std::optional<Text> fault = gen::faultOfName(nameSpace))
        throw line.misuse(say(*fault, {terminal().quote(nameSpace)}));
    FormTable forms;
    for (const std::string &form : formWords)
        if (const std::string fault = forms.add(form); !fault.empty())
            throw line.misuse(fmt::format("--form {}: {}", terminal().showBytes(form), fault));

    requireOtherFile(output, {input});
    requireOtherFile(depfile == "-" ? "./-" : depfile, {input});
    const std::string name = input == "-" ? "<stdin>" : input;
    ParsedFile parsed(SourceText(name, readMessageFile(input)), Placeholders::positioned);
    Findings findings = parsed.findings();
    const Findings others = checkMessages(parsed, forms.get(), nullptr);
    findings.insert(findings.end(), others.begin(), others.end());
    const std::vector<std::string> names = gen::namesOf(parsed, nameSpace, findings);
    if (tellErrors(std::move(findings), parsed) > 0)
        return ExitStatus::negative;
    const size_t slash = name.rfind('/') + 1; // 0 where there is none
    const std::string header = gen::headerOf(
        parsed, names, forms.get(), {output == "-" ? nameSpace + ".hpp" : output, nameSpace, name.substr(slash)});
    if (output == "-")
        print(header);
    else
        writeFile(output, header);
    if (!depfile.empty())
        writeFile(depfile, fmt::format("{}: {}\n", inMake(output), inMake(input)));
    return ExitStatus::done;
}

constexpr const char *details = R"(Writes a header with a function for each message of FILE, for C++ and for C, and
constants for both. The name of a message is the attribute "resname" of its
unit, or else "message_" with its number. Where FILE has errors, they are told
as by `kelto check`, nothing is written, and the exit status is 1.

Example:
  kelto gen en.xlf -o store_messages.hpp
)";

} // namespace

const Subcommand genSubcommand = {"gen", "[OPTION...] FILE -o HEADER", "Make a header of the messages of a file",
                                  details, run};

} // namespace tool
