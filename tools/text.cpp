#include "text.h"

#include "prepared_format.h"

#include <charconv>
#include <filesystem>
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

constexpr English englishTexts[] = {
#define KELTO_TEXT(id, name, english) {Text::name, english},
#include "texts.inc"
#undef KELTO_TEXT
};

const char *englishOf(Text text)
{
    for (const English &row : englishTexts)
        if (row.text == text)
            return row.format;
    return "";
}

/** Where the message files of this program lie, from where the program lies. */
std::string messagesFolder()
{
    std::error_code error;
    return (std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / KELTO_MESSAGES).string();
}

/**
 * The message file in the language of the user; without a message where there is none. It lives as long as the library.
 */
class UsersTexts
{
public:
    UsersTexts()
    {
        size_t room = 0;
        const std::string folder = messagesFolder();
        if (KTFindCatalog(folder.c_str(), "kelto", nullptr, &room, nullptr) != KT_ERR_BUFFER_TOO_SMALL)
            return;
        std::string path(++room, '\0');
        if (KTFindCatalog(folder.c_str(), "kelto", nullptr, &room, path.data()) == 0)
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
    static const UsersTexts theTexts;
    return theTexts.message(id);
}

/** Nothing where there is no such format, or it asks for other values: that is how a bad translation shows. */
std::optional<std::string> formatted(const char *format, const std::vector<Shown> &values)
{
    if (format == nullptr)
        return std::nullopt;
    std::vector<KTArgument> arguments;
    arguments.reserve(values.size());
    for (const Shown &value : values)
        arguments.push_back(value.isNumber ? KT_UINT64(value.number) : KT_UTF8N(value.text.data(), value.text.size()));
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
            result += value.isNumber ? std::to_string(value.number) : value.text;
        }
    }
    return result;
}

} // namespace

std::string say(Text text, const std::vector<Shown> &values)
{
    const char *const english = englishOf(text);
    if (auto result = formatted(usersMessage(static_cast<unsigned>(text)), values))
        return *result;
    if (auto result = formatted(english, values))
        return *result;
    return formattedPlainly(english, values);
}

std::string sayCount(Text one, Text many, size_t count, const std::vector<Shown> &values)
{
    if (count == 1)
        return say(one, values);
    std::vector<Shown> all{count};
    all.insert(all.end(), values.begin(), values.end());
    return say(many, all);
}

std::string resultText(int result)
{
    constexpr int resultsAbove = 8100;
    const char *const text = usersMessage(static_cast<unsigned>(resultsAbove + result));
    return text != nullptr ? text : KTResultText(result);
}

std::string problemText(const KTProblem &problem)
{
    constexpr unsigned rulesAbove = 120;
    std::vector<Shown> values;
    if (problem.position != 0)
        values.emplace_back(problem.position);
    if (auto text = formatted(usersMessage(rulesAbove + static_cast<unsigned>(problem.rule)), values))
        return *text;
    size_t size = 0;
    KTProblemText(&problem, &size, nullptr);
    std::string text(++size, '\0');
    KTProblemText(&problem, &size, text.data());
    text.resize(size);
    return text;
}

} // namespace tool
