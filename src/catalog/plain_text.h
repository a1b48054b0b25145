/**
 * An argument as a person reads it, where no conversion writes it: on the last rung, and in reports of a format that
 * does not take it. Numbers are decimal, times as "1970-01-01 00:00:00". Any argument can be written, one of an unknown
 * type or a null pointer too.
 */
#ifndef KELTO_CATALOG_PLAIN_TEXT_H
#define KELTO_CATALOG_PLAIN_TEXT_H

#include "format/output/format_output.h"

#include <string_view>

namespace kelto
{

/** @param options  from readOptions(); writeArgument and its context are used. */
template <typename Unit>
void writePlainly(FormatOutput<Unit> &out, const KTArgument &argument, const KTCatalogOptions &options) noexcept;

/** Writes UTF-8, perhaps malformed. */
template <typename Unit> void writeUTF8(FormatOutput<Unit> &out, std::string_view text) noexcept
{
    out.write(Ending::open, UTF8Text{text.data(), text.size(), UINT64_MAX});
}

/** Writes a number of 64 bits. */
template <typename Unit> void writeNumber(FormatOutput<Unit> &out, uint64_t number, bool isNegative) noexcept;

} // namespace kelto

#endif
