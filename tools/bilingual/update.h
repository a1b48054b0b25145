/** Brings a bilingual catalog up to date with its reference: finished work is kept, by the numbers of the messages. */
#ifndef KELTO_TOOLS_BILINGUAL_UPDATE_H
#define KELTO_TOOLS_BILINGUAL_UPDATE_H

#include "bilingual/entry.h"

namespace tool::bilingual
{

struct Changes
{
    size_t fresh = 0;    // entries that the old catalog lacks
    size_t changed = 0;  // translated from another text: now fuzzy
    size_t obsolete = 0; // translations whose message is gone
    size_t unchanged = 0;
};

/**
 * Takes over the translations and remarks of an old catalog.
 * @param catalog  the entries of the reference as it is now.
 */
Changes update(Bilingual &catalog, const Bilingual &old);

/** Adds to fuzzy entries a note on the arguments that have come, gone or changed since they were translated. */
void noteArguments(Bilingual &catalog, formTable *table);

} // namespace tool::bilingual

#endif
