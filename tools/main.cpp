#include "command_line.h"
#include "failure.h"
#include "kelto.h"
#include "message_file.h"
#include "output.h"
#include "subcommand.h"
#include "terminal.h"

#include <algorithm>
#include <csignal>
#include <fmt/core.h>
#include <new>
#include <numeric>
#include <utility>

using namespace std::string_literals;

namespace tool
{
namespace
{

constexpr const Subcommand *subcommands[] = {
    &formatSubcommand,
    &listSubcommand,
    &versionSubcommand,
    &checkSubcommand,
    &convertSubcommand,
};

constexpr const char *usage = R"(Usage: kelto SUBCOMMAND [OPTION...] [OPERAND...]

Messages and charsets: the command-line side of the Kelto library.

Subcommands:
)";

constexpr const char *usageEnd = R"(
Options:
  -h, --help     Print this help; behind a subcommand, its own
  --version      Print the version of Kelto

The exit status is 0 when the work is done, 1 when its answer is no, 2 when it
could not be done or the usage was wrong.
)";

std::string help()
{
    std::string text = usage;
    for (const Subcommand *subcommand : subcommands)
        text += fmt::format("  {:<14} {}\n", subcommand->name, subcommand->summary);
    return text + usageEnd;
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
    const bool isNear = !isOption && distance(nearest) <= farthest;
    return Failure(fmt::format("unknown {} {}{}\nTry 'kelto --help'.", isOption ? "option" : "subcommand",
                               terminal().quote(word),
                               isNear ? fmt::format("; did you mean '{}'?", nearest->name) : ""));
}

ExitStatus runSubcommand(const Subcommand &subcommand, Words words)
{
    CommandLine line(subcommand, std::move(words));
    try
    {
        return subcommand.run(line);
    }
    catch (const HelpWanted &)
    {
        print(line.help());
        return ExitStatus::done;
    }
}

ExitStatus runWords(const Words &words)
{
    if (words.empty() || words[0].empty())
        throw Failure("no subcommand is given\nTry 'kelto --help'.");
    for (const Subcommand *subcommand : subcommands)
        if (words[0] == subcommand->name)
            return runSubcommand(*subcommand, Words(words.begin() + 1, words.end()));
    if (words[0] == "--help" || words[0] == "-h")
        print(help());
    else if (words[0] == "--version")
        print("kelto "s + KELTO_VERSION + "\n");
    else
        throw unknownSubcommand(words[0]);
    return ExitStatus::done;
}

ExitStatus run(const Words &words)
{
    try
    {
        const Library library;
        const ExitStatus status = runWords(words);
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
    std::signal(SIGPIPE, SIG_IGN); // a reader that left is a failure like a full disk
    return static_cast<int>(tool::run(tool::Words(argv + std::min(argc, 1), argv + argc)));
}
