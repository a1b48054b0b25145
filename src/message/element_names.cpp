#include "message/element_names.h"

constexpr ElementMapRow elmtMapTable[11] = {
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

namespace
{

constexpr size_t unknownRow = kelto::elementRows - 1;

/** The length of the longest name of all rows. */
constexpr size_t lengthOf(const char *name)
{
    size_t length = 0;
    while (name[length] != '\0')
        ++length;
    return length;
}

constexpr size_t longestName = [] {
    size_t longest = 0;
    for (size_t i = 0; i < unknownRow; ++i)
        longest = lengthOf(elmtMapTable[i].name) > longest ? lengthOf(elmtMapTable[i].name) : longest;
    return longest;
}();

// Unrolled, the two loops below become a tree of comparisons with constants. It is asked twice for each element in each
// pass, always for a short name that was written just now, which strcmp() takes longer to compare.
inline bool isNamed(const ElementMapRow &row, const char *name)
{
#pragma GCC unroll 16
    for (size_t i = 0; i <= longestName; ++i)
    {
        if (row.name[i] != name[i])
            return false;
        if (name[i] == '\0')
            return true;
    }
    return false;
}

} // namespace

const ElementMapRow &kelto::findElement(const char *name) noexcept
{
#pragma GCC unroll 16
    for (size_t i = 0; i < unknownRow; ++i)
        if (isNamed(elmtMapTable[i], name))
            return elmtMapTable[i];
    return elmtMapTable[unknownRow];
}

void mapElmtName(const char *name, ElementID *id, int *level)
{
    const ElementMapRow &row = kelto::findElement(name);
    *id = row.id;
    *level = row.level;
}
