#include "library/arguments.h"

#include "io/charset.h"
#include "io/terminal.h"
#include "text.h"

namespace tool
{
namespace
{

std::string countOf(size_t arguments)
{
    return arguments == 0 ? say(Text::noArguments) : say(counted(Text::countOfArguments, arguments));
}

} // namespace

Arguments::Arguments(const ParsedMessage &message, const std::vector<std::string> &words)
    : m_message(message), m_words(words), m_slots(message.format().slots())
{
    const std::string all = countOf(m_slots.size());
    for (size_t i = 0; i < m_slots.size() && i < words.size(); ++i)
        try
        {
            m_values.push_back(readValue(m_slots[i].code, words[i]));
            m_arguments.push_back(argumentOf(m_values.back()));
        }
        catch (const Unreadable &unreadable)
        {
            throw fault(i, unreadable.reason);
        }
    if (words.size() < m_slots.size())
        throw Failure(say(Text::argumentMissing, {words.size() + 1, purpose(m_slots[words.size()]), all}) +
                      nameOf(KT_ERR_INVALID_PARAMETER));
    if (words.size() > m_slots.size())
    {
        const std::string &word = words[m_slots.size()];
        const Text text = word.substr(0, 2) == "--" ? Text::optionIsSurplus : Text::argumentSurplus;
        throw Failure(say(text, {m_slots.size() + 1, terminal().quote(word), all}) + nameOf(KT_ERR_INVALID_PARAMETER));
    }
}

/** The fault of an argument, behind its number, its text, and its use. */
Failure Arguments::fault(size_t index, const std::string &what) const
{
    return Failure(
        say(Text::argumentFor, {index + 1, terminal().quote(m_words[index]), purpose(m_slots[index]), what}));
}

std::string Arguments::purpose(const KTSlot &slot) const
{
    std::string specification = terminal().quote(ucs2FromUtf8(m_message.specification(slot.position)));
    if (slot.role == KT_SLOT_VALUE)
        return specification;
    return say(slot.role == KT_SLOT_WIDTH ? Text::widthOf : Text::precisionOf, {specification});
}

/** Whether a conversion by itself, as the only one of a message, refuses its arguments. */
bool Arguments::isRefused(unsigned position) const
{
    std::vector<KTArgument> own;
    for (size_t i = 0; i < m_slots.size(); ++i)
        if (m_slots[i].position == position)
            own.push_back(m_arguments[i]);
    const std::string &specification = m_message.specification(position);
    const PreparedFormat alone(specification.substr(0, specification.find('[')) + "[1]", m_message.format().forms());
    std::string text;
    return alone.format(0, own, text) != 0;
}

Failure Arguments::whyRefused(int result) const
{
    for (size_t i = 0; i < m_slots.size(); ++i)
        if (m_slots[i].role == KT_SLOT_VALUE && isRefused(m_slots[i].position))
            return fault(i, result == KT_ERR_INVALID_PARAMETER ? say(Text::noDate) + nameOf(result)
                                                               : say(Text::refused, {meaningOf(result)}));
    return Failure(meaningOf(result));
}

} // namespace tool
