#include "format/field.h"

#include <algorithm>
#include <cstring>

namespace kelto
{

int Field::write(unsigned long *sizeInOut, UCS2 *out, Ending ending) const noexcept
{
    const unsigned long room = *sizeInOut;
    *sizeInOut = m_length;
    if (!fits(m_length, room))
        return KT_ERR_BUFFER_TOO_SMALL;
    for (const Piece *piece = m_pieces; piece != m_pieces + m_count; ++piece)
    {
        const size_t count = piece->count;
        switch (piece->kind)
        {
        case Kind::wide:
            std::memcpy(out, piece->source, count * sizeof(UCS2));
            break;
        case Kind::narrow:
            for (size_t i = 0; i < count; ++i)
                out[i] = static_cast<const unsigned char *>(piece->source)[i];
            break;
        case Kind::fill:
            std::fill_n(out, count, piece->unit);
            break;
        case Kind::reserved:
            break;
        }
        out += count;
    }
    if (ending == Ending::terminated)
        *out = 0;
    return 0;
}

int writeNumber(const NumberText &number, int width, Padding padding, unsigned long *sizeInOut, UCS2 *out) noexcept
{
    const uint64_t length = number.prefixLength + number.leadingZeros + number.digitCount + number.trailingZeros;
    const uint64_t missing = paddingTo(width, length);
    Field field;
    if (padding == Padding::left)
        field.fill(u' ', missing);
    if (number.prefixLength > 0)
        field.narrowText(number.prefix, number.prefixLength);
    field.fill(u'0', number.leadingZeros + (padding == Padding::zeros ? missing : 0));
    field.narrowText(number.digits, number.digitCount);
    field.fill(u'0', number.trailingZeros);
    if (padding == Padding::right)
        field.fill(u' ', missing);
    return field.write(sizeInOut, out, Ending::open);
}

} // namespace kelto
