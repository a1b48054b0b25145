#include "command_line.h"

#include "io/terminal.h"
#include "text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/core.h>

namespace tool
{
namespace
{

/** Help with the synopsis as the subcommand has it, its options as "-h, --help", and lines that fit a terminal. */
class HelpFormatter : public CLI::Formatter
{
public:
    explicit HelpFormatter(std::string usage) : m_usage(std::move(usage)) {}
    std::string make_usage(const CLI::App *, std::string) const override { return m_usage; }
    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option *> options) const override
    {
        return CLI::Formatter::make_group(group == "Options" ? helpText("options", group) : group, isPositional,
                                          options);
    }
    std::string make_option_name(const CLI::Option *option, bool) const override
    {
        std::string shortName = option->get_snames().empty() ? "  " : "-" + option->get_snames().front();
        if (option->get_lnames().empty())
            return shortName;
        return shortName + (option->get_snames().empty() ? "  " : ", ") + "--" + option->get_lnames().front();
    }

    std::string make_option_desc(const CLI::Option *option) const override
    {
        return wrapped(option->get_description(), terminalColumns - get_column_width());
    }

private:
    std::string m_usage;
};

/** The option that an error of the parser begins with: "--from: 1 required NAME missing", "raw was given ...". */
std::string optionIn(const CLI::ParseError &error)
{
    const std::string text = error.what();
    const std::string name = text.substr(0, text.find_first_of(":= "));
    return terminal().showBytes(name[0] == '-' ? name : (name.size() == 1 ? "-" : "--") + name);
}

bool isHelp(const std::string &word)
{
    return word == "-h" || word == "--help";
}

} // namespace

