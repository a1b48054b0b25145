/**
 * One conversion specification, from its '%' to its ']': flags, width, precision, modifier, name, position. The parser
 * reads UCS-2 and UTF-8 alike, since all that it knows is ASCII, and returns a value, which for a malformed
 * specification says why; parseConvSpec() and getConvSpecOrder() are its exported faces. It stops at the terminator
 * wherever that stands, so any zero-terminated text is safe to parse.
 */
#ifndef KELTO_FORMAT_CONVERSION_SPEC_H
#define KELTO_FORMAT_CONVERSION_SPEC_H

#include "format/conversion_record.h"

namespace kelto
{

template <typename Unit> struct ConversionSpec
{
    int position;       /**< 1 or more; 0 for a malformed one, of which only `fault` is then valid */
    KTRule fault;       /**< why it is malformed */
    KTParameter record; /**< its formatter is null for an unknown name */
    const Unit *end;    /**< behind the ']' */
};

/** Parses the conversion specification that begins at `percent`. */
template <typename Unit> ConversionSpec<Unit> parseSpecification(const Unit *percent, formTable &table) noexcept;

/** getConvSpecOrder() in either encoding. */
template <typename Unit> int takeAcceptedPosition(const Unit *&cursor) noexcept;

} // namespace kelto

#endif
