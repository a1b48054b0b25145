#include "format/field.h"

namespace kelto
{

int writeNumber(const NumberText &number, int width, Padding padding, unsigned long *sizeInOut, UCS2 *out) noexcept
{
    const uint64_t length = number.prefix.count + number.leadingZeros + number.digits.count + number.trailingZeros;
    const uint64_t missing = paddingTo(width, length - number.uncounted);
    const auto paddingAt = [&](Padding place) { return padding == place ? missing : 0; };
    return writeField(sizeInOut, out, Ending::open, Fill{u' ', paddingAt(Padding::left)}, number.prefix,
                      Fill{u'0', number.leadingZeros + paddingAt(Padding::zeros)}, number.digits,
                      Fill{u'0', number.trailingZeros}, Fill{u' ', paddingAt(Padding::right)});
}

} // namespace kelto
