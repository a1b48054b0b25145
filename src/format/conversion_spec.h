/**
 * One conversion specification, from its '%' to its ']': flags, width, precision, modifier, name, position. The parser
 * returns a value; parseConvSpec() and getConvSpecOrder() are its exported faces. It stops at the terminator wherever
 * that stands, so any zero-terminated text is safe to parse.
 */
#ifndef KELTO_FORMAT_CONVERSION_SPEC_H
#define KELTO_FORMAT_CONVERSION_SPEC_H

#include "format/records.h"

namespace kelto
{

struct ConversionSpec
{
    int position;       /**< 1 or more; 0 for a malformed specification, of which nothing else is then valid */
    KTParameter record; /**< its formatter is null for an unknown name */
    const UCS2 *end;    /**< behind the ']' */
};

/** Parses the specification that begins at `percent`. */
ConversionSpec parseSpecification(const UCS2 *percent, formTable &table) noexcept;

} // namespace kelto

#endif
