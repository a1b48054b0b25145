// `kelto convert`: text from one charset into another, and the list of charsets.

#include "command_line.h"
#include "io/charset.h"
#include "io/icu.h"
#include "io/input.h"
#include "io/output.h"
#include "io/progress.h"
#include "io/terminal.h"
#include "io/transcode.h"
#include "text.h"

#include <algorithm>
#include <optional>
#include <unistd.h>

namespace tool
{
namespace
{

/** The names of one charset, the best known first: of ICU's names the one that mail or the registry uses. */
Words namesOf(const char *canonical)
{
    UErrorCode status = U_ZERO_ERROR;
    Words names{canonical};
    for (uint16_t i = 0; i < ucnv_countAliases(canonical, &status); ++i)
        names.emplace_back(ucnv_getAlias(canonical, i, &status));
    for (const char *const standard : {"IANA", "MIME"})
        if (const char *const name = ucnv_getStandardName(canonical, standard, &status))
            names.insert(names.begin(), name);
    Words unique;
    for (const std::string &name : names)
        if (std::find(unique.begin(), unique.end(), name) == unique.end())
            unique.push_back(name);
    return unique;
}

void listCharsets()
{
    std::vector<Words> charsets;
    charsets.reserve(static_cast<size_t>(ucnv_countAvailable()));
    for (int32_t i = 0; i < ucnv_countAvailable(); ++i)
        charsets.push_back(namesOf(ucnv_getAvailableName(i)));
    std::sort(charsets.begin(), charsets.end());
    for (const Words &names : charsets)
        for (const std::string &name : names)
            print(name + (&name == &names.back() ? "\n" : " "));
}

/** Tells how many characters were lost; returns whether any were. */
bool warn(const std::string &path, Text text, size_t characters, const std::string &charset)
{
    if (characters != 0)
        complain(inputName(path) + ": " + say(counted(text, characters, {terminal().showBytes(charset)})));
    return characters != 0;
}

ExitStatus convert(const std::string &from, const std::string &to, const std::string &path, bool strict)
{
    std::optional<Progress> progress;
    if (path != "-" || isatty(STDIN_FILENO) == 0) // not while the user types
        progress.emplace().begin(Text::progressReading);
    const std::string input = readWhole(path);
    Transcoded result;
    try
    {
        if (progress)
            progress->begin(Text::progressConverting);
        result = transcode(from, to, input);
    }
    catch (const Failure &failure)
    {
        throw Failure(inputName(path) + ": " + failure.what());
    }
    progress.reset(); // before anything is printed
    print(result.bytes);
    const bool malformed = warn(path, Text::countOfMalformed, result.malformed, from);
    const bool unshowable = warn(path, Text::countOfUnshowable, result.unshowable, to);
    return strict && (malformed || unshowable) ? ExitStatus::negative : ExitStatus::done;
}

ExitStatus run(CommandLine &line)
{
    std::string from;
    std::string to;
    bool strict = false;
    bool list = false;
    line.option("-f,--from", "NAME", from, "The charset of the input");
    line.option("-t,--to", "NAME", to, "The charset of the output");
    line.flag("-s,--strict", strict, "End with status 1 if a character was replaced");
    line.flag("-l,--list-charsets", list, "Print the names of all charsets, one charset a line");
    const Words files = line.operands();
    if (list)
    {
        line.requireAlone("--list-charsets");
        listCharsets();
        return ExitStatus::done;
    }
    if (from.empty() || to.empty())
        throw line.misuse(say(Text::optionMissing, {from.empty() ? "--from" : "--to"}));
    if (files.size() > 1)
        throw line.misuse(say(Text::moreThanOneFile));
    requireReadable(from);
    requireCharset(to);
    return convert(from, to, files.empty() ? "-" : files.front(), strict);
}

constexpr const char *details = R"(Reads FILE, or standard input without one or for '-'. Characters that are
malformed, or that the other charset cannot show, are replaced and counted. Zero
bytes are kept; the texts between them are converted one by one.

Example:
  kelto convert -s -f Shift_JIS -t UTF-8 letter.txt
)";

} // namespace

const Subcommand convertSubcommand = {"convert", "-f NAME -t NAME [-s] [FILE]\n       kelto convert -l",
                                      "Convert text between charsets", details, run};

} // namespace tool
