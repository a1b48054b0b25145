/**
 * What main() and the subcommands share: the exit statuses and the record of a subcommand, one in each ..._command.cpp;
 * the table of all is in main.cpp. A subcommand declares its options on the CommandLine that it is given, takes its
 * operands from it, and works; what goes wrong it throws as a Failure.
 */
#ifndef KELTO_TOOLS_SUBCOMMAND_H
#define KELTO_TOOLS_SUBCOMMAND_H

namespace tool
{

class CommandLine;

enum class ExitStatus
{
    done = 0,
    negative = 1, // the work is done, and its answer is no
    failed = 2    // the work could not be done, or the usage was wrong
};

struct Subcommand
{
    const char *name;
    const char *synopsis; // what follows the name on a command line
    const char *summary;
    const char *details; // for its own help
    ExitStatus (*run)(CommandLine &line);
};

extern const Subcommand formatSubcommand;
extern const Subcommand listSubcommand;
extern const Subcommand versionSubcommand;
extern const Subcommand convertSubcommand;
extern const Subcommand checkSubcommand;
extern const Subcommand compileSubcommand;
extern const Subcommand genSubcommand;
extern const Subcommand pseudoSubcommand;
extern const Subcommand exportSubcommand;
extern const Subcommand importSubcommand;
extern const Subcommand statsSubcommand;

} // namespace tool

#endif
