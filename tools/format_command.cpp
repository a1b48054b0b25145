#include "arguments.h"
#include "charset.h"
#include "command_line.h"
#include "message_file.h"
#include "output.h"
#include "parsed_message.h"
#include "terminal.h"
#include "text.h"

#include <charconv>

namespace tool
{
namespace
{

constexpr size_t fileAndId = 2;
constexpr unsigned highestPossibleId = 0x7FFFFFFF;

unsigned readId(const CommandLine &line, const std::string &word)
{
    unsigned id = 0;
    const char *const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, id);
    if (stop != end || error != std::errc())
        throw line.misuse(say(Text::badMessageId, {terminal().quote(word), highestPossibleId}));
    return id;
}

std::u16string formatLine(const std::string &message, bool tag, const Words &words)
{
    const ParsedMessage parsed(message);
    const Arguments arguments(parsed, words);
    std::string text;
    if (const int result = parsed.format().format(tag ? KT_TAG : 0, arguments.values(), text))
        throw arguments.whyRefused(result);
    return ucs2FromUtf8(text) + u'\n';
}

void printIn(const std::string &charset, const std::u16string &text)
{
    print(multiByte(charset, forOutput(charset, text)));
    const size_t lost = lossOfEncoding(charset, text).characters;
    if (lost == 0)
        return;
    const bool isTerminals = charset == terminal().charset();
    const std::string name = isTerminals ? terminal().charsetName() : charset;
    const std::string warning = say(counted(Text::oneLost, Text::manyLost, lost, {terminal().showBytes(name)}));
    complain(isTerminals ? say(Text::utf8Hint, {warning}) : warning);
}

ExitStatus run(CommandLine &line)
{
    bool tag = false;
    std::string charset = terminal().charset();
    line.flag("-t,--tag", tag, "Wrap dates, names, entry IDs and errors in tags, as <date>");
    line.option("-c,--charset", "NAME", charset, "The charset of the output; without it, that of the terminal");
    const Words operands = line.operandsBehindOptions(fileAndId);
    if (operands.size() < fileAndId)
        throw line.misuse(say(operands.empty() ? Text::noFile : Text::noMessageId));
    requireCharset(charset);

    const unsigned id = readId(line, operands[1]);
    const Words words(operands.begin() + fileAndId, operands.end());
    const MessageFile file(operands[0]);
    const std::string message = file.message(id);
    const std::string subject = inputName(operands[0]) + ": " + say(Text::messageSubject, {id});
    try
    {
        printIn(charset, formatLine(message, tag, words));
    }
    catch (const OutputFailure &)
    {
        throw;
    }
    catch (const Failure &failure)
    {
        throw Failure(subject + ": " + failure.what());
    }
    return ExitStatus::done;
}

constexpr const char *details = R"(Prints message ID of FILE. The arguments follow in the order of their positions
in the message, not of their places; a '*' takes an argument of its own, before
the value. Options stand in front of FILE: an argument may begin with '-'. For
FILE '-' is standard input.

  d u o x X EID  a whole number, as 12, -7 or 0x1F
  f              a number, as 12.5, -3 or 1e9
  c              one character
  s U E IP       a text
  DND DNS        a name, as alice.staff.corp, corp/staff/alice, CN=alice,O=corp
  DT D T         seconds since 1970, or a time stamp as 2006-05-17'T08:09:10Z

Example: message 1 is "Hello %s[1], you have %u[2] new messages."
  kelto format en.xlf 1 Ada 7
)";

} // namespace

const Subcommand formatSubcommand = {"format", "[-t] [-c NAME] FILE ID [ARG...]", "Format a message with arguments",
                                     details, run};

} // namespace tool
