/**
 * A text of bytes that is put together in a caller's buffer of any capacity, none included, and keeps the size
 * protocol: in, the capacity with the terminator; out, the length without it, also where it did not fit.
 */
#ifndef KELTO_STRCONV_BOUNDED_TEXT_H
#define KELTO_STRCONV_BOUNDED_TEXT_H

#include "kelto.h"

#include <cstddef>
#include <string_view>

namespace kelto
{

class BoundedText
{
public:
    BoundedText(char *out, size_t capacity) noexcept : m_out(out), m_capacity(capacity) {}

    void append(std::string_view piece) noexcept
    {
        if (m_length < m_capacity)
            piece.copy(m_out + m_length, m_capacity - m_length);
        m_length += piece.size();
    }

    /** Ends the text, or empties the buffer where it does not fit. @return 0 or KT_ERR_BUFFER_TOO_SMALL. */
    int finish(size_t *size) noexcept
    {
        const bool fits = m_length < m_capacity;
        if (m_capacity > 0)
            m_out[fits ? m_length : 0] = '\0';
        *size = m_length;
        return fits ? 0 : KT_ERR_BUFFER_TOO_SMALL;
    }

private:
    char *m_out;
    size_t m_capacity;
    size_t m_length = 0;
};

} // namespace kelto

#endif
