#include "format/formatters/text.h"

#include "format/arguments/slot_value.h"
#include "format/arguments/ucs2_copy.h"

#include <algorithm>

namespace
{

KTEncoder encoderFor(int flags, KTEncoder passThru1)
{
    return (flags & FLAG_ENCODE) != 0 ? passThru1 : nullptr;
}

/**
 * Pads a text that an encoder has put at `out`, and returns `status` where the padded text fits. The length counts also
 * where the encoder has failed.
 */
int padInPlace(unsigned long length, int width, int flags, int status, unsigned long *sizeInOut, UCS2 *out)
{
    const unsigned long room = *sizeInOut;
    const uint64_t missing = kelto::paddingTo(width, length);
    *sizeInOut = length + missing;
    if (!kelto::fits(length + missing, room))
        return KT_ERR_BUFFER_TOO_SMALL;
    if (missing == 0)
        return status;
    if ((flags & FLAG_MINUS) != 0)
    {
        std::fill_n(out + length, missing, kelto::padUnit(flags));
        return status;
    }
    std::copy_backward(out, out + length, out + length + missing);
    std::fill_n(out, missing, kelto::padUnit(flags));
    return status;
}

/** Writes a terminated text, or has it encoded: what "U" and "s" share once the text is UCS-2. */
int writeOrEncode(const UCS2 *text, size_t length, int width, int precision, int flags, KTEncoder passThru1,
                  unsigned long *sizeInOut, UCS2 *out)
{
    const KTEncoder encoder = encoderFor(flags, passThru1);
    if (encoder == nullptr)
    {
        kelto::Field field(sizeInOut, out);
        return kelto::writeText(field, {width, precision, flags}, kelto::UCS2Text{text, length});
    }
    unsigned long encodedLength = *sizeInOut;
    const int status = encoder(text, KT_ENCODE_UCS2, &encodedLength, out);
    return padInPlace(kelto::cutTo(precision, encodedLength), width, flags, status, sizeInOut, out);
}

} // namespace

int formatChar(const char * /*convName*/, int width, int /*precision*/, int flags, KTEncoder passThru1,
               void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const KTEncoder encoder = encoderFor(flags, passThru1);
    if (encoder == nullptr)
    {
        kelto::Field field(sizeInOut, out);
        return kelto::writeCharacter(field, {width, KT_ABSENT, flags}, kelto::readCharacter(*argSlot, flags));
    }
    unsigned long length = *sizeInOut;
    // Unlike with texts, every failure of the encoder is a matter of room.
    if (encoder(*argSlot, (flags & FLAG_l) != 0 ? KT_ENCODE_UNIT : KT_ENCODE_CHARACTER, &length, out) == 0)
        return padInPlace(length, width, flags, 0, sizeInOut, out);
    *sizeInOut = length + kelto::paddingTo(width, length);
    return KT_ERR_BUFFER_TOO_SMALL;
}

int formatUCS2Str(const char * /*convName*/, int width, int precision, int flags, KTEncoder passThru1,
                  void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const auto *const text = static_cast<const UCS2 *>(*argSlot);
    return writeOrEncode(text, KTUCS2strlen(text), width, precision, flags, passThru1, sizeInOut, out);
}

// Flattened for the same reason as the format calls: most messages have a text among their arguments.
[[gnu::flatten]] int formatUTF8Str(const char * /*convName*/, int width, int precision, int flags, KTEncoder passThru1,
                                   void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    kelto::UCS2Copy text;
    if (const int result = text.convert(static_cast<const char *>(*argSlot)))
        return result;
    return writeOrEncode(text.units(), text.length(), width, precision, flags, passThru1, sizeInOut, out);
}
