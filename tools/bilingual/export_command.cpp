#include "bilingual/bilingual_file.h"
#include "bilingual/source_file.h"
#include "bilingual/teller.h"
#include "bilingual/update.h"
#include "command_line.h"
#include "input.h"
#include "output.h"
#include "subcommand.h"
#include "terminal.h"
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
    std::string old;
    std::string output;
    std::string language;
    Words forms;
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

/** Tells why a file is none; whether there was nothing to tell. */
bool isLoadable(Teller &teller, SourceFile &file, const Levels &levels)
{
    const size_t before = teller.errors();
    teller.tell(errorsIn(report(file.catalog.findings(), file.catalog.source(), nullptr, levels)));
    return teller.errors() == before;
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

/** A text that is empty in the reference is empty in every language, unless somebody has put one there. */
void dropEmpty(Bilingual &catalog)
{
    const auto isEmpty = [](const Entry &entry) { return entry.source.empty() && entry.target.empty(); };
    catalog.entries.erase(std::remove_if(catalog.entries.begin(), catalog.entries.end(), isEmpty),
                          catalog.entries.end());
}

ExitStatus run(CommandLine &line)
{
    Options options;
    line.option("--to", "FORM", options.form,
                "po, xliff (1.2) or xliff2 (2.0); if not given, what the name of the output asks for");
    line.option("-r,--reference", "FILE", options.reference, "The message file to translate");
    line.option("--update", "FILE", options.old, "Keep the translations of this bilingual file, by number");
    line.option("-o,--output", "OUT", options.output, "The file to write, which may be the updated one");
    line.option("--language", "NAME", options.language, "The language of the translation, as de or pt-BR");
    line.options("--form", "NAME=TYPE[,TYPE...]", options.forms,
                 "A conversion of the program's own and its arguments, as for kelto check");
    const Words files = line.operands();
    if (files.size() > 1)
        throw line.misuse(say(Text::moreThanOneFile));
    const std::string translation = files.empty() ? "" : files[0];
    for (const auto &[name, value] : {std::pair("--reference", options.reference), {"--output", options.output}})
        if (value.empty())
            throw line.misuse(say(Text::optionMissing, {name}));
    if (!translation.empty() && !options.old.empty())
        throw line.misuse(say(Text::surplusWord, {terminal().quote(translation), "--update"}));
    Words inputs{options.reference, translation, options.old};
    if (std::count(inputs.begin(), inputs.end(), "-") > 1)
        throw line.misuse(say(Text::standardInputTwice));
    const Form &form = formFor(line, options);
    FormTable forms;
    addForms(line, options.forms, forms);
    inputs.pop_back(); // the updated file is read before it is written
    inputs.erase(std::remove(inputs.begin(), inputs.end(), ""), inputs.end());
    requireOtherFile(options.output, inputs);

    const Levels levels;
    Teller teller(line, "text", true, "", levels);
    SourceFile reference = SourceFile::read(options.reference);
    if (!isLoadable(teller, reference, levels))
        return ExitStatus::negative;
    std::optional<SourceFile> translated;
    std::optional<BilingualFile> old;
    std::string language = options.language;
    if (!translation.empty())
    {
        translated.emplace(SourceFile::read(translation));
        if (!isLoadable(teller, *translated, levels))
            return ExitStatus::negative;
        language = language.empty() ? translated->catalog.language() : language;
    }
    else if (!options.old.empty())
    {
        old.emplace(readBilingual(options.old));
        teller.tell(errorsIn(report(old->findings, old->source, nullptr, levels)));
        if (teller.errors() > 0)
            return ExitStatus::negative;
        language = language.empty() ? old->content.targetLanguage : language;
    }
    Bilingual catalog = bilingualOf(reference, language);
    std::optional<Changes> changes;
    if (translated)
        tellLosses(translation, addTranslation(catalog, *translated));
    else if (old)
        changes = update(catalog, old->content);
    if (!form.knowsEmpty)
        tell(translated ? translation : options.old, Text::countOfLeftEmpty, countOfOneSided(catalog));
    if (!options.language.empty())
        catalog.targetLanguage = options.language;
    dropEmpty(catalog);
    noteArguments(catalog, forms.get());
    writeOutput(options.output, form.write(catalog, forms.get()));
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
