/**
 * The arguments of a format call, read from words of the command line as the conversions of the message ask. A word that
 * is missing, surplus or unreadable comes out as a Failure that names the argument and the conversion.
 */
#ifndef KELTO_TOOLS_ARGUMENTS_H
#define KELTO_TOOLS_ARGUMENTS_H

#include "argument_value.h"
#include "failure.h"
#include "parsed_message.h"

#include <deque>
#include <string>
#include <vector>

namespace tool
{

class Arguments
{
public:
    /** Each conversion takes the word of its '*' width, that of its '*' precision, then those of its values. */
    Arguments(const std::vector<Conversion> &conversions, const std::vector<std::string> &words);

    /** For KTvpFormatString(), ended by null. */
    void **pointers() { return m_pointers.data(); }

    /** Why a format call with these arguments failed: the first conversion that refuses its own, else the result. */
    Failure whyRefused(int result);

private:
    enum class Role
    {
        width,
        precision,
        value
    };

    struct Slot
    {
        const Conversion *conversion;
        Role role;
        int type; // of a value, as in KTFormatter::argTypes
    };

    void addSlots(const Conversion &conversion);
    static Value read(const Slot &slot, const std::string &word);
    Failure fault(size_t index, const std::string &what) const;
    static std::string purpose(const Slot &slot);

    std::vector<Slot> m_slots;
    const std::vector<std::string> &m_words;
    std::deque<Value> m_values; // which stay where they are
    std::vector<void *> m_pointers;
};

} // namespace tool

#endif
