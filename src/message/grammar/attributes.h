/**
 * The attributes of a message file: what a "file", a "trans-unit" and an "x" say, and whether that is accepted. Both
 * passes of the loader and the checker take them apart here, so that they cannot disagree on what a file says.
 */
#ifndef KELTO_MESSAGE_GRAMMAR_ATTRIBUTES_H
#define KELTO_MESSAGE_GRAMMAR_ATTRIBUTES_H

#include <cstddef>
#include <cstring>

namespace kelto
{

inline bool equalNames(const char *a, const char *b) noexcept
{
    return *a == *b && std::strcmp(a, b) == 0;
}

/**
 * The value of the first attribute of this name, or null.
 * @param attrs  names and values in turn, ended by a null name, as the XML parser hands them out; it owns the value.
 */
const char *findAttribute(const char **attrs, const char *name) noexcept;

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
    bool namesLanguage() const noexcept { return languageLength == 2 || namesCountry(); }
    /** Whether these attributes are accepted: the language has its shape, and neither product text is empty. */
    bool areAccepted() const noexcept
    {
        return areThere() && namesLanguage() && *productName != '\0' && *productVersion != '\0';
    }
};

/** The number of a "trans-unit" as it is written. */
struct MessageNumber
{
    const char *attribute; /**< the name of the attribute that has it */
    const char *digits;    /**< the parser's; null where there is none, and perhaps no number */
};

/** What an "x" element says; the texts are the parser's, null where an attribute is missing or empty. */
struct Placeholder
{
    const char *text, *position;

    bool isAccepted() const noexcept { return text != nullptr && position != nullptr; }
};

/** Takes a "file" element apart. */
FileAttributes readFileAttributes(const char **attrs) noexcept;

/** Finds the number of a "trans-unit". */
MessageNumber findMessageNumber(const char **attrs) noexcept;

/** The message ID that the digits stand for, at least 1; 0 where the digits are null or stand for none. */
int parseMessageId(const char *digits) noexcept;

/** The message ID of a "trans-unit", at least 1; 0 when there is none. */
int readMessageId(const char **attrs) noexcept;

/** Takes an "x" element apart. */
Placeholder readPlaceholder(const char **attrs) noexcept;

} // namespace kelto

#endif
