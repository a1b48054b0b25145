#include "message/structure.h"

#include <cerrno>
#include <cstdlib>
#include <iterator>

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

const char *getAttrValue(const char **attrs, const char *name)
{
    for (; attrs[0] != nullptr; attrs += 2)
        if (kelto::equalNames(attrs[0], name))
            return attrs[1];
    return nullptr;
}

namespace
{

/** The value of an attribute that has one; null when it is missing or empty. */
const char *filledAttribute(const char **attrs, const char *name)
{
    const char *const value = getAttrValue(attrs, name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

/** The number as written, of which the low 32 bits count. Nearly all are a few digits and nothing else. */
int parseId(const char *text)
{
    constexpr int safeDigits = 9;
    int number = 0;
    int digits = 0;
    for (; digits < safeDigits && text[digits] >= '0' && text[digits] <= '9'; ++digits)
        number = number * 10 + (text[digits] - '0');
    if (digits > 0 && digits < safeDigits)
        return number;

    const int savedErrno = errno; // a number out of range must not show there
    const long parsed = std::strtol(text, nullptr, 10);
    errno = savedErrno;
    return static_cast<int>(static_cast<uint32_t>(parsed));
}

} // namespace

kelto::FileAttributes kelto::readFileAttributes(const char **attrs) noexcept
{
    const char *const language = getAttrValue(attrs, "source-language");
    return {language, language != nullptr ? std::strlen(language) : 0, getAttrValue(attrs, "product-name"),
            getAttrValue(attrs, "product-version")};
}

// An empty "ts" is not passed over in favour of "id".
const char *kelto::findMessageId(const char **attrs) noexcept
{
    const char *const digits = getAttrValue(attrs, "ts");
    return digits != nullptr ? digits : getAttrValue(attrs, "id");
}

int kelto::readMessageId(const char **attrs) noexcept
{
    const char *const digits = findMessageId(attrs);
    const int id = digits != nullptr ? parseId(digits) : 0;
    return id > 0 ? id : 0;
}

kelto::Placeholder kelto::readPlaceholder(const char **attrs) noexcept
{
    return {filledAttribute(attrs, "ts"), filledAttribute(attrs, "id")};
}
