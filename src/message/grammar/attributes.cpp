#include "message/grammar/attributes.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>

namespace
{

/** The value of an attribute that has one; null when it is missing or empty. */
const char *filledAttribute(const char **attrs, const char *name)
{
    const char *const value = kelto::findAttribute(attrs, name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

/** Reads a number as it is written; its low 32 bits count. Nearly all are a few digits and nothing else. */
int parseNumber(const char *text)
{
    constexpr int safeDigits = 9;
    int number = 0;
    int digits = 0;
    for (; digits < safeDigits && text[digits] >= '0' && text[digits] <= '9'; ++digits)
        number = number * 10 + (text[digits] - '0');
    if (digits > 0 && digits < safeDigits)
        return number;

    const int savedErrno = errno; // a number out of range must not change it
    const long parsed = std::strtol(text, nullptr, 10);
    errno = savedErrno;
    return static_cast<int>(static_cast<uint32_t>(parsed));
}

} // namespace

const char *kelto::findAttribute(const char **attrs, const char *name) noexcept
{
    for (; attrs[0] != nullptr; attrs += 2)
        if (equalNames(attrs[0], name))
            return attrs[1];
    return nullptr;
}

kelto::FileAttributes kelto::readFileAttributes(const char **attrs) noexcept
{
    const char *const language = findAttribute(attrs, "source-language");
    return {language, language != nullptr ? std::strlen(language) : 0, findAttribute(attrs, "product-name"),
            findAttribute(attrs, "product-version")};
}

// An empty "ts" is not passed over in favour of "id".
kelto::MessageNumber kelto::findMessageNumber(const char **attrs) noexcept
{
    const char *const digits = findAttribute(attrs, "ts");
    return digits != nullptr ? MessageNumber{"ts", digits} : MessageNumber{"id", findAttribute(attrs, "id")};
}

int kelto::parseMessageId(const char *digits) noexcept
{
    const int id = digits != nullptr ? parseNumber(digits) : 0;
    return id > 0 ? id : 0;
}

int kelto::readMessageId(const char **attrs) noexcept
{
    return parseMessageId(findMessageNumber(attrs).digits);
}

kelto::Placeholder kelto::readPlaceholder(const char **attrs) noexcept
{
    return {filledAttribute(attrs, "ts"), filledAttribute(attrs, "id")};
}
