/**
 * The attributes of a message file: what a "file", a "trans-unit" and an "x" say, and which of it is accepted. Both
 * passes of the loader take them apart here, so that they cannot disagree on what a file says.
 */
#ifndef KELTO_MESSAGE_ATTRIBUTES_H
#define KELTO_MESSAGE_ATTRIBUTES_H

#include <cstddef>
#include <cstring>

extern "C" {
#pragma GCC visibility push(default)

/**
 * The value of the first attribute of this name, or null.
 * @param attrs  names and values in turn, ended by a null name, as the XML parser hands them out; it owns the value.
 */
const char *getAttrValue(const char **attrs, const char *name);

#pragma GCC visibility pop
}

namespace kelto
{

inline bool equalNames(const char *a, const char *b) noexcept
{
    return *a == *b && std::strcmp(a, b) == 0;
}

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
