/**
 * Form tables: the look-up of a conversion's name along a chain of tables, and the encoder that a format call gets from
 * its table. The operations on tables that callers see (copy, free, register an encoder) are in kelto.h and live here
 * too.
 */
#ifndef KELTO_FORMAT_TABLES_FORM_TABLE_H
#define KELTO_FORMAT_TABLES_FORM_TABLE_H

#include "format/conversion_record.h"

namespace kelto
{

/**
 * A conversion's name as it stands in a format string, UCS-2 or UTF-8: ASCII, at most maxNameLength units, not
 * terminated.
 */
template <typename Unit> struct ConversionName
{
    const Unit *begin;
    size_t length;
};

/** What a name stands for in a chain of tables. */
struct FoundConversion
{
    KTFormatter *formatter; /**< null when no table has it */
    Flag_t type;            /**< CONV_UNKNOWN when no table has the name */
    int addedFlags;         /**< FLAG_BANG for the two short names of 64-bit integers */
};

/**
 * Looks a name up, whole and case-sensitive, in the first table and those chained to it.
 * @param name   perhaps empty.
 * @param flags  the conversion's flags so far: an empty name means something with 'l'.
 */
template <typename Unit>
FoundConversion findConversion(const ConversionName<Unit> &name, int flags, formTable &first) noexcept;

/** The table that a caller names, null standing for the built-in one. */
inline formTable &tableOrBuiltIn(formTable *table) noexcept
{
    return table != nullptr ? *table : builtInFormTable;
}

/** The encoder of a call: the table's own, else the first along its chain; null without a table. */
KTEncoder findEncoder(formTable *table) noexcept;

} // namespace kelto

#endif
