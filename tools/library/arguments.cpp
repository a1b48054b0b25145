#include "library/arguments.h"

#include "io/charset.h"
#include "io/terminal.h"
#include "text.h"

#include <string_view>

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

std::vector<KTArgument> Arguments::ownOf(unsigned position) const
{
    std::vector<KTArgument> own;
    for (size_t i = 0; i < m_slots.size(); ++i)
        if (m_slots[i].position == position)
            own.push_back(m_arguments[i]);
    return own;
}

/** Whether a conversion by itself, as the only one of a message, refuses arguments. */
bool Arguments::refuses(unsigned position, const std::vector<KTArgument> &own) const
{
    const std::string &specification = m_message.specification(position);
    const PreparedFormat alone(specification.substr(0, specification.find('[')) + "[1]", m_message.format().forms());
    std::string text;
    return alone.format(0, own, text) != 0;
}

/** Why a conversion of an amount and its currency or unit refuses them. A number has been read as one. */
Failure Arguments::whyPairRefused(size_t index, int result) const
{
    constexpr std::string_view known = "EUR";
    std::vector<KTArgument> own = ownOf(m_slots[index].position);
    own.back() = KT_UTF8N(known.data(), known.size());
    if (m_slots[index].code != KT_SLOT_DOUBLE && refuses(m_slots[index].position, own))
        return fault(index, say(Text::noAmount) + nameOf(result));
    return fault(index + 1, say(Text::noUnit) + nameOf(result));
}

Failure Arguments::whyRefused(int result) const
{
    for (size_t i = 0; i < m_slots.size(); ++i)
    {
        const unsigned position = m_slots[i].position;
        if (m_slots[i].role != KT_SLOT_VALUE || !refuses(position, ownOf(position)))
            continue;
        if (i + 1 < m_slots.size() && m_slots[i + 1].position == position)
            return whyPairRefused(i, result);
        return fault(i, result == KT_ERR_INVALID_PARAMETER ? say(Text::noDate) + nameOf(result)
                                                           : say(Text::refused, {meaningOf(result)}));
    }
    return Failure(meaningOf(result));
}

} // namespace tool
