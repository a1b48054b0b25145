// `kelto format`: a message with its arguments, and the help on formats.

#include "command_line.h"
#include "io/charset.h"
#include "io/input.h"
#include "io/output.h"
#include "io/terminal.h"
#include "library/arguments.h"
#include "library/language_conversions.h"
#include "library/message_file.h"
#include "library/parsed_message.h"
#include "library/selector.h"
#include "library/syntax_fault.h"
#include "library/variant_labels.h"
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

/** The message that the words select, and its name for the user. */
struct Chosen
{
    unsigned id;
    std::string label; // as "12[few]"; empty of a message that was asked for itself
};

/** Follows a message to the one that it selects with these words. */
Chosen choose(const MessageFile &file, unsigned id, const std::string &language, const Words &words)
{
    const PreparedFormat prepared(file.table(), id, language);
    if (prepared.result() != 0)
        throw Failure(describeMessageFault(file, id));
    if (!readSelector(file.message(id)).has_value())
        return {id, ""};
    // All variants take the same kinds of arguments, so the words can be read before it is known which one it is.
    unsigned first = id;
    while (const auto selector = readSelector(file.message(first)))
        for (unsigned place = 0; place < selector->rowLength(); ++place)
            if (file.find(selector->messageAt(place)) != nullptr)
            {
                first = selector->messageAt(place);
                break;
            }
    const ParsedMessage parsed(file.message(first), conversionsOf(language));
    const Arguments arguments(parsed, words);
    unsigned chosen = id;
    char *text = nullptr;
    const int result = KTSelectMessage(file.table(), &chosen, language.c_str(), arguments.values().data(),
                                       arguments.values().size(), &text);
    if (result != 0)
        throw Failure(meaningOf(result));
    if (text == nullptr)
        throw Failure(say(Text::noVariant) + nameOf(KT_ERR_INVALID_MSG_ID));
    return {chosen, VariantLabels(file).of(chosen)};
}

/** Whether a message needs the add-on, which is not there. */
bool lacksAddOn(const std::string &message)
{
    formTable *forms = nullptr;
    return !hasLanguageConversions() && KTGetVariantFormTable(&forms) == 0 &&
           PreparedFormat(message, forms).result() != 0;
}

std::u16string formatLine(const std::string &message, const std::string &language, bool tag, const Words &words)
{
    const ParsedMessage parsed(message, conversionsOf(language));
    if (lacksAddOn(message))
        throw Failure(say(Text::noAddOn));
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
    const std::string warning = say(counted(Text::countOfLost, lost, {terminal().showBytes(name)}));
    complain(isTerminals ? say(Text::utf8Hint, {warning}) : warning);
}

ExitStatus run(CommandLine &line)
{
    bool tag = false;
    bool isNumbered = false;
    std::string language;
    std::string charset = terminal().charset();
    line.flag("-t,--tag", tag, "Wrap dates, names, entry IDs and errors in tags, as <date>");
    line.option("-c,--charset", "NAME", charset, "The charset of the output; without it, that of the terminal");
    line.option("-l,--language", "NAME", language, "The language whose plural forms count; without it, the file's");
    line.flag("-n,--number", isNumbered, "Print the number of the message that is selected, and what it is for");
    const Words operands = line.operandsBehindOptions(fileAndId);
    if (operands.size() < fileAndId)
        throw line.misuse(say(operands.empty() ? Text::noFile : Text::noMessageId));
    requireCharset(charset);

    const unsigned id = readId(line, operands[1]);
    const Words words(operands.begin() + fileAndId, operands.end());
    const MessageFile file(operands[0]);
    const std::string subject = inputName(operands[0]) + ": ";
    file.message(id); // throws where there is none, and says which numbers there are
    std::string message = say(Text::messageSubject, {id});
    try
    {
        if (language.empty())
            language = file.language();
        const Chosen chosen = choose(file, id, language, words);
        if (!chosen.label.empty())
            message = say(Text::variantSubject, {chosen.id, chosen.label});
        const std::u16string text = formatLine(file.message(chosen.id), language, tag, words);
        if (isNumbered)
            print(std::to_string(chosen.id) + "\t" + chosen.label + "\t");
        printIn(charset, text);
    }
    catch (const OutputFailure &)
    {
        throw;
    }
    catch (const Failure &failure)
    {
        throw Failure(subject + message + ": " + failure.what());
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

A message that selects another by its arguments gives that one's text. number,
decimal, money, date and the others of libkelto-locale write as the language
does, dates in UTC; money and unit take two arguments.

Example: message 1 is "Hello %s[1], you have %u[2] new messages."
  kelto format en.xlf 1 Ada 7
)";

} // namespace

const Subcommand formatSubcommand = {"format", "[-t] [-n] [-l NAME] [-c NAME] FILE ID [ARG...]",
                                     "Format a message with arguments", details, run};

} // namespace tool
