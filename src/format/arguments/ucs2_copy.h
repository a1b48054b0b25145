/**
 * A UTF-8 text in UCS-2, in one block of the memory tag: used for the format, and for the argument of every conversion
 * that writes a UTF-8 text.
 */
#ifndef KELTO_FORMAT_ARGUMENTS_UCS2_COPY_H
#define KELTO_FORMAT_ARGUMENTS_UCS2_COPY_H

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "platform/scoped.h"
#include "strconv/converter.h"

#include <cstring>

namespace kelto
{

class UCS2Copy
{
public:
    /** Converts a text; 0, KT_ERR_NO_MEMORY, or what the conversion returns. */
    int convert(const char *source) noexcept
    {
        const size_t bytes = std::strlen(source);
        m_units = allocate<UCS2>(glbResHandle, bytes + 1); // a text never has more units than bytes
        if (m_units == nullptr)
            return KT_ERR_NO_MEMORY;
        m_length = bytes + 1;
        return utf8ToUCS2(source, bytes, &m_length, m_units.get());
    }

    /** The text, terminated. */
    const UCS2 *units() const noexcept { return m_units.get(); }
    size_t length() const noexcept { return m_length; }

private:
    TagBlock<UCS2> m_units;
    size_t m_length = 0;
};

} // namespace kelto

#endif