CommandLine::CommandLine(const Subcommand &subcommand, Words words)
    : m_app(std::make_unique<CLI::App>()), m_subcommand(subcommand), m_name(subcommand.name), m_words(std::move(words))
{
    m_app->set_help_flag("-h,--help");
    m_app->option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CommandLine::~CommandLine() = default;

// Only here is the help put into the language of the user: the other calls are not to look for it.
std::string CommandLine::help() const
{
    const auto about = [&](const char *what, const char *english) { return helpText(m_name + what, english); };
    m_app->description(about(" summary", m_subcommand.summary) + ".");
    m_app->formatter(std::make_shared<HelpFormatter>(fmt::format("{} {} {}\n", helpText("usage of", "Usage: kelto"),
                                                                 m_name, about(" synopsis", m_subcommand.synopsis))));
    m_app->footer(about(" details", m_subcommand.details));
    for (CLI::Option *const option : m_app->get_options())
    {
        const bool isLong = !option->get_lnames().empty();
        const std::string name = isLong ? "--" + option->get_lnames().front() : "-" + option->get_snames().front();
        option->description(option == m_app->get_help_ptr()
                                ? helpText("option help", "Print this help")
                                : about((" " + name).c_str(), option->get_description().c_str()));
        option->type_name(helpText("value " + option->get_type_name(), option->get_type_name()));
    }
    return m_app->help();
}

void CommandLine::flag(const std::string &name, bool &value, const std::string &help)
{
    m_app->add_flag(name, value, help)->disable_flag_override();
}

void CommandLine::option(const std::string &name, const std::string &valueName, std::string &value,
                         const std::string &help)
{
    m_app->add_option(name, value, help)->type_name(valueName);
}

void CommandLine::options(const std::string &name, const std::string &valueName, Words &values, const std::string &help)
{
    m_app->add_option(name, values, help)
        ->type_name(valueName)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// The operands are what the parser leaves over: a declared positional would take "[a]" apart as a list.
Words CommandLine::operands()
{
    parse();
    Words rest = m_app->remaining();
    const auto separator = std::find(rest.begin(), rest.end(), "--");
    refuseOptions(rest.begin(), separator);
    if (separator != rest.end())
        rest.erase(separator);
    return rest;
}

Words CommandLine::files()
{
    Words names = operands();
    if (names.empty())
        throw misuse(say(Text::noFile));
    if (std::count(names.begin(), names.end(), "-") > 1)
        throw misuse(say(Text::standardInputTwice));
    return names;
}

std::string CommandLine::onlyFile()
{
    const Words names = files();
    if (names.size() > 1)
        throw misuse(say(Text::moreThanOneFile));
    return names.front();
}

Words CommandLine::operandsBehindOptions(size_t fixedCount)
{
    m_app->prefix_command();
    parse();
    Words rest = m_app->remaining();
    const auto upTo = [&rest](size_t count) {
        return rest.begin() + static_cast<std::ptrdiff_t>(std::min(rest.size(), count));
    };
    refuseOptions(rest.begin(), upTo(1));
    const auto end = upTo(fixedCount + 1);
    const auto separator = std::find(rest.begin(), end, "--");
    if (separator != end)
        rest.erase(separator);
    return rest;
}

void CommandLine::requireAlone(const std::string &option) const
{
    const std::string shortForm = option.substr(1, 2);
    for (const std::string &word : m_words)
        if (word != option && word != shortForm)
            throw misuse(say(Text::surplusWord, {terminal().quote(word), option}));
}

// The parser takes the next word for the value of "--output=".
Words CommandLine::withEmptyValues() const
{
    Words words;
    bool mayBeOption = true;
    for (const std::string &word : m_words)
    {
        const std::string name = word.substr(0, word.find('='));
        const bool isBare = mayBeOption && word.size() == name.size() + 1;
        const CLI::Option *const option = isBare ? m_app->get_option_no_throw(name) : nullptr;
        const bool takesValue = option != nullptr && option->get_items_expected_max() > 0;
        words.push_back(takesValue ? name : word);
        if (takesValue)
            words.emplace_back();
        mayBeOption = mayBeOption && word != "--" && !(m_app->get_prefix_command() && word.substr(0, 1) != "-");
    }
    return words;
}

void CommandLine::requireValues() const
{
    for (const CLI::Option *const option : m_app->get_options())
        for (const std::string &value : option->results())
            if (value.empty() && option->get_items_expected_max() > 0)
                throw misuse(say(Text::optionNeedsValue, {option->get_name()}));
}

void CommandLine::parse()
{
    m_app->allow_extras();
    Words words = withEmptyValues();
    std::reverse(words.begin(), words.end());
    try
    {
        m_app->parse(words);
    }
    catch (const CLI::CallForHelp &)
    {
        const auto help = std::find_if(m_words.begin(), m_words.end(), isHelp);
        if (help != m_words.end() && help + 1 != m_words.end())
            throw misuse(say(Text::surplusWord, {terminal().quote(help[1]), *help}));
        throw HelpWanted();
    }
    catch (const CLI::ArgumentMismatch &error)
    {
        const std::string name = optionIn(error);
        const CLI::Option *const option = m_app->get_option_no_throw(name);
        const bool isFlag = option != nullptr && option->get_items_expected_max() == 0;
        throw misuse(say(isFlag ? Text::optionTakesNoValue : Text::optionNeedsValue, {name}));
    }
    catch (const CLI::ParseError &error)
    {
        throw misuse(terminal().showBytes(error.what()));
    }
    requireValues();
}

void CommandLine::refuseOptions(Words::const_iterator begin, Words::const_iterator end) const
{
    const auto isOption = [](const std::string &word) { return word.size() > 1 && word[0] == '-' && word != "--"; };
    const auto unknown = std::find_if(begin, end, isOption);
    if (unknown != end)
        throw misuse(say(Text::unknownOption, {terminal().quote(*unknown)}));
}

Failure CommandLine::misuse(const std::string &text) const
{
    return Failure(m_name + ": " + text + hint("kelto " + m_name + " --help"));
}

} // namespace tool
