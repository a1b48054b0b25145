/**
 * The elements of a message file: their names, and the nesting level at which each may start. structure.h says which
 * element may follow which. This folder is linked into the library and into the program, so that the checker decides as
 * the library does; nothing of it is exported.
 */
#ifndef KELTO_MESSAGE_GRAMMAR_ELEMENTS_H
#define KELTO_MESSAGE_GRAMMAR_ELEMENTS_H

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

namespace kelto
{

/** Searched from the top: the three elements that repeat with every message stand first. */
inline constexpr ElementMapRow elements[] = {
    {"trans-unit", ELM_TRANS_UNIT, 3},
    {"source", ELM_SOURCE, 4},
    {"x", ELM_X, 5},
    {"xliff", ELM_XLIFF, 0},
    {"file", ELM_FILE, 1},
    {"header", ELM_HEADER, 2},
    {"body", ELM_BODY, 2},
    {"context-group", ELM_CONTEXT_GROUP, 4},
    {"context", ELM_CONTEXT, 5},
    {"note", ELM_NOTE, 4},
    {nullptr, ELM_UNKNOWN, -1},
};

constexpr size_t elementRows = sizeof elements / sizeof *elements;

constexpr int deepestLevel = [] {
    int deepest = 0;
    for (const ElementMapRow &row : elements)
        deepest = row.level > deepest ? row.level : deepest;
    return deepest;
}();

/** The row of the element with exactly this name. */
const ElementMapRow &findElement(const char *name) noexcept;

/** The row of an element. */
const ElementMapRow &rowOf(ElementID id) noexcept;

} // namespace kelto

#endif
