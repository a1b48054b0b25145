/**
 * The text that a formatter of the caller's writes, in a buffer. The buffer has a few units. Where the formatter asks
 * for more, it is called again with a buffer as large as that, unless that is more than may be taken.
 */
#ifndef KELTO_FORMAT_OUTPUT_CALLED_TEXT_H
#define KELTO_FORMAT_OUTPUT_CALLED_TEXT_H

#include "format/formatters/layout.h"
#include "lifecycle/global_state.h"
#include "platform/scoped.h"

namespace kelto
{

class CalledText
{
public:
    /** The units that a text may have whatever room is left. */
    static constexpr unsigned long alwaysAllowed = 1UL << 16;

    /**
     * Has a text written, where one was not written before.
     * @param call  as in FormatOutput::appendCalled().
     * @param most  the units that may be taken from memory.
     * @return the formatter's failure, or KT_ERR_NO_MEMORY; 0 also where the text was not written.
     */
    template <typename Call> int take(const Call &call, const Layout &layout, unsigned long most) noexcept
    {
        const int result = run(call, layout);
        if (result != 0 || m_isWritten || isRefused() || m_count >= most)
            return result;
        m_room = m_count + 1;
        m_long = allocate<UCS2>(glbResHandle, m_room);
        m_units = m_long.get();
        return m_units != nullptr ? run(call, layout) : KT_ERR_NO_MEMORY;
    }

    bool isWritten() const noexcept { return m_isWritten; }

    /** Whether the formatter found too little room where there is more than it asks for. */
    bool isRefused() const noexcept { return !m_isWritten && m_count < m_room; }

    const UCS2 *units() const noexcept { return m_units; }

    /** The units of the text, or those that the formatter asked for. */
    unsigned long count() const noexcept { return m_count; }

private:
    template <typename Call> int run(const Call &call, const Layout &layout) noexcept
    {
        m_count = m_room;
        const int result = call(layout, &m_count, m_units);
        m_isWritten = result == 0 && m_count < m_room;
        return result == KT_ERR_BUFFER_TOO_SMALL ? 0 : result;
    }

    static constexpr unsigned long usualUnits = 256;
    UCS2 m_usual[usualUnits];
    TagBlock<UCS2> m_long;
    UCS2 *m_units = m_usual; // or those in m_long
    unsigned long m_room = usualUnits;
    unsigned long m_count = 0;
    bool m_isWritten = false;
};

} // namespace kelto

#endif
