/** The parts that the bilingual commands share: their options, the check of their inputs, and their output. */
#ifndef KELTO_TOOLS_BILINGUAL_COMMAND_H
#define KELTO_TOOLS_BILINGUAL_COMMAND_H

#include "check/rules.h"
#include "check/texts/formats.h"
#include "command_line.h"

#include <string>
#include <string_view>

namespace tool::bilingual
{

/** The option --form, and the table of conversions that it makes. */
class FormOption
{
public:
    void declare(CommandLine &line);

    /** Reads the values of a command line that is parsed. */
    void read(const CommandLine &line);

    formTable *table() { return m_forms.get(); }

private:
    Words m_words;
    check::FormTable m_forms;
};

/** The levels that options -W ask for. */
check::Levels levelsOf(const CommandLine &line, const Words &warnings);

/** Fails where an option was not given. */
void requireOption(const CommandLine &line, const char *name, const std::string &value);

/** Fails where several inputs are standard input, which can be read once. */
void requireOneStandardInput(const CommandLine &line, const Words &inputs);

/** Writes a whole output, "-" being standard output. */
void writeOutput(const std::string &path, std::string_view bytes);

} // namespace tool::bilingual

#endif
