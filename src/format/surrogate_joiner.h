/**
 * How the surrogates of a UCS-2 text come together where the text grows by pieces and is written as UTF-8: a high one
 * that ends a piece is written as U+FFFD and waits, and a low one that begins the next makes one character of both.
 * U+0000 ends the text, as in a conversion of the whole.
 */
#ifndef KELTO_FORMAT_SURROGATE_JOINER_H
#define KELTO_FORMAT_SURROGATE_JOINER_H

#include "kelto.h"

#include <cstdint>
#include <unicode/utf16.h>

namespace kelto
{

class SurrogateJoiner
{
public:
    /** Hears of units that are no surrogates, for none of which one can wait; false where the text has ended. */
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

    /** A surrogate joins no other and was written as U+FFFD; a high one waits then. */
    void wait(UCS2 surrogate) noexcept
    {
        m_high = surrogate;
        m_state = U16_IS_LEAD(surrogate) ? State::waiting : State::open;
    }

    /** Whether a surrogate makes a character with the one that waits. */
    bool joins(UCS2 surrogate) const noexcept { return m_state == State::waiting && U16_IS_TRAIL(surrogate); }

    /** The character, after which none waits. */
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
