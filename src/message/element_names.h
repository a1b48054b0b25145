/**
 * The elements of a message file: their names, and the nesting level at which each may start. Both passes of the loader
 * ask here; which element may follow which is decided by the first pass.
 */
#ifndef KELTO_MESSAGE_ELEMENT_NAMES_H
#define KELTO_MESSAGE_ELEMENT_NAMES_H

#include <cstddef>

enum ElementID
{
    ELM_UNKNOWN = 0,
    ELM_XLIFF = 1,
    ELM_FILE = 2,
    ELM_HEADER = 3,
    ELM_BODY = 4,
    ELM_TRANS_UNIT = 5,
    ELM_SOURCE = 6,
    ELM_X = 7,
    ELM_CONTEXT_GROUP = 8,
    ELM_CONTEXT = 9,
    ELM_NOTE = 10
};

struct ElementMapRow
{
    const char *name; /**< null in the last row, which answers for every unknown name */
    ElementID id;
    int level; /**< how many elements are open where it starts; 0 for the document element */
};

extern "C" {
#pragma GCC visibility push(default)

/** Searched from the top: the three elements that repeat with every message stand first. */
extern const ElementMapRow elmtMapTable[11];

/**
 * Finds an element by its exact name.
 * @param id, level  out: its row; ELM_UNKNOWN and -1 for a name that is in none.
 */
void mapElmtName(const char *name, ElementID *id, int *level);

#pragma GCC visibility pop
}

namespace kelto
{

constexpr size_t elementRows = sizeof elmtMapTable / sizeof *elmtMapTable;

/** The row of an element: mapElmtName() for callers inside the library. */
const ElementMapRow &findElement(const char *name) noexcept;

} // namespace kelto

#endif
