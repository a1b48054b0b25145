// `kelto export`: its options, and which files it reads and writes.

#include "bilingual/command.h"
#include "bilingual/findings_output.h"
#include "bilingual/forms.h"
#include "bilingual/gettext/po_messages.h"
#include "bilingual/message_file_entries.h"
#include "bilingual/update.h"
#include "command_line.h"
#include "io/input.h"
#include "io/output.h"
#include "io/terminal.h"
#include "subcommand.h"
#include "text.h"

#include <algorithm>
#include <cstdio>

namespace tool
{
namespace
{

using namespace check;
using namespace bilingual;

struct Options
{
    std::string form;
    std::string reference;
    std::string translation; // the operand
    std::string old;
    std::string output;
    std::string language;
    bool copiesSource = false;
};

const Form &formFor(const CommandLine &line, const Options &options)
{
    const Form *form = options.form.empty() ? formOfFile(options.output) : findForm(options.form);
    if (form == nullptr && options.form.empty())
        throw line.misuse(say(Text::optionMissing, {"--to"}));
    if (form == nullptr)
        throw line.misuse(say(Text::noBilingualForm, {terminal().quote(options.form), formNames()}));
    return *form;
}

void tell(const std::string &path, Text text, size_t count)
{
    if (count > 0)
        complain(inputName(path) + ": " + say(counted(text, count)));
}

void tellLosses(const std::string &path, const Losses &losses)
{
    tell(path, Text::countOfOutdated, losses.outdated);
    tell(path, Text::countOfUnknown, losses.unknown);
}

/** Texts that are empty in one of both languages, which not all forms can say. */
size_t countOfOneSided(const Bilingual &catalog)
{
    return static_cast<size_t>(std::count_if(catalog.entries.begin(), catalog.entries.end(), [](const Entry &entry) {
        return !entry.isObsolete && entry.state != State::untranslated && entry.source.empty() != entry.target.empty();
    }));
}

/** Tells the counts; standard output may be the catalog itself. */
void tellChanges(const std::string &output, const Changes &changes)
{
    const std::string text =
        say(Text::changesMade, {changes.fresh, changes.changed, changes.obsolete, changes.unchanged}) + "\n";
    if (output != "-")
        printText(text);
    else
        std::fputs(terminal().encodedLines(text).c_str(), stderr);
}

/** Declares the options, parses, and refuses what does not go together. */
Options readOptions(CommandLine &line, FormOption &forms)
{
    Options options;
    line.option("--to", "FORM", options.form,
                "po, xliff (1.2) or xliff2 (2.0); if not given, what the name of the output asks for");
    line.option("-r,--reference", "FILE", options.reference, "The message file to translate");
    line.option("--update", "FILE", options.old, "Keep the translations of this bilingual file, by number");
    line.option("-o,--output", "OUT", options.output, "The file to write, which may be the updated one");
    line.option("--language", "NAME", options.language, "The language of the translation, as de or pt-BR");
    line.flag("--copy-source", options.copiesSource,
              "Give what is not translated its source for a target, for programs that show nothing else (XLIFF)");
    forms.declare(line);
    const Words files = line.operands();
    if (files.size() > 1)
        throw line.misuse(say(Text::moreThanOneFile));
    options.translation = files.empty() ? "" : files[0];
    requireOption(line, "--reference", options.reference);
    requireOption(line, "--output", options.output);
    if (!options.translation.empty() && !options.old.empty())
        throw line.misuse(say(Text::surplusWord, {terminal().quote(options.translation), "--update"}));
    requireOneStandardInput(line, {options.reference, options.translation, options.old});
    const Form &form = formFor(line, options);
    if (options.copiesSource && !form.knowsEmpty)
        throw line.misuse(say(Text::noCopiesInPo));
    forms.read(line);
    Words inputs{options.reference}; // the updated file is read before it is written
    if (!options.translation.empty())
        inputs.push_back(options.translation);
    requireOtherFile(options.output, inputs);
    return options;
}

/** Tells what of a bilingual file would be lost; whether there is nothing of that kind. */
bool isWhole(BilingualFile &file, FindingsOutput &findingsOutput)
{
    Findings findings = file.findings;
    const Findings repetitions = repetitionsIn(file.content);
    findings.insert(findings.end(), repetitions.begin(), repetitions.end());
    for (const Entry &entry : file.content.entries) // parts of a translation that no message could hold
        findings.insert(findings.end(), entry.findings.begin(), entry.findings.end());
    std::vector<Diagnostic> diagnostics = report(std::move(findings), file.source, nullptr, Levels());
    if (!file.hasColumns)
        tellInPo(diagnostics);
    return findingsOutput.tellErrors(diagnostics);
}

/** The reference with the translation beside it, or with the work of the old file; nothing where one has errors. */
std::optional<Bilingual> catalogOf(const Options &options, FindingsOutput &findingsOutput,
                                   std::optional<Changes> &changes)
{
    RemarkedFile reference = RemarkedFile::read(options.reference);
    if (!findingsOutput.tellErrors(reference.parsed.findings(), reference.parsed.source()))
        return std::nullopt;
    Bilingual catalog;
    if (!options.translation.empty())
    {
        RemarkedFile translated = RemarkedFile::read(options.translation);
        if (!findingsOutput.tellErrors(translated.parsed.findings(), translated.parsed.source()))
            return std::nullopt;
        catalog = bilingualOf(reference, options.language.empty() ? translated.parsed.language() : options.language);
        tellLosses(options.translation, addTranslation(catalog, translated));
    }
    else if (!options.old.empty())
    {
        BilingualFile old = readBilingual(options.old);
        if (!isWhole(old, findingsOutput))
            return std::nullopt;
        catalog = bilingualOf(reference, options.language.empty() ? old.content.targetLanguage : options.language);
        changes = update(catalog, old.content);
    }
    else
        catalog = bilingualOf(reference, options.language);
    if (!options.language.empty())
        catalog.targetLanguage = options.language;
    return catalog;
}

ExitStatus run(CommandLine &line)
{
    FormOption forms;
    const Options options = readOptions(line, forms);
    const Form &form = formFor(line, options);
    const Levels levels;
    FindingsOutput findingsOutput(line, "text", true, "", levels);
    std::optional<Changes> changes;
    std::optional<Bilingual> catalog = catalogOf(options, findingsOutput, changes);
    if (!catalog)
        return ExitStatus::negative;
    if (!form.knowsEmpty)
        tell(options.translation.empty() ? options.old : options.translation, Text::countOfLeftEmpty,
             countOfOneSided(*catalog));
    dropEmpty(*catalog);
    catalog->copiesSource = options.copiesSource;
    noteArguments(*catalog, forms.table());
    writeOutput(options.output, form.write(*catalog, forms.table()));
    if (changes)
        tellChanges(options.output, *changes);
    return ExitStatus::done;
}

constexpr const char *details = R"(Writes the messages of the reference with their translations, if there are any,
in a form that translators' programs know; `kelto import` makes a message file
of it again. With --update, what was translated already is kept where the
reference still says the same; where it has changed it is fuzzy.

Example:
  kelto export -r en.xlf de.xlf -o de.xliff
)";

} // namespace

const Subcommand exportSubcommand = {"export", "[OPTION...] -r FILE [TRANSLATION] -o OUT",
                                     "Write messages for translators' programs", details, run};

} // namespace tool
