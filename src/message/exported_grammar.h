/** The part of the grammar that is exported: the table of the elements, and the search in it and in attributes. */
#ifndef KELTO_MESSAGE_EXPORTED_GRAMMAR_H
#define KELTO_MESSAGE_EXPORTED_GRAMMAR_H

#include "message/grammar/elements.h"

extern "C" {
#pragma GCC visibility push(default)

/** A copy of kelto::elements. */
extern const ElementMapRow elmtMapTable[11];

/**
 * Finds an element by its exact name.
 * @param id, level  out: its row; ELM_UNKNOWN and -1 for a name that is in none.
 */
void mapElmtName(const char *name, ElementID *id, int *level);

/**
 * The value of the first attribute of this name, or null.
 * @param attrs  names and values in turn, ended by a null name, as the XML parser hands them out; it owns the value.
 */
const char *getAttrValue(const char **attrs, const char *name);

#pragma GCC visibility pop
}

#endif
