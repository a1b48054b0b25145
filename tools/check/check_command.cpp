// `kelto check`: its options, and the exit status.

#include "check/inputs.h"
#include "check/project.h"
#include "check/session.h"
#include "check/telling/baseline.h"
#include "check/telling/writers.h"
#include "command_line.h"
#include "io/input.h"
#include "io/output.h"
#include "io/output_file.h"
#include "io/terminal.h"
#include "text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fmt/core.h>
#include <optional>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tool
{
namespace
{

using namespace check;

struct Options
{
    std::string reference;
    std::string format = "text";
    std::string output;
    std::string colour = "auto";
    std::string stdinName = "<stdin>";
    std::string jobs;
    std::string explained;
    std::string project;
    std::string complete;
    std::string baseline;
    std::string limit;
    Words warnings;
    Words forms;
    bool isRaw = false;
    bool isQuiet = false;
    bool listsRules = false;
    bool updatesBaseline = false;
};

/** The document on its way out: to standard output, or to a file. */
class Output
{
public:
    explicit Output(const std::string &path)
    {
        if (!path.empty())
            m_file.emplace(path);
    }

    void operator()(std::string_view text)
    {
        if (m_file)
            m_file->write(text);
        else
            print(text);
    }

    void finish()
    {
        if (m_file)
            m_file->finish();
    }

private:
    std::optional<OutputFile> m_file;
};

bool wantsColour(const CommandLine &line, const Options &options)
{
    if (options.colour != "auto" && options.colour != "always" && options.colour != "never")
        throw line.misuse(say(Text::badColour, {terminal().quote(options.colour)}));
    if (options.colour != "auto")
        return options.colour == "always";
    return options.output.empty() && Terminal::showsColors(STDOUT_FILENO);
}

ExitStatus explain(const CommandLine &line, const Options &options, const Words &files)
{
    if (!files.empty())
        throw line.misuse(
            say(Text::surplusWord, {terminal().quote(files[0]), options.listsRules ? "--list-rules" : "--explain"}));
    if (options.listsRules)
    {
        printText(listOfRules());
        return ExitStatus::done;
    }
    const std::optional<Rule> rule = findRule(options.explained);
    if (!rule)
        throw line.misuse(say(Text::noRuleNamed, {terminal().quote(options.explained)}));
    printText(pageOf(*rule));
    return ExitStatus::done;
}

/** A number from an option or the project file. */
unsigned numberOf(const CommandLine &line, const std::string &word, unsigned least, unsigned most, const Phrase &fault)
{
    constexpr size_t longest = 9;
    const bool isNumber =
        !word.empty() && word.size() <= longest && word.find_first_not_of("0123456789") == std::string::npos;
    const unsigned long number = isNumber ? std::strtoul(word.c_str(), nullptr, 10) : 0;
    if (!isNumber || number < least || number > most)
        throw line.misuse(say(fault));
    return static_cast<unsigned>(number);
}

size_t jobsOf(const CommandLine &line, const std::string &jobs)
{
    constexpr unsigned most = 256;
    if (jobs.empty())
        return std::max(1U, std::thread::hardware_concurrency());
    return numberOf(line, jobs, 1, most, {Text::badJobs, {most, terminal().quote(jobs)}});
}

/** Takes a setting of the project file where the command line says nothing. */
void fillFrom(const Project &project, Options &options, Words &files)
{
    for (const auto &[option, value] :
         {std::pair(&options.reference, &project.reference), std::pair(&options.baseline, &project.baseline),
          std::pair(&options.complete, &project.complete), std::pair(&options.limit, &project.limit)})
        if (option->empty())
            *option = *value;
    options.forms.insert(options.forms.end(), project.forms.begin(), project.forms.end());
    options.isRaw = options.isRaw || project.isRaw == "true";
    if (files.empty())
        files = project.files;
}

/** Reads the project file that is named, or, where no files are, the one of this folder if there is one. */
void takeProject(Options &options, Words &files, Levels &levels)
{
    std::error_code error;
    if (options.project.empty() && files.empty() && std::filesystem::exists(projectFileName, error))
        options.project = projectFileName;
    if (!options.project.empty())
        fillFrom(readProject(options.project, levels), options, files);
}

ExitStatus checkAll(const CommandLine &line, const Options &options, const Inputs &inputs, Setting &setting)
{
    const size_t jobs = jobsOf(line, options.jobs);
    WriterOptions writing;
    writing.isColoured = wantsColour(line, options);
    writing.isQuiet = options.isQuiet;
    writing.reference = options.reference == "-" ? options.stdinName : options.reference;
    writing.levels = &setting.levels;
    Words paths = inputs.references;
    for (const Input &input : inputs.files)
        paths.push_back(input.path);
    requireOtherFile(options.output, paths);
    requireOtherFile(options.baseline, paths);
    std::optional<Baseline> baseline;
    std::optional<BaselineWriter> known;
    if (options.updatesBaseline)
        known.emplace();
    else if (!options.baseline.empty())
        baseline.emplace(readWhole(options.baseline));
    setting.baseline = baseline ? &*baseline : nullptr;
    setting.known = known ? &*known : nullptr;
    std::optional<Output> output; // opened when the references are read: a failure before leaves the file alone
    const Sink sink = [&output](std::string_view text) { (*output)(text); };
    const std::unique_ptr<Writer> writer = makeWriter(options.format, sink, writing);
    if (writer == nullptr)
        throw line.misuse(say(Text::badForm, {terminal().quote(options.format)}));

    const References references(inputs.references, setting);
    output.emplace(options.output);
    const ExitStatus status = checkInputs(inputs, references, setting, *writer, jobs);
    output->finish();
    if (known)
        writeFile(options.baseline, known->text());
    return status;
}

ExitStatus run(CommandLine &line)
{
    Options options;
    line.option("-r,--reference", "FILE", options.reference, "Compare with the messages of this file, or folder");
    line.option("--project", "FILE", options.project,
                "Read files and options from FILE; kelto-check.toml if no FILE is given");
    line.option("--complete", "PERCENT", options.complete,
                "Ask for so much of the reference, in place of a line for each message that is missing");
    line.option("--baseline", "FILE", options.baseline, "Do not tell the findings that are listed in FILE");
    line.flag("--update-baseline", options.updatesBaseline, "Write all findings into the baseline instead");
    line.option("--limit", "N", options.limit, "Findings to tell of a file at most, 1000 if not given; 0 for all");
    line.option("--format", "FORM", options.format, "text (the default), json, sarif or github");
    line.option("-o,--output", "FILE", options.output, "Write the findings to a file; '-' is standard output");
    line.options("-W", "RULE", options.warnings,
                 "Report a rule; no-RULE: do not; error, error=RULE: warnings, or this one, count as errors; "
                 "no-error, no-error=RULE: or do not");
    line.option("--color", "WHEN", options.colour, "auto (the default), always or never");
    line.flag("--raw", options.isRaw, "The messages are fetched and never formatted: conversions are not checked");
    line.options("--form", "NAME=TYPE[,TYPE...]", options.forms,
                 "A conversion of the program's own and its arguments: char, utf8, ucs2, int, uint, double, pointer");
    line.option("-j,--jobs", "N", options.jobs, "Files to check at once; as many as there are processors");
    line.option("--stdin-filename", "NAME", options.stdinName, "What to call standard input, the file '-'");
    line.flag("-q,--quiet", options.isQuiet, "No summary");
    line.flag("--list-rules", options.listsRules, "List the rules and end");
    line.option("--explain", "RULE", options.explained, "Explain a rule and end");
    Words files = line.operands();
    if (options.output == "-")
        options.output.clear();
    if (options.listsRules || !options.explained.empty())
        return explain(line, options, files);
    Setting setting;
    takeProject(options, files, setting.levels);
    for (const std::string &warning : options.warnings)
        if (const std::string fault = setting.levels.apply(warning); !fault.empty())
            throw line.misuse(fmt::format("-W{}: {}", terminal().showBytes(warning), fault));
    FormTable forms;
    for (const std::string &form : options.forms)
        if (const std::string fault = forms.add(form); !fault.empty())
            throw line.misuse(fmt::format("--form {}: {}", terminal().showBytes(form), fault));
    setting.table = options.isRaw ? nullptr : forms.get();
    setting.placeholders = options.isRaw ? Placeholders::raw : Placeholders::positioned;
    setting.stdinName = options.stdinName;
    constexpr unsigned most = 999999999;
    if (!options.complete.empty())
        setting.complete =
            numberOf(line, options.complete, 1, 100, {Text::badPercent, {terminal().quote(options.complete)}});
    if (!options.limit.empty())
        setting.limit = numberOf(line, options.limit, 0, most, {Text::badLimit, {terminal().quote(options.limit)}});
    if (setting.limit == 0)
        setting.limit = noLimit;
    if (options.updatesBaseline && options.baseline.empty())
        throw line.misuse(say(Text::updateNeedsBaseline));
    if (files.empty())
        throw line.misuse(say(Text::noFile));
    if (std::count(files.begin(), files.end(), "-") + (options.reference == "-" ? 1 : 0) > 1)
        throw line.misuse(say(Text::standardInputTwice));
    return checkAll(line, options, collectInputs(files, options.reference), setting);
}

constexpr const char *details = R"(Reports what keeps FILE from loading, what keeps its messages from being
formatted, and with -r where they ask for other arguments than those of the
reference, each with its line and column. A FILE that is a folder stands for the
message files in it, '-' for standard input. Without FILE the project file
kelto-check.toml says what to check. The exit status is 0 where there are no
errors, 1 where there are.

Example:
  kelto check -r en.xlf de.xlf fr.xlf
)";

} // namespace

const Subcommand checkSubcommand = {"check", "[OPTION...] [-r FILE] [FILE...]",
                                    "Check message files, and compare them with another", details, run};

} // namespace tool
