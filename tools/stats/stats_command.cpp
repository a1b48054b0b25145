// `kelto stats`: how far translations are, and which messages no source uses; the language that each file goes by.

#include "bilingual/command.h"
#include "bilingual/findings_output.h"
#include "bilingual/forms.h"
#include "bilingual/import.h"
#include "bilingual/message_file_entries.h"
#include "bilingual/selectors.h"
#include "command_line.h"
#include "gen/names.h"
#include "io/input.h"
#include "io/output.h"
#include "io/terminal.h"
#include "stats/html_page.h"
#include "subcommand.h"
#include "text.h"

#include <algorithm>
#include <cctype>
#include <fmt/core.h>
#include <set>

namespace tool
{
namespace
{

using namespace check;
using namespace bilingual;

/** The words of sources that can be names. */
std::set<std::string> wordsIn(const Words &files)
{
    std::set<std::string> words;
    const auto isPart = [](char byte) { return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '_'; };
    for (const std::string &file : files)
    {
        const std::string text = readWhole(file);
        for (auto at = text.begin(); at != text.end();)
        {
            const auto begin = std::find_if(at, text.end(), isPart);
            at = std::find_if_not(begin, text.end(), isPart);
            if (begin != at)
                words.emplace(begin, at);
        }
    }
    return words;
}

/** Tells which messages no source names, by the names that `kelto gen` makes. */
ExitStatus tellUnused(const ParsedFile &parsed, const std::string &nameSpace, const Words &sources)
{
    Findings ignored; // a name that cannot be one is for kelto gen to tell
    const std::vector<std::string> names = gen::namesOf(parsed, nameSpace, ignored);
    const std::set<std::string> words = wordsIn(sources);
    const Rows rows(parsed);
    std::string unused;
    size_t count = 0;
    for (size_t i = 0; i < names.size(); ++i)
    {
        const std::string &name = names[i];
        if (rows.keyOf(parsed.messages()[i].id) != nullptr) // a program asks for the message that selects it
            continue;
        const std::string constant = gen::prefixOf(nameSpace) + gen::inCapitals(name);
        const bool isUsed =
            words.count(name) > 0 || words.count(constant) > 0 || words.count(gen::textConstant(constant)) > 0;
        if (isUsed || name.empty())
            continue;
        unused += (unused.empty() ? "" : ", ") + name;
        ++count;
    }
    if (count > 0)
        printText(say(counted(Text::countOfUnused, count, {unused})) + "\n");
    return ExitStatus::done;
}

/** "de", or of a file that names no language how it is called. */
std::string languageOf(const Imported &imported, const std::string &path)
{
    if (!imported.language.empty())
        return imported.language;
    const size_t begin = path.rfind('/') + 1;
    return path.substr(begin, path.find('.', begin) - begin);
}

ExitStatus run(CommandLine &line)
{
    std::string reference;
    std::string html;
    std::string nameSpace = "messages";
    bool isUsed = false;
    FormOption forms;
    line.option("-r,--reference", "FILE", reference, "The message file that is translated");
    line.option("--html", "OUT", html, "Write a page with what is not finished or refused");
    line.flag("--used", isUsed, "The operands are sources: tell which messages none of them names");
    line.option("--namespace", "NAME", nameSpace, "As given to kelto gen, for the names; \"messages\" if not given");
    forms.declare(line);
    const Words files = line.files();
    requireOption(line, "--reference", reference);
    forms.read(line);
    Words inputs = files;
    inputs.push_back(reference);
    requireOneStandardInput(line, inputs);
    requireOtherFile(html, inputs);

    const Levels levels;
    FindingsOutput findingsOutput(line, "text", true, reference, levels);
    RemarkedFile source = RemarkedFile::read(reference);
    source.parsed.source().index();
    if (!findingsOutput.tellErrors(source.parsed.findings(), source.parsed.source()))
        return ExitStatus::negative;
    if (isUsed)
        return tellUnused(source.parsed, nameSpace, files);

    const Reference compared(source.parsed, forms.table());
    std::vector<stats::Progress> all;
    const ExitStatus status = forEachFile(files, [&](const std::string &path) {
        Imported imported = import(readBilingual(path), source, compared, levels, {forms.table(), false, ""});
        if (!imported.isWhole)
            findingsOutput.tellErrors(imported.diagnostics);
        all.push_back({path, languageOf(imported, path), imported.counts, std::move(imported.unfinished)});
        printText(terminal().showBytes(all.back().language) + "  " + sentenceOf(all.back().counts) + "\n");
    });
    if (!html.empty())
        writeOutput(html, stats::pageOf(source.parsed.source().name(), source.parsed.language(), all, forms.table()));
    return status == ExitStatus::done && findingsOutput.errors() > 0 ? ExitStatus::negative : status;
}

constexpr const char *details = R"(Tells for each FILE, a bilingual one, how many messages of the reference are
translated, fuzzy, missing, or refused by the checker, which `kelto import`
explains.

Example:
  kelto stats -r en.xlf de.xliff fr.xliff
)";

} // namespace

const Subcommand statsSubcommand = {"stats", "[OPTION...] -r FILE FILE...", "Tell how far translations are", details,
                                    run};

} // namespace tool
