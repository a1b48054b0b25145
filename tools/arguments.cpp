#include "arguments.h"

#include "failure.h"
#include "terminal.h"

#include <fmt/core.h>

namespace tool
{
namespace
{

constexpr int lastArgumentType = 7; // codes above take no argument

std::string countOf(size_t arguments)
{
    if (arguments == 0)
        return "no arguments";
    return arguments == 1 ? "1 argument" : fmt::format("{} arguments", arguments);
}

bool isDate(const KTParameter &parameter)
{
    return parameter.type == CONV_DT || parameter.type == CONV_D || parameter.type == CONV_T;
}

} // namespace

Arguments::Arguments(const std::vector<Conversion> &conversions, const std::vector<std::string> &words) : m_words(words)
{
    for (const Conversion &conversion : conversions)
        if (!conversion.isMarker())
            addSlots(conversion);
    for (size_t i = 0; i < m_slots.size() && i < words.size(); ++i)
        try
        {
            m_values.push_back(read(m_slots[i], words[i]));
            m_pointers.push_back(pointerTo(m_values.back()));
        }
        catch (const Unreadable &fault)
        {
            throw Failure(fmt::format("{} {}", name(i), fault.reason));
        }
    if (words.size() < m_slots.size())
        throw Failure(fmt::format("argument {} is missing, for {}: the message takes {}{}", words.size() + 1,
                                  purpose(m_slots[words.size()]), countOf(m_slots.size()),
                                  nameOf(KT_ERR_INVALID_PARAMETER)));
    if (words.size() > m_slots.size())
        throw Failure(
            fmt::format("argument {} {} is surplus: the message takes {}{}{}", m_slots.size() + 1,
                        terminal().quote(words[m_slots.size()]), countOf(m_slots.size()),
                        words[m_slots.size()].substr(0, 2) == "--" ? ", and options stand in front of the file" : "",
                        nameOf(KT_ERR_INVALID_PARAMETER)));
    m_pointers.push_back(nullptr);
}

void Arguments::addSlots(const Conversion &conversion)
{
    if (conversion.takesWidth())
        m_slots.push_back({&conversion, Role::width, 0});
    if (conversion.takesPrecision())
        m_slots.push_back({&conversion, Role::precision, 0});
    for (const int *type = conversion.parameter.formatter->argTypes; *type != 0; ++type)
        if (*type <= lastArgumentType)
            m_slots.push_back({&conversion, Role::value, *type});
}

Value Arguments::read(const Slot &slot, const std::string &word)
{
    return slot.role == Role::value ? readValue(slot.type, slot.conversion->parameter.flags, word) : readStar(word);
}

/** The argument as diagnostics name it: its number, its text, what it is for. */
std::string Arguments::name(size_t index) const
{
    return fmt::format("argument {} {}, for {},", index + 1, terminal().quote(m_words[index]), purpose(m_slots[index]));
}

std::string Arguments::purpose(const Slot &slot)
{
    const char *const what = slot.role == Role::width       ? "the width of "
                             : slot.role == Role::precision ? "the precision of "
                                                            : "";
    return what + terminal().quote(slot.conversion->written);
}

// A formatter that is offered no room only measures, or says what it refuses.
std::string Arguments::whyRefused(int result)
{
    for (size_t i = 0; i < m_slots.size(); ++i)
    {
        if (m_slots[i].role != Role::value)
            continue;
        const KTParameter &parameter = m_slots[i].conversion->parameter;
        const KTFormatter &formatter = *parameter.formatter;
        unsigned long room = 0;
        UCS2 nothing[1];
        const int answer =
            formatter.format(formatter.name, -1, -1, parameter.flags, nullptr, nullptr, &m_pointers[i], &room, nothing);
        if (answer != result)
            continue;
        if (isDate(parameter))
            return fmt::format("{} is no date: seconds since 1970, or a time stamp as 2006-05-17'T08:09:10Z{}", name(i),
                               nameOf(result));
        return fmt::format("{} is refused: {}", name(i), meaningOf(result));
    }
    return meaningOf(result);
}

} // namespace tool
