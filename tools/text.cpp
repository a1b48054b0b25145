#include "text.h"

#include "kelto.h"

#include <charconv>
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

std::string plainly(const Shown &value)
{
    return value.isNumber ? std::to_string(value.number) : value.text;
}

/** A format of ours, which has no flags and no widths, without the library. */
std::string formattedPlainly(std::string_view format, const std::vector<Shown> &values)
{
    std::string result;
    for (size_t at = 0; at < format.size(); ++at)
    {
        const size_t open = format.find('[', at);
        size_t position = 0;
        if (format[at] != '%')
            result += format[at];
        else if (format[at + 1] == '%')
            result += format[at++];
        else if (std::from_chars(format.data() + open + 1, format.data() + format.size(), position).ec == std::errc())
        {
            result += plainly(values.at(position - 1));
            at = format.find(']', open);
        }
    }
    return result;
}

} // namespace

std::string say(Text text, const std::vector<Shown> &values)
{
    return formattedPlainly(englishOf(text), values);
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
    return KTResultText(result);
}

} // namespace tool
