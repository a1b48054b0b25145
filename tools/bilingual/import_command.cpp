#include "bilingual/assign.h"
#include "bilingual/bilingual_file.h"
#include "bilingual/import.h"
#include "bilingual/po_form.h"
#include "bilingual/selectors.h"
#include "bilingual/source_file.h"
#include "bilingual/teller.h"
#include "command_line.h"
#include "input.h"
#include "output.h"
#include "subcommand.h"
#include "terminal.h"
#include "text.h"

#include <algorithm>
#include <filesystem>
#include <fmt/core.h>

namespace tool
{
namespace
{

using namespace check;
using namespace bilingual;

struct Options
{
    std::string reference;
    std::string output;
    std::string language;
    std::string numbers;
    std::string format = "text";
    Words warnings;
    Words forms;
    bool assigns = false;
    bool takesFuzzy = false;
    bool keepsGoing = false;
    bool isCheck = false;
    bool isForced = false;
    bool isQuiet = false;
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

void checkOptions(const CommandLine &line, const Options &options, const Words &files)
{
    if (files.empty())
        throw line.misuse(say(Text::noFile));
    if (files.size() > 1)
        throw line.misuse(say(Text::moreThanOneFile));
    if (options.reference.empty() && !options.assigns)
        throw line.misuse(say(Text::optionMissing, {"--reference"}));
    if (!options.numbers.empty() && !options.assigns)
        throw line.misuse(say(Text::optionMissing, {"--assign"}));
    if (options.assigns && !options.reference.empty() && options.numbers.empty())
        throw line.misuse(say(Text::optionMissing, {"--numbers"}));
    if (options.output.empty() && !options.isCheck)
        throw line.misuse(say(Text::optionMissing, {"--output"}));
    if (options.reference == "-" && files[0] == "-")
        throw line.misuse(say(Text::standardInputTwice));
}

SourceText readInput(const std::string &path)
{
    return {path == "-" ? "<stdin>" : path, readMessageFile(path)};
}

/** Makes the reference of a template of gettext. */
ExitStatus makeReference(const Options &options, const std::string &path, formTable *table, const Levels &levels,
                         Teller &teller)
{
    std::error_code error;
    const bool hasNumbers = !options.numbers.empty() && std::filesystem::exists(options.numbers, error);
    NumbersFile numbers = hasNumbers ? NumbersFile(options.numbers) : NumbersFile();
    Assigned assigned = assignNumbers(readGettext(readInput(path)), numbers,
                                      options.language.empty() ? "en" : options.language, table, levels);
    teller.tell(assigned.diagnostics);
    teller.finish(1);
    if (!options.isCheck && (teller.errors() == 0 || options.keepsGoing))
    {
        if (!options.numbers.empty()) // first: a number that is in use is known
            writeFile(options.numbers, numbers.bytes());
        writeOutput(options.output, messageFileOf(std::move(assigned.document), table));
    }
    if (!options.isQuiet && options.format == "text" && options.output != "-")
        printText(say(counted(Text::countOfAssigned, assigned.messages, {numbers.fresh()})) + "\n");
    return teller.errors() > 0 ? ExitStatus::negative : ExitStatus::done;
}

ExitStatus run(CommandLine &line)
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
    line.options("--form", "NAME=TYPE[,TYPE...]", options.forms,
                 "A conversion of the program's own and its arguments, as for kelto check");
    line.flag("-q,--quiet", options.isQuiet, "No summary");
    const Words files = line.operands();
    checkOptions(line, options, files);
    Levels levels;
    for (const std::string &warning : options.warnings)
        if (const std::string fault = levels.apply(warning); !fault.empty())
            throw line.misuse(fmt::format("-W{}: {}", terminal().showBytes(warning), fault));
    FormTable forms;
    addForms(line, options.forms, forms);
    Teller teller(line, options.format, true, options.reference, levels);
    if (!options.isCheck)
        requireOtherFile(options.output, {options.reference, files[0], options.numbers});
    if (!options.isCheck && options.assigns)
        requireOtherFile(options.numbers, {options.reference, files[0]});
    if (!options.isCheck && !options.isForced)
        refuseEdited(options.output);

    if (options.assigns && options.reference.empty())
        return makeReference(options, files[0], forms.get(), levels, teller);

    SourceFile source = SourceFile::read(options.reference);
    source.catalog.source().index();
    Findings findings = source.catalog.findings();
    const Rows rows(source.catalog);
    const Findings others = rows.isEmpty()
                                ? checkMessages(source.catalog, forms.get(), nullptr)
                                : checkMessages(withoutSelectors(source.catalog, rows), forms.get(), nullptr);
    findings.insert(findings.end(), others.begin(), others.end());
    teller.tell(errorsIn(report(std::move(findings), source.catalog.source(), nullptr, levels)));
    if (teller.errors() > 0)
    {
        teller.finish(1);
        return ExitStatus::negative;
    }
    const Reference reference(source.catalog, forms.get());
    BilingualFile file = options.assigns ? withNumbers(readGettext(readInput(files[0]), options.language),
                                                       NumbersFile(options.numbers), forms.get())
                                         : readBilingual(files[0], options.language);
    Imported imported =
        import(std::move(file), source, reference, levels, {forms.get(), options.takesFuzzy, options.language});
    teller.tell(imported.diagnostics);
    teller.finish(1);
    if (!options.isCheck && imported.isWhole && (teller.errors() == 0 || options.keepsGoing))
        writeOutput(options.output, messageFileOf(std::move(imported.document), forms.get()));
    if (!options.isQuiet && imported.isWhole && options.format == "text" && options.output != "-")
        printText(sentenceOf(imported.counts) + "\n");
    return teller.errors() > 0 ? ExitStatus::negative : ExitStatus::done;
}

constexpr const char *details = R"(Makes a message file of a bilingual one, as `kelto export` writes it and
translators' programs leave it: of its finished translations, if they are right
beside the reference. What is wrong is told as by `kelto check`, and then nothing
is written. Programs show the text of another language for a message that the
file lacks.

With --assign, the template of a program that used gettext becomes a reference.

Example:
  kelto import -r en.xlf de.xliff -o de.xlf
)";

} // namespace

const Subcommand importSubcommand = {"import", "[OPTION...] -r FILE BILINGUAL -o OUT",
                                     "Make a message file of a translation", details, run};

} // namespace tool
