#include "arguments.h"

#include "terminal.h"
#include "text.h"

namespace tool
{
namespace
{

constexpr int lastArgumentType = 7; // codes above take no argument

std::string countOf(size_t arguments)
{
    return arguments == 0 ? say(Text::noArguments) : sayCount(Text::oneArgument, Text::manyArguments, arguments);
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
        catch (const Unreadable &unreadable)
        {
            throw fault(i, unreadable.reason);
        }
    if (words.size() < m_slots.size())
        throw Failure(
            say(Text::argumentMissing, {words.size() + 1, purpose(m_slots[words.size()]), countOf(m_slots.size())}) +
            nameOf(KT_ERR_INVALID_PARAMETER));
    if (words.size() > m_slots.size())
    {
        const std::string &word = words[m_slots.size()];
        throw Failure(say(word.substr(0, 2) == "--" ? Text::optionIsSurplus : Text::argumentSurplus,
                          {m_slots.size() + 1, terminal().quote(word), countOf(m_slots.size())}) +
                      nameOf(KT_ERR_INVALID_PARAMETER));
    }
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

/** What is wrong with an argument, behind its number, its text, and what it is for. */
Failure Arguments::fault(size_t index, const std::string &what) const
{
    return Failure(
        say(Text::argumentFor, {index + 1, terminal().quote(m_words[index]), purpose(m_slots[index]), what}));
}

std::string Arguments::purpose(const Slot &slot)
{
    std::string written = terminal().quote(slot.conversion->written);
    if (slot.role == Role::value)
        return written;
    return say(slot.role == Role::width ? Text::widthOf : Text::precisionOf, {written});
}

// A formatter that is offered no room only measures, or says what it refuses.
Failure Arguments::whyRefused(int result)
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
            return fault(i, say(Text::noDate) + nameOf(result));
        return fault(i, say(Text::refused, {meaningOf(result)}));
    }
    return Failure(meaningOf(result));
}

} // namespace tool
