#include "message/grammar/elements.h"

namespace
{

using kelto::elements;

constexpr size_t unknownRow = kelto::elementRows - 1;

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
        longest = lengthOf(elements[i].name) > longest ? lengthOf(elements[i].name) : longest;
    return longest;
}();

// Unrolled, the two loops below become a tree of comparisons with constants. The search runs twice for each element in
// each pass, always for a short name that was written just now; strcmp() would take longer to compare it.
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
        if (isNamed(elements[i], name))
            return elements[i];
    return elements[unknownRow];
}

const ElementMapRow &kelto::rowOf(ElementID id) noexcept
{
    size_t row = 0;
    while (row < unknownRow && elements[row].id != id)
        ++row;
    return elements[row];
}
