/**
 * The arguments of a format call, read from words of the command line as the conversions of the message ask. A word
 * that is missing, surplus or unreadable comes out as a Failure that names the argument and the conversion.
 */
#ifndef KELTO_TOOLS_ARGUMENTS_H
#define KELTO_TOOLS_ARGUMENTS_H

#include "failure.h"
#include "library/argument_value.h"
#include "library/parsed_message.h"

#include <deque>
#include <string>
#include <vector>

namespace tool
{

class Arguments
{
public:
    /** Each conversion takes the word of its '*' width, that of its '*' precision, then those of its values. */
    Arguments(const ParsedMessage &message, const std::vector<std::string> &words);

    const std::vector<KTArgument> &values() const { return m_arguments; }

    /** Why a format call with these arguments failed: the first conversion that refuses its own, else the result. */
    Failure whyRefused(int result) const;

private:
    Failure fault(size_t index, const std::string &what) const;
    std::string purpose(const KTSlot &slot) const;
    std::vector<KTArgument> ownOf(unsigned position) const;
    bool refuses(unsigned position, const std::vector<KTArgument> &own) const;
    Failure whyPairRefused(size_t index, int result) const;

    const ParsedMessage &m_message;
    const std::vector<std::string> &m_words;
    std::vector<KTSlot> m_slots;
    std::deque<Value> m_values; // a deque, so that they stay where they are
    std::vector<KTArgument> m_arguments;
};

} // namespace tool

#endif
