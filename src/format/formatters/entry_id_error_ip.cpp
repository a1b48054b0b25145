#include "format/converted_text.h"
#include "format/field.h"
#include "format/formatters/integer.h"
#include "format/formatters/tags.h"

#include <cstring>

namespace
{

constexpr size_t entryIdDigits = 8;

/** An entry ID has 32 bits: of a longer argument the low ones, of a shorter one all that there are. */
uint32_t readEntryId(const void *slot, int flags)
{
    uint32_t value = 0;
    std::memcpy(&value, slot, (flags & FLAG_h) != 0 ? sizeof(uint16_t) : sizeof(uint32_t));
    return value;
}

} // namespace

int formatEID(const char * /*convName*/, int /*width*/, int /*precision*/, int flags, KTEncoder /*passThru1*/,
              void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const uint32_t value = readEntryId(*argSlot, flags);
    const kelto::IntegerText digits(CONV_X, 0, &value);
    return kelto::writeTagged(flags, eid_tag_o, eid_tag_c, sizeInOut, out, kelto::Ending::open,
                              kelto::NarrowText{"0X", 2}, kelto::Fill{u'0', entryIdDigits - digits.length()},
                              kelto::NarrowText{digits.begin(), digits.length()});
}

int formatError(const char * /*convName*/, int /*width*/, int /*precision*/, int flags, KTEncoder /*passThru1*/,
                void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    kelto::ConvertedText text;
    if (const int result = text.convert(static_cast<const char *>(*argSlot)))
        return result;
    return kelto::writeTagged(flags, error_tag_o, error_tag_c, sizeInOut, out, kelto::Ending::terminated,
                              kelto::Text{text.units(), text.length()});
}

// An address takes its place among the arguments and contributes no text. Unlike other empty texts, it fits where there
// is no room at all.
int formatIP(const char * /*convName*/, int /*width*/, int /*precision*/, int /*flags*/, KTEncoder /*passThru1*/,
             void * /*passThru2*/, void ** /*argSlot*/, unsigned long *sizeInOut, UCS2 * /*out*/)
{
    *sizeInOut = 0;
    return 0;
}
