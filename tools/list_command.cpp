#include "charset.h"
#include "command_line.h"
#include "message_file.h"
#include "output.h"
#include "terminal.h"

#include <fmt/core.h>

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

/** A file may have few messages with huge IDs: those found are shown while the others are looked for. */
constexpr unsigned idsWithoutFlush = 1U << 20;

void listMessages(const MessageFile &file)
{
    const unsigned highest = file.highestId();
    for (unsigned id = 1; id <= highest; ++id)
    {
        if (const std::optional<std::string> message = file.message(id))
            print(fmt::format("{}\t{}\n", id, terminal().show(withDoubledBackslashes(ucs2FromUtf8(*message)))));
        if (id % idsWithoutFlush == 0)
            flushOutput();
    }
}

ExitStatus run(CommandLine &line)
{
    bool raw = false;
    line.flag("--raw", raw, "Show placeholders as the file has them, without positions");
    const Words files = line.files();
    bool first = true;
    return forEachFile(files, [&](const std::string &path) {
        const MessageFile file(path, raw ? MessageFile::Placeholders::raw : MessageFile::Placeholders::positioned);
        if (files.size() > 1)
            print(fmt::format("{}{}:\n", first ? "" : "\n", terminal().showBytes(path)));
        first = false;
        listMessages(file);
    });
}

constexpr const char *details = R"(Prints number and text of every message, a tab between them. Line breaks, other
control characters and what the terminal cannot show appear as \n, \t, \u001B,
and a backslash as \\.

Example:
  kelto list --raw de.xlf
)";

} // namespace

const Subcommand listSubcommand = {"list", "[--raw] FILE...", "List the messages of files", details, run};

} // namespace tool
