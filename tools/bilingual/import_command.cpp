// `kelto import`: its options, and which files it reads and writes.

#include "bilingual/command.h"
#include "bilingual/findings_output.h"
#include "bilingual/forms.h"
#include "bilingual/gettext/assign.h"
#include "bilingual/gettext/po_reader.h"
#include "bilingual/import.h"
#include "bilingual/message_file_entries.h"
#include "bilingual/selectors.h"
#include "command_line.h"
#include "io/input.h"
#include "io/output.h"
#include "io/terminal.h"
#include "subcommand.h"
#include "text.h"

#include <filesystem>

namespace tool
{
namespace
{

using namespace check;
using namespace bilingual;

struct Options
{
    std::string input; // the operand
    std::string reference;
    std::string output;
    std::string language;
    std::string numbers;
    std::string format = "text";
    Words warnings;
    bool assigns = false;
    bool takesFuzzy = false;
    bool keepsGoing = false;
    bool isCheck = false;
    bool isForced = false;
    bool isQuiet = false;

    bool wantsSummary() const { return !isQuiet && format == "text" && output != "-"; }
};

/** A message file that somebody has changed since it was made holds texts that stand nowhere else. */
void refuseEdited(const std::string &output)
{
    std::error_code error;
    if (output == "-" || !std::filesystem::is_regular_file(output, error))
        return;
    if (originOf(readWhole(output)) == Origin::edited)
        throw Failure(terminal().showBytes(output) + ": " + say(Text::editedByHand));
}

void checkOptions(const CommandLine &line, const Options &options)
{
    if (!options.assigns)
        requireOption(line, "--reference", options.reference);
    if (!options.numbers.empty() && !options.assigns)
        throw line.misuse(say(Text::optionMissing, {"--assign"}));
    if (options.assigns && !options.reference.empty())
        requireOption(line, "--numbers", options.numbers);
    if (!options.isCheck)
        requireOption(line, "--output", options.output);
    requireOneStandardInput(line, {options.reference, options.input});
}

/** Declares the options, parses, and refuses what does not go together. */
Options readOptions(CommandLine &line, FormOption &forms)
{
    Options options;
    line.option("-r,--reference", "FILE", options.reference, "The message file that was translated");
    line.option("-o,--output", "OUT", options.output, "The message file to write; '-' is standard output");
    line.flag("--assign", options.assigns,
              "The input is a template of gettext, whose texts get numbers; with -r, a translation of it");
    line.option("--numbers", "FILE", options.numbers, "The file that keeps the numbers of the texts of a template");
    line.flag("--fuzzy", options.takesFuzzy, "Take translations that somebody should look at again too");
    line.flag("--keep-going", options.keepsGoing, "Write what is right, also where there are errors");
    line.flag("--check", options.isCheck, "Only tell what is wrong; write nothing");
    line.flag("--force", options.isForced, "Overwrite a message file that was edited by hand");
    line.option("--language", "NAME", options.language,
                "The language to write, of two or five characters, in place of the file's");
    line.option("--format", "FORM", options.format, "text (the default), json, sarif or github");
    line.options("-W", "RULE", options.warnings, "Report a rule, or not, or as an error, as for kelto check");
    forms.declare(line);
    line.flag("-q,--quiet", options.isQuiet, "No summary");
    options.input = line.onlyFile();
    checkOptions(line, options);
    return options;
}

/** An output is no input, and nothing that somebody has edited. */
void checkOutputs(const Options &options)
{
    if (options.isCheck)
        return;
    requireOtherFile(options.output, {options.reference, options.input, options.numbers});
    if (options.assigns)
        requireOtherFile(options.numbers, {options.reference, options.input});
    if (!options.isForced)
        refuseEdited(options.output);
}

/** Makes the reference of a template of gettext. */
ExitStatus makeReference(const Options &options, formTable *table, const Levels &levels, FindingsOutput &findingsOutput)
{
    std::error_code error;
    const bool hasNumbers = !options.numbers.empty() && std::filesystem::exists(options.numbers, error);
    NumbersFile numbers = hasNumbers ? NumbersFile(options.numbers) : NumbersFile();
    Assigned assigned = assignNumbers(readGettext(readSource(options.input)), numbers,
                                      options.language.empty() ? "en" : options.language, table, levels);
    findingsOutput.tell(assigned.diagnostics);
    findingsOutput.finish(1);
    if (!options.isCheck && (findingsOutput.errors() == 0 || options.keepsGoing))
    {
        if (!options.numbers.empty()) // first: a number that is in use is known
            writeFile(options.numbers, numbers.bytes());
        writeOutput(options.output, messageFileOf(std::move(assigned.document), table));
    }
    if (options.wantsSummary())
        printText(say(counted(Text::countOfAssigned, assigned.messages, {numbers.fresh()})) + "\n");
    return findingsOutput.errors() > 0 ? ExitStatus::negative : ExitStatus::done;
}

/** The errors of a reference by itself. Its selectors are no texts for people. */
Findings findingsIn(const RemarkedFile &source, formTable *table)
{
    Findings findings = source.parsed.findings();
    const Rows rows(source.parsed);
    const Findings others = rows.isEmpty() ? checkMessages(source.parsed, table, nullptr)
                                           : checkMessages(withoutSelectors(source.parsed, rows), table, nullptr);
    findings.insert(findings.end(), others.begin(), others.end());
    return findings;
}

/** Makes a message file of a translation. */
ExitStatus makeTranslation(const Options &options, formTable *table, const Levels &levels,
                           FindingsOutput &findingsOutput)
{
    RemarkedFile source = RemarkedFile::read(options.reference);
    source.parsed.source().index();
    if (!findingsOutput.tellErrors(findingsIn(source, table), source.parsed.source()))
    {
        findingsOutput.finish(1);
        return ExitStatus::negative;
    }
    const Reference reference(source.parsed, table);
    BilingualFile file = options.assigns ? withNumbers(readGettext(readSource(options.input), options.language),
                                                       NumbersFile(options.numbers), table)
                                         : readBilingual(options.input, options.language);
    Imported imported =
        import(std::move(file), source, reference, levels, {table, options.takesFuzzy, options.language});
    findingsOutput.tell(imported.diagnostics);
    findingsOutput.finish(1);
    if (!options.isCheck && imported.isWhole && (findingsOutput.errors() == 0 || options.keepsGoing))
        writeOutput(options.output, messageFileOf(std::move(imported.document), table));
    if (options.wantsSummary() && imported.isWhole)
        printText(sentenceOf(imported.counts) + "\n");
    return findingsOutput.errors() > 0 ? ExitStatus::negative : ExitStatus::done;
}

ExitStatus run(CommandLine &line)
{
    FormOption forms;
    const Options options = readOptions(line, forms);
    const Levels levels = levelsOf(line, options.warnings);
    forms.read(line);
    FindingsOutput findingsOutput(line, options.format, true, options.reference, levels);
    checkOutputs(options);
    const auto make = options.assigns && options.reference.empty() ? makeReference : makeTranslation;
    return make(options, forms.table(), levels, findingsOutput);
}

constexpr const char *details = R"(Makes a message file of a bilingual one, as `kelto export` writes it and
translators' programs leave it: of its finished translations, if they are right
beside the reference. What is wrong is told as by `kelto check`, and then
nothing is written. Programs show the text of another language for a message
that the file lacks.

With --assign, the template of a program that used gettext becomes a reference.

Example:
  kelto import -r en.xlf de.xliff -o de.xlf
)";

} // namespace

const Subcommand importSubcommand = {"import", "[OPTION...] -r FILE BILINGUAL -o OUT",
                                     "Make a message file of a translation", details, run};

} // namespace tool
