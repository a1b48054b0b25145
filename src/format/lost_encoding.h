/**
 * Whether a format that stands in for another one leaves out an encoder: an argument that the reference writes in an
 * encoded region is one that its author takes for foreign, and a translation that writes it elsewhere lets it through
 * as it is.
 */
#ifndef KELTO_FORMAT_LOST_ENCODING_H
#define KELTO_FORMAT_LOST_ENCODING_H

#include "format/prepared.h"

namespace kelto
{

/** How a conversion writes the argument of a slot; bits. */
enum SlotEncoding : uint8_t
{
    slotIsEncoded = 1, /**< through the encoder */
    slotIsFree = 2     /**< as the text that it is */
};

/** Notes the bits of each slot; none for a '*'. @param encodings  room for them. */
void noteEncodings(const KTPreparedFormat &format, uint8_t *encodings) noexcept;

/**
 * The first slot, from 0, whose encoding is lost, in any variant; the reference's number of slots where there is none.
 */
uint32_t findLostEncoding(const KTPreparedFormat &format, const KTPreparedFormat &reference) noexcept;

} // namespace kelto

#endif
