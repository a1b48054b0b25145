// `kelto pseudo`: its options, and the file of pseudo-localised texts.

#include "bilingual/command.h"
#include "bilingual/findings_output.h"
#include "bilingual/message_file_entries.h"
#include "bilingual/message_parts.h"
#include "command_line.h"
#include "io/input.h"
#include "io/terminal.h"
#include "library/selector.h"
#include "pseudo/pseudo_text.h"
#include "text.h"

#include <cstdlib>

namespace tool
{
namespace
{

using namespace check;
using namespace bilingual;

constexpr const char *bidiLanguage = "ar-XB";
constexpr const char *accentedRegion = "-XA";

unsigned percentOf(const CommandLine &line, const std::string &text)
{
    constexpr unsigned most = 400;
    const bool isNumber = text.size() <= 3 && text.find_first_not_of("0123456789") == std::string::npos;
    const unsigned percent = isNumber ? static_cast<unsigned>(std::strtoul(text.c_str(), nullptr, 10)) : most + 1;
    if (percent > most)
        throw line.misuse(say(Text::badExpansion, {most, terminal().quote(text)}));
    return percent;
}

ExitStatus run(CommandLine &line)
{
    std::string output;
    std::string expansion = "30";
    bool isBidi = false;
    FormOption forms;
    line.option("-o,--output", "OUT", output, "The message file to write; '-' is standard output");
    line.option("--expand", "PERCENT", expansion, "By how much texts get longer; 30 if not given");
    line.flag("--bidi", isBidi, "Letters from right to left, in the language ar-XB, and no accents");
    forms.declare(line);
    const std::string input = line.onlyFile();
    requireOption(line, "--output", output);
    const unsigned percent = percentOf(line, expansion);
    forms.read(line);
    requireOtherFile(output, {input});

    RemarkedFile source = RemarkedFile::read(input);
    ParsedFile &parsed = source.parsed;
    FileRemarks &remarks = source.remarks;
    const Levels levels;
    FindingsOutput findingsOutput(line, "text", true, "", levels);
    if (!findingsOutput.tellErrors(parsed.findings(), parsed.source()))
        return ExitStatus::negative;

    MessageDocument document;
    for (auto &[name, value] : remarks.attributes)
        if (name == "source-language")
            document.attributes.emplace_back(name, isBidi ? bidiLanguage : value.substr(0, 2) + accentedRegion);
        else
            document.attributes.emplace_back(name, value);
    for (const Message &message : parsed.messages())
    {
        const std::string text = unescaped(parsed.rawText(message));
        const Parts parts = roughPartsOf(text, forms.table());
        const bool isSelector = tool::readSelector(text).has_value();
        const pseudo::Style style = isBidi ? pseudo::Style::direction : pseudo::Style::accents;
        document.units.push_back({message.id,
                                  remarks.labels[message.id],
                                  message.name,
                                  "",
                                  isSelector ? text : pseudo::pseudoOf(parts, style, percent),
                                  {}});
    }
    writeOutput(output, messageFileOf(std::move(document), forms.table()));
    return ExitStatus::done;
}

constexpr const char *details = R"(Writes the messages of FILE with accents, in brackets and longer, for a look at
the program in a language that is not there yet: what shows without accents is
not translated, what shows without both brackets is cut off or put together.
Conversions and white space at the ends stay. The language is that of FILE with
the region XA.

Example:
  kelto pseudo en.xlf -o en-XA.xlf
)";

} // namespace

const Subcommand pseudoSubcommand = {"pseudo", "[OPTION...] FILE -o OUT", "Make a translation to test programs with",
                                     details, run};

} // namespace tool
