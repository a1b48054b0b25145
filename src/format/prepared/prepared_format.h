/**
 * A prepared format: what the check of a format has found, kept in one block. It has steps in the order of the text:
 * each is some literal text, kept in both encodings, and the conversion behind it. And it has the slots of the
 * conversions, in the order in which arguments are passed.
 */
#ifndef KELTO_FORMAT_PREPARED_PREPARED_FORMAT_H
#define KELTO_FORMAT_PREPARED_PREPARED_FORMAT_H

#include "format/formatters/layout.h"
#include "platform/scoped.h"

#include <cstddef>
#include <memory>

namespace kelto
{

/** Who writes a conversion: a family of the library, or the function in its record. */
enum class Writer : uint8_t
{
    none, /**< nothing, as behind the last literal text */
    called,
    signedInteger,
    unsignedInteger,
    octHex,
    floatingPoint,
    character,
    utf8Text,
    ucs2Text,
    dateTime,
    name,
    entryId,
    error,
    nothing /**< takes its argument */
};

struct PreparedStep
{
    size_t literalBytes, literalUnits; /**< of the text before the conversion */
    const KTFormatter *formatter;
    KTUTF8FormatFunction utf8Format; /**< of a called one: what writes UTF-8 itself, or null; else not set */
    Layout layout;                   /**< KT_FROM_ARGUMENTS where a slot holds the width or precision */
    uint32_t firstSlot;              /**< of the conversion, a '*' included */
    Writer writer;
    bool isOpen; /**< whether a call has more to ask than the value: what a '*' is, or the encoder */
    bool isBare; /**< whether nothing lays the value out: no width, no precision, no flag but its size */
};

struct FormatVerdict;
struct PreparedVariants;

/**
 * The number of slots in the head of a format that chooses among variants: no call has as many arguments, so that the
 * calls of all others need not ask which kind they are for.
 */
constexpr uint32_t slotsOfVariants = UINT32_MAX;

} // namespace kelto

/** The head of the block; behind it stand steps, slots, UCS-2 text, UTF-8 text and encodings, or else the variants. */
struct KTPreparedFormat
{
    formTable *table; /**< null where the caller named none */
    uint32_t stepCount, slotCount;
    const kelto::PreparedStep *steps;
    const KTSlot *slots;
    const UCS2 *units;
    const char *bytes;
    kelto::PreparedVariants *variants; /**< of a message that selects others; else null */
    const uint8_t *encodings;          /**< of each slot, see lost_encoding.h; null where none lies in a region */
};

namespace kelto
{

struct PreparedFree
{
    void operator()(KTPreparedFormat *prepared) const noexcept { KTFreePrepared(prepared); }
};
using PreparedOwner = std::unique_ptr<KTPreparedFormat, PreparedFree>;

/**
 * KTPrepareFormat() for a format that is not null, while the library is started. @return with the reason where the
 * format is refused.
 */
FormatVerdict prepareFormat(const char *format, formTable *table, PreparedOwner &prepared) noexcept;

} // namespace kelto

#endif
