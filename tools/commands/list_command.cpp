// `kelto list`: the messages of files.

#include "command_line.h"
#include "io/charset.h"
#include "io/input.h"
#include "io/output.h"
#include "io/terminal.h"
#include "library/message_file.h"
#include "library/variant_labels.h"

namespace tool
{
namespace
{

/** The text with its backslashes doubled, as a message file writes them: what is single then is an escape of ours. */
std::u16string withDoubledBackslashes(const std::u16string &text)
{
    std::u16string doubled;
    doubled.reserve(text.size());
    for (const char16_t unit : text)
        doubled.append(unit == u'\\' ? 2 : 1, unit);
    return doubled;
}

void listMessages(const MessageFile &file, const std::string &language)
{
    const VariantLabels labels(file);
    file.forEachMessage([&](unsigned id, const std::string &message) {
        const std::string label = labels.withNumbers(id, language.empty() ? file.language() : language);
        print(std::to_string(id) + "\t" + terminal().show(withDoubledBackslashes(ucs2FromUtf8(message))) +
              (label.empty() ? "" : "\t" + label) + "\n");
    });
}

ExitStatus run(CommandLine &line)
{
    bool raw = false;
    std::string language;
    line.flag("-r,--raw", raw, "Show placeholders as the file has them, without positions");
    line.option("-l,--language", "NAME", language, "The language whose plural forms count; without it, the file's");
    const Words files = line.files();
    bool first = true;
    return forEachFile(files, [&](const std::string &path) {
        const MessageFile file(path, raw ? Placeholders::raw : Placeholders::positioned);
        if (files.size() > 1)
            printText((first ? "" : "\n") + inputName(path) + ":\n");
        first = false;
        listMessages(file, language);
    });
}

constexpr const char *details = R"(Prints number and text of every message, a tab between them. Line breaks, other
control characters and what the terminal cannot show appear as \n, \t, \u001B,
and a backslash as \\. Behind a message that another selects stand one more tab
and what it is for, as 12[few 2-4, 22-24]. For FILE '-' is standard input.

Example:
  kelto list -r de.xlf
)";

} // namespace

const Subcommand listSubcommand = {"list", "[-r] [-l NAME] FILE...", "List the messages of files", details, run};

} // namespace tool
