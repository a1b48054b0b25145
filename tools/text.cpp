#include "text.h"

#include "prepared_format.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string_view>

namespace tool
{
namespace
{

struct English
{
    Text text;
    const char *format;
};

/** In the order of the numbers. */
constexpr English englishTexts[] = {
#define KELTO_TEXT(id, name, english) {Text::name, english},
#include "texts.inc"
#undef KELTO_TEXT
};

/** Null where there is no such text. */
const char *englishOf(Text text)
{
    const English *const end = std::end(englishTexts);
    const English *const row = std::lower_bound(std::begin(englishTexts), end, text,
                                                [](const English &a, Text wanted) { return a.text < wanted; });
    return row != end && row->text == text ? row->format : nullptr;
}

/** Where the message files of this program lie, from where the program lies. */
std::string messagesFolder()
{
    std::error_code error;
    return (std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / KELTO_MESSAGES).string();
}

/** The path of the message file in the language of the user; empty where there is none. */
std::string usersCatalog()
{
    size_t room = 0;
    const std::string folder = messagesFolder();
    if (KTFindCatalog(folder.c_str(), "kelto", nullptr, &room, nullptr) != KT_ERR_BUFFER_TOO_SMALL)
        return "";
    std::string path(++room, '\0');
    const bool isFound = KTFindCatalog(folder.c_str(), "kelto", nullptr, &room, path.data()) == 0;
    return isFound ? path.c_str() : "";
}

/**
 * The message file in the language of the user; without a message where there is none. It lives as long as the library.
 */
class UsersTexts
{
public:
    explicit UsersTexts(std::string path)
    {
        if (!path.empty())
            KTLoadMessages(path.data(), &m_table);
    }

    const char *message(unsigned id) const
    {
        char *text = nullptr;
        return m_table != nullptr && KTGetMessage(m_table, id, &text) == 0 ? text : nullptr;
    }

private:
    MessageTable *m_table = nullptr;
};

const char *usersMessage(unsigned id)
{
    static const UsersTexts theTexts(usersCatalog());
    return theTexts.message(id);
}

/** A text of the help, which lies beside the other texts where it is translated. */
const char *usersHelp(unsigned id)
{
    static const UsersTexts theTexts(std::filesystem::path(usersCatalog()).replace_filename("help.xlf").string());
    return theTexts.message(id);
}

struct HelpText
{
    unsigned id;
    std::string_view about;
};

constexpr HelpText helpTexts[] = {
#define KELTO_HELP(id, about) {id, about},
#include "helps.inc"
#undef KELTO_HELP
};

/** Nothing where there is no such format, or it asks for other values: that is how a bad translation shows. */
std::optional<std::string> formatted(const char *format, const std::vector<Shown> &values)
{
    if (format == nullptr)
        return std::nullopt;
    std::vector<KTArgument> arguments;
    arguments.reserve(values.size());
    for (const Shown &value : values)
        arguments.push_back(value.isNumber ? KT_UINT64(value.number)
                                           : KT_UTF8N(value.words.data(), value.words.size()));
    const PreparedFormat prepared(format);
    std::string text;
    return prepared.result() == 0 && prepared.format(0, arguments, text) == 0 ? std::optional(text) : std::nullopt;
}

/** A format of ours, which has no flags and no widths, without the library. */
std::string formattedPlainly(std::string_view format, const std::vector<Shown> &values)
{
    std::string result;
    for (size_t at = 0; at < format.size(); ++at)
    {
        if (format[at] != '%')
            result += format[at];
        else if (format[at + 1] == '%')
            result += format[at++];
        else
        {
            const size_t open = format.find('[', at);
            at = format.find(']', open);
            size_t position = 0;
            std::from_chars(format.data() + open + 1, format.data() + at, position);
            const Shown &value = values.at(position - 1);
            result += value.isNumber ? std::to_string(value.number) : value.words;
        }
    }
    return result;
}

/** The values of a phrase, those that are phrases put into words. */
std::vector<Shown> inWords(const std::vector<Shown> &values, std::string (*speak)(const Phrase &))
{
    std::vector<Shown> result = values;
    for (Shown &value : result)
        if (!value.phrase.empty())
            value = Shown(speak(value.phrase[0]));
    return result;
}

} // namespace

std::string say(const Phrase &phrase)
{
    const std::vector<Shown> values = inWords(phrase.values, say);
    const char *const english = englishOf(phrase.text);
    if (auto result = formatted(usersMessage(static_cast<unsigned>(phrase.text)), values))
        return *result;
    if (auto result = formatted(english, values))
        return *result;
    return formattedPlainly(english, values);
}

std::string say(Text text, const std::vector<Shown> &values)
{
    return say(Phrase{text, values});
}

std::string sayInEnglish(const Phrase &phrase)
{
    return formattedPlainly(englishOf(phrase.text), inWords(phrase.values, sayInEnglish));
}

Phrase counted(Text one, Text many, size_t count, const std::vector<Shown> &values)
{
    if (count == 1)
        return {one, values};
    std::vector<Shown> all{count};
    all.insert(all.end(), values.begin(), values.end());
    return {many, all};
}

Shown textNumbered(unsigned number, const char *otherwise, const std::vector<Shown> &values)
{
    const auto text = static_cast<Text>(number);
    if (englishOf(text) == nullptr)
        return otherwise;
    return Phrase{text, values};
}

std::string helpText(const std::string &about, const std::string &english)
{
    const auto *const row = std::find_if(std::begin(helpTexts), std::end(helpTexts),
                                         [&](const HelpText &text) { return text.about == about; });
    const char *const users = row != std::end(helpTexts) ? usersHelp(row->id) : nullptr;
    return users != nullptr ? users : english;
}

std::string resultText(int result)
{
    constexpr int resultsAbove = 8100;
    const Shown shown = textNumbered(static_cast<unsigned>(resultsAbove + result), KTResultText(result));
    return shown.phrase.empty() ? shown.words : say(shown.phrase[0]);
}

Shown problemShown(const KTProblem &problem)
{
    constexpr unsigned rulesAbove = 120;
    constexpr size_t longestSentence = 400;
    char sentence[longestSentence];
    size_t size = sizeof sentence;
    KTProblemText(&problem, &size, sentence);
    const bool hasPosition = problem.rule == KT_RULE_POSITION_REPEATED || problem.rule == KT_RULE_POSITION_GAP;
    return textNumbered(rulesAbove + static_cast<unsigned>(problem.rule), sentence,
                        hasPosition ? std::vector<Shown>{problem.position} : std::vector<Shown>{});
}

} // namespace tool
