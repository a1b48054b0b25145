#include "bilingual/command.h"

#include "io/output.h"
#include "io/terminal.h"
#include "text.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::bilingual
{

void FormOption::declare(CommandLine &line)
{
    line.options("--form", "NAME=TYPE[,TYPE...]", m_words,
                 "A conversion of the program's own and its arguments, as for kelto check");
}

void FormOption::read(const CommandLine &line)
{
    m_forms.add("nil=int"); // of the messages of rows
    for (const std::string &word : m_words)
        if (const std::string fault = m_forms.add(word); !fault.empty())
            throw line.misuse(fmt::format("--form {}: {}", terminal().showBytes(word), fault));
}

check::Levels levelsOf(const CommandLine &line, const Words &warnings)
{
    check::Levels levels;
    for (const std::string &warning : warnings)
        if (const std::string fault = levels.apply(warning); !fault.empty())
            throw line.misuse(fmt::format("-W{}: {}", terminal().showBytes(warning), fault));
    return levels;
}

void requireOption(const CommandLine &line, const char *name, const std::string &value)
{
    if (value.empty())
        throw line.misuse(say(Text::optionMissing, {name}));
}

void requireOneStandardInput(const CommandLine &line, const Words &inputs)
{
    if (std::count(inputs.begin(), inputs.end(), "-") > 1)
        throw line.misuse(say(Text::standardInputTwice));
}

void writeOutput(const std::string &path, std::string_view bytes)
{
    if (path == "-")
        print(bytes);
    else
        writeFile(path, bytes);
}

} // namespace tool::bilingual
