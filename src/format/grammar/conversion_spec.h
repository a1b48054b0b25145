/**
 * One conversion specification, from its '%' to its ']': flags, width, precision, modifier, name, position. The parser
 * reads UCS-2 and UTF-8 alike, since all that it knows is ASCII. It returns a value, which tells the reason where the
 * conversion specification is malformed; parseConvSpec() and getConvSpecOrder() are its exported faces. It stops at the
 * terminator wherever that stands, so any zero-terminated text is safe to parse.
 */
#ifndef KELTO_FORMAT_GRAMMAR_CONVERSION_SPEC_H
#define KELTO_FORMAT_GRAMMAR_CONVERSION_SPEC_H

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

/** What is wrong with one conversion specification, and where its author will have meant it to end. */
template <typename Unit> struct SpecFault
{
    KTRule rule;
    const Unit *end;
};

/** Explains a conversion specification that is malformed, or whose name no table has. */
template <typename Unit> SpecFault<Unit> explainFault(const Unit *percent, const ConversionSpec<Unit> &spec) noexcept;

/** getConvSpecOrder() in either encoding. */
template <typename Unit> int takeAcceptedPosition(const Unit *&cursor) noexcept;

} // namespace kelto

#endif
