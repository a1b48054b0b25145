/**
 * Joins the surrogates of a UCS-2 text that grows by pieces and is written as UTF-8. A high surrogate that ends a piece
 * is written as U+FFFD and waits; a low one that begins the next piece makes one character of both. U+0000 ends the
 * text, as in a conversion of the whole text.
 */
#ifndef KELTO_FORMAT_OUTPUT_SURROGATE_JOINER_H
#define KELTO_FORMAT_OUTPUT_SURROGATE_JOINER_H

#include "kelto.h"

#include <cstdint>
#include <unicode/utf16.h>

namespace kelto
{

class SurrogateJoiner
{
public:
    /** Takes note of units that are no surrogates: none waits any more. @return false where the text has ended. */
    bool goOn(uint64_t count) noexcept
    {
        if (m_state == State::open)
            return true;
        if (m_state == State::waiting && count > 0)
            m_state = State::open;
        return m_state != State::ended;
    }

    bool hasEnded() const noexcept { return m_state == State::ended; }
    void end() noexcept { m_state = State::ended; }

    /** Takes note of a surrogate that joins no other and was written as U+FFFD. A high one waits from now on. */
    void wait(UCS2 surrogate) noexcept
    {
        m_high = surrogate;
        m_state = U16_IS_LEAD(surrogate) ? State::waiting : State::open;
    }

    /** Whether a surrogate makes one character with the waiting one. */
    bool joins(UCS2 surrogate) const noexcept { return m_state == State::waiting && U16_IS_TRAIL(surrogate); }

    /** Joins the waiting surrogate and a low one to their character; none waits any more. */
    UChar32 join(UCS2 low) noexcept
    {
        m_state = State::open;
        return U16_GET_SUPPLEMENTARY(m_high, low);
    }

private:
    enum class State : uint8_t
    {
        open,
        waiting, /**< m_high does */
        ended
    };

    State m_state = State::open;
    UCS2 m_high = 0;
};

} // namespace kelto

#endif
