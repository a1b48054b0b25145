#include "bilingual/message_parts.h"

#include "check/reading/parsed_file.h"
#include "check/texts/formats.h"
#include "check/texts/resolved_text.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::bilingual
{
namespace
{

using check::Format;
using check::Range;

/** The parts of a text whose placeholders stand at these places, in ascending order. */
Parts cut(const std::string &message, const std::vector<Range> &placeholders)
{
    Parts parts;
    size_t at = 0;
    const auto add = [&](size_t end, bool isPlaceholder) {
        if (end > at)
            parts.push_back({isPlaceholder, message.substr(at, end - at)});
        at = std::max(at, end);
    };
    for (const Range &place : placeholders)
    {
        add(place.begin, false);
        add(place.end, true);
    }
    add(message.size(), false);
    return parts;
}

Parts divided(const std::string &message, formTable *table, bool isRough)
{
    std::vector<Range> places;
    if (message.find('%') != std::string::npos)
    {
        const Format format = check::parseFormat(message, table);
        if (format.isAccepted || isRough)
            for (const check::Conversion &conversion : format.conversions)
                places.push_back(conversion.place);
        if (isRough)
            for (const check::FormatFault &fault : format.faults)
                if (!fault.isLone)
                    places.push_back(fault.place);
        std::sort(places.begin(), places.end(), [](const Range &a, const Range &b) { return a.begin < b.begin; });
    }
    return cut(message, places);
}

} // namespace

Parts partsOf(const std::string &message, formTable *table)
{
    return divided(message, table, false);
}

Parts roughPartsOf(const std::string &message, formTable *table)
{
    return divided(message, table, true);
}

std::string textOf(const Parts &parts)
{
    std::string text;
    for (const Part &part : parts)
        text += part.text;
    return text;
}

std::string escaped(std::string_view text)
{
    constexpr std::string_view meant = "\\\t\r\n";
    constexpr std::string_view written = "\\trn";
    std::string result;
    for (const char byte : text)
    {
        const size_t row = meant.find(byte);
        if (row != std::string_view::npos)
            result += '\\';
        result += row != std::string_view::npos ? written[row] : byte;
    }
    return result;
}

std::string unescaped(std::string_view text)
{
    return std::string(check::ResolvedText(text).text());
}

} // namespace tool::bilingual
