/**
 * The words behind the name of a subcommand: options are declared, then operands() parses. All wrong usage comes out as
 * a Failure that ends with a pointer to the help; a request for help as HelpWanted.
 */
#ifndef KELTO_TOOLS_COMMAND_LINE_H
#define KELTO_TOOLS_COMMAND_LINE_H

#include "failure.h"
#include "subcommand.h"

#include <memory>
#include <string>
#include <vector>

namespace CLI
{
class App; // whose header is large; only command_line.cpp includes it
}

namespace tool
{

using Words = std::vector<std::string>;

struct HelpWanted
{
};

class CommandLine
{
public:
    CommandLine(const Subcommand &subcommand, Words words);
    ~CommandLine();

    void flag(const std::string &name, bool &value, const std::string &help);
    void option(const std::string &name, const std::string &valueName, std::string &value, const std::string &help);

    /** An option that may be given more than once. */
    void options(const std::string &name, const std::string &valueName, Words &values, const std::string &help);

    /** Parses; the operands in their order, without the "--" that separates them from options. */
    Words operands();

    /**
     * Parses options that stand in front only: from the first operand on every word is an operand, whatever it begins
     * with. A "--" is taken out once, from among the fixed operands or right behind them.
     */
    Words operandsBehindOptions(size_t fixedCount);

    /** Fails where there are other words than this option. */
    void requireAlone(const std::string &option) const;

    /** The operands, all of them files, of which there must be one at least. */
    Words files();

    /** The only operand, a file. */
    std::string onlyFile();

    /** In the language of the user. */
    std::string help() const;

    /** Wrong usage of this subcommand. */
    Failure misuse(const std::string &text) const;

private:
    void parse();
    Words withEmptyValues() const;
    void requireValues() const;
    void refuseOptions(Words::const_iterator begin, Words::const_iterator end) const;

    std::unique_ptr<CLI::App> m_app;
    const Subcommand &m_subcommand;
    std::string m_name;
    Words m_words;
};

/** Does the work for each file. A failure is printed, and the next file follows; one of the output ends the work. */
template <typename Work> ExitStatus forEachFile(const Words &files, Work work)
{
    ExitStatus status = ExitStatus::done;
    for (const std::string &file : files)
        try
        {
            work(file);
        }
        catch (const OutputFailure &)
        {
            throw;
        }
        catch (const Failure &failure)
        {
            complain(failure.what());
            status = ExitStatus::failed;
        }
    return status;
}

} // namespace tool

#endif
