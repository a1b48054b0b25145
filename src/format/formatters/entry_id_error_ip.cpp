#include "format/formatters/entry_id_error_ip.h"

#include "format/arguments/slot_value.h"
#include "format/arguments/ucs2_copy.h"

#include <cstring>

namespace
{

/** The entry ID: the low 32 bits of a longer argument, all bits of a shorter one. */
uint32_t readEntryId(const void *slot, int flags)
{
    uint32_t value = 0;
    std::memcpy(&value, slot,
                kelto::integerSize(flags) == kelto::IntegerSize::bits16 ? sizeof(uint16_t) : sizeof(uint32_t));
    return value;
}

} // namespace

int formatEID(const char * /*convName*/, int /*width*/, int /*precision*/, int flags, KTEncoder /*passThru1*/,
              void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    kelto::Field field(sizeInOut, out);
    return kelto::writeEntryId(field, flags, readEntryId(*argSlot, flags));
}

int formatError(const char * /*convName*/, int /*width*/, int /*precision*/, int flags, KTEncoder /*passThru1*/,
                void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    kelto::UCS2Copy text;
    if (const int result = text.convert(static_cast<const char *>(*argSlot)))
        return result;
    kelto::Field field(sizeInOut, out);
    return kelto::writeError(field, flags, kelto::UCS2Text{text.units(), text.length()});
}

// An address takes its place among the arguments and contributes no text. Unlike other empty texts, it fits where there
// is no room at all.
int formatIP(const char * /*convName*/, int /*width*/, int /*precision*/, int /*flags*/, KTEncoder /*passThru1*/,
             void * /*passThru2*/, void ** /*argSlot*/, unsigned long *sizeInOut, UCS2 * /*out*/)
{
    *sizeInOut = 0;
    return 0;
}
