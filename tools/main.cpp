// The table of all subcommands, which of them a misspelt name may mean, the help of the program, and how it ends.

#include "command_line.h"
#include "failure.h"
#include "io/output.h"
#include "io/terminal.h"
#include "kelto.h"
#include "library/library_use.h"
#include "subcommand.h"
#include "text.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <fmt/core.h>
#include <new>
#include <numeric>
#include <utility>

namespace tool
{
namespace
{

constexpr const Subcommand *subcommands[] = {
    &formatSubcommand, &listSubcommand,  &versionSubcommand, &checkSubcommand,   &genSubcommand,     &exportSubcommand,
    &importSubcommand, &statsSubcommand, &pseudoSubcommand,  &compileSubcommand, &convertSubcommand,
};

constexpr const char *usage = R"(Usage: kelto SUBCOMMAND [OPTION...] [OPERAND...]
       kelto help [SUBCOMMAND]

Messages and charsets: the command-line side of the Kelto library.

Subcommands:
)";

constexpr const char *usageEnd = R"(
Options:
  -h, --help     Print this help; behind a subcommand, its own
  -V, --version  Print the version of Kelto

The exit status is 0 when the work is done, 1 when its answer is no, 2 when it
could not be done or the usage was wrong.
)";

std::string help()
{
    std::string text = helpText("usage", usage);
    for (const Subcommand *subcommand : subcommands)
        text += fmt::format("  {:<14} {}\n", subcommand->name,
                            helpText(std::string(subcommand->name) + " summary", subcommand->summary));
    return text + helpText("usage end", usageEnd);
}

/** The fewest insertions, deletions and replacements of characters that make one word of the other. */
size_t editDistance(const std::string &from, const std::string &to)
{
    std::vector<size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= from.size(); ++i)
    {
        size_t diagonal = std::exchange(row[0], i);
        for (size_t j = 1; j <= to.size(); ++j)
        {
            const size_t replaced = diagonal + (from[i - 1] != to[j - 1]);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

Failure unknownSubcommand(const std::string &word)
{
    constexpr size_t farthest = 3;
    const bool isOption = word[0] == '-';
    const auto distance = [&](const Subcommand *row) { return editDistance(word, row->name); };
    const Subcommand *const nearest =
        *std::min_element(std::begin(subcommands), std::end(subcommands),
                          [&](const auto *a, const auto *b) { return distance(a) < distance(b); });
    const bool isNear = !isOption && distance(nearest) <= std::min(farthest, word.size() / 2);
    const std::string quoted = terminal().quote(word);
    const std::string text = isOption ? say(Text::unknownOption, {quoted})
                             : isNear ? say(Text::unknownSubcommandNear, {quoted, nearest->name})
                                      : say(Text::unknownSubcommand, {quoted});
    return Failure(text + hint("kelto --help"));
}

ExitStatus runSubcommand(const Library &library, const Subcommand &subcommand, Words words)
{
    library.require();
    CommandLine line(subcommand, std::move(words));
    try
    {
        return subcommand.run(line);
    }
    catch (const HelpWanted &)
    {
        printText(line.help());
        return ExitStatus::done;
    }
}

const Subcommand *subcommandCalled(const std::string &name)
{
    const auto *const found = std::find_if(std::begin(subcommands), std::end(subcommands),
                                           [&](const Subcommand *row) { return name == row->name; });
    return found != std::end(subcommands) ? *found : nullptr;
}

ExitStatus runWords(const Library &library, const Words &words)
{
    if (words.empty() || words[0].empty())
        throw Failure(say(Text::noSubcommand) + hint("kelto --help"));
    if (const Subcommand *const subcommand = subcommandCalled(words[0]))
        return runSubcommand(library, *subcommand, Words(words.begin() + 1, words.end()));
    const bool isHelpSubcommand = words[0] == "help";
    const bool wantsHelp = isHelpSubcommand || words[0] == "--help" || words[0] == "-h";
    if (!wantsHelp && words[0] != "--version" && words[0] != "-V")
        throw unknownSubcommand(words[0]);
    const size_t surplus = isHelpSubcommand && words.size() > 1 ? 2 : 1;
    if (words.size() > surplus)
        throw Failure(say(Text::surplusWord, {terminal().quote(words[surplus]), words[surplus - 1]}) +
                      hint("kelto --help"));
    if (surplus > 1)
    {
        const Subcommand *const subcommand = subcommandCalled(words[1]);
        return subcommand != nullptr ? runSubcommand(library, *subcommand, {"--help"})
                                     : throw unknownSubcommand(words[1]);
    }
    if (wantsHelp)
        printText(help());
    else
        print("kelto " KELTO_VERSION "\n");
    return ExitStatus::done;
}

ExitStatus run(const Words &words)
{
    const Library library;
    try
    {
        const ExitStatus status = runWords(library, words);
        flushOutput();
        return status;
    }
    catch (const Failure &failure)
    {
        complain(failure.what());
    }
    catch (const std::bad_alloc &)
    {
        complain(meaningOf(KT_ERR_NO_MEMORY));
    }
    catch (const std::exception &other)
    {
        complain(other.what());
    }
    return ExitStatus::failed;
}

} // namespace
} // namespace tool

int main(int argc, char **argv)
{
    std::setlocale(LC_MESSAGES, ""); // for what the operating system says
    std::signal(SIGPIPE, SIG_DFL);   // a reader that left ends the program quietly, whatever it was started by
    return static_cast<int>(tool::run(tool::Words(argv + std::min(argc, 1), argv + argc)));
}
