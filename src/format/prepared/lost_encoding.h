/**
 * Whether a translation leaves out an encoder. The author of the reference does not trust the arguments that it writes
 * in encoded regions. A translation that writes such an argument elsewhere lets it through as it is.
 */
#ifndef KELTO_FORMAT_PREPARED_LOST_ENCODING_H
#define KELTO_FORMAT_PREPARED_LOST_ENCODING_H

#include "format/prepared/prepared_format.h"

namespace kelto
{

/** Bits that tell how a conversion writes the argument of a slot. */
enum SlotEncoding : uint8_t
{
    slotIsEncoded = 1, /**< through the encoder */
    slotIsFree = 2     /**< as the text that it is */
};

/** Stores the bits of each slot; the slot of a '*' has none. @param encodings  room for the bits of all slots. */
void noteEncodings(const KTPreparedFormat &format, uint8_t *encodings) noexcept;

/**
 * The first slot, from 0, whose encoding is lost, in any variant; the reference's number of slots where there is none.
 */
uint32_t findLostEncoding(const KTPreparedFormat &format, const KTPreparedFormat &reference) noexcept;

} // namespace kelto

#endif
