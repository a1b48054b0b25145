/**
 * The shape of a message file: its element names, the nesting level at which each may start, and access to attributes.
 * Both passes of the loader ask here, and take an element's attributes apart through the same functions, so that they
 * cannot disagree on what a file says.
 */
#ifndef KELTO_MESSAGE_STRUCTURE_H
#define KELTO_MESSAGE_STRUCTURE_H

#include <cstddef>
#include <cstdint>
#include <cstring>

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

/**
 * The value of the first attribute of this name, or null.
 * @param attrs  names and values in turn, ended by a null name, as the XML parser hands them out; it owns the value.
 */
const char *getAttrValue(const char **attrs, const char *name);

#pragma GCC visibility pop
}

namespace kelto
{

constexpr size_t elementRows = sizeof elmtMapTable / sizeof *elmtMapTable;

inline bool equalNames(const char *a, const char *b) noexcept
{
    return *a == *b && std::strcmp(a, b) == 0;
}

/** The row of an element: mapElmtName() for callers inside the library. */
const ElementMapRow &findElement(const char *name) noexcept;

/** What a "file" element says; the texts are the parser's, null where an attribute is missing. */
struct FileAttributes
{
    const char *language; /**< two letters, or two, a separator and two for the country */
    size_t languageLength;
    const char *productName;
    const char *productVersion;

    bool areThere() const noexcept
    {
        return language != nullptr && productName != nullptr && productVersion != nullptr;
    }
    bool namesCountry() const noexcept { return languageLength == 5; }
    /** Whether a message file may say so: the language has its shape, and neither product text is empty. */
    bool areAccepted() const noexcept
    {
        return areThere() && (languageLength == 2 || namesCountry()) && *productName != '\0' && *productVersion != '\0';
    }
};

/** What an "x" element says; the texts are the parser's, null where an attribute is missing or empty. */
struct Placeholder
{
    const char *text, *position;

    bool isAccepted() const noexcept { return text != nullptr && position != nullptr; }
};

/** Takes a "file" element apart. */
FileAttributes readFileAttributes(const char **attrs) noexcept;

/** The digits of a "trans-unit", null where it has none; they may be no number. */
const char *findMessageId(const char **attrs) noexcept;

/** The message ID of a "trans-unit", at least 1; 0 when there is none. */
int readMessageId(const char **attrs) noexcept;

/** Takes an "x" element apart. */
Placeholder readPlaceholder(const char **attrs) noexcept;

} // namespace kelto

#endif
