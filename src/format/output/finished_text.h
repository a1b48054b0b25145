/** The whole text of a conversion on its way to an encoder, in UCS-2 and terminated. */
#ifndef KELTO_FORMAT_OUTPUT_FINISHED_TEXT_H
#define KELTO_FORMAT_OUTPUT_FINISHED_TEXT_H

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "platform/scoped.h"

namespace kelto
{

class FinishedText
{
public:
    /**
     * Makes the text.
     * @param write  writes it, perhaps twice, as a format call: int(unsigned long *size, UCS2 *out).
     * @param most   its most units: a longer one is KT_ERR_CONVERSION_INVALID_ARGUMENT.
     * @return 0, what `write` returns, or KT_ERR_NO_MEMORY.
     */
    template <typename Write> int make(const Write &write, unsigned long most) noexcept
    {
        unsigned long units = usualUnits;
        if (const int result = write(&units, m_usual); result != KT_ERR_BUFFER_TOO_SMALL)
            return result;
        if (units > most)
            return KT_ERR_CONVERSION_INVALID_ARGUMENT;
        m_long = allocate<UCS2>(glbResHandle, ++units);
        return m_long != nullptr ? write(&units, m_long.get()) : KT_ERR_NO_MEMORY;
    }

    const UCS2 *units() const noexcept { return m_long != nullptr ? m_long.get() : m_usual; }

private:
    static constexpr size_t usualUnits = 256;
    UCS2 m_usual[usualUnits];
    TagBlock<UCS2> m_long;
};

} // namespace kelto

#endif
