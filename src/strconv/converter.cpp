#include "strconv/converter.h"

#include "strconv/ascii_run.h"
#include "strconv/system_locale.h"
#include "strconv/utf8_text.h"

#include <algorithm>
#include <cstring>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace
{

constexpr size_t maxSize = INT32_MAX; // ICU counts in signed 32 bits
constexpr UChar32 replacementCharacter = 0xFFFD;
constexpr size_t maxBytesPerUnit = 3; // of UTF-8: a surrogate pair makes four bytes of two units

/**
 * The status to begin with, given that each unit of the source makes up to `growth` of output: ICU counts the output to
 * its end, also where it does not fit. ICU does nothing where the status is a failure already.
 */
UErrorCode checkSizes(size_t length, size_t capacity, size_t growth = 1)
{
    return length > maxSize / growth || capacity > maxSize ? U_ILLEGAL_ARGUMENT_ERROR : U_ZERO_ERROR;
}

int resultOf(UErrorCode status)
{
    switch (status)
    {
    case U_BUFFER_OVERFLOW_ERROR:
        return KT_ERR_BUFFER_TOO_SMALL;
    case U_ILLEGAL_ARGUMENT_ERROR:
        return KT_ERR_CONVERSION_INVALID_ARGUMENT;
    default:
        return KT_ERR_CONVERSION_FAILED;
    }
}

// ICU is called for long texts, in which it is faster than a loop over code points, and its call for short ones is not.
constexpr size_t shortLength = 64;

/* Short texts, code point by code point. The result is the length; more than the capacity where that is too little. */

size_t widenShort(const char *source, size_t length, size_t capacity, UCS2 *destination)
{
    size_t written = 0;
    for (const char *const end = source + length; source != end;)
    {
        const UChar32 codePoint = kelto::takeCodePoint(source, end);
        if (static_cast<size_t>(U16_LENGTH(codePoint)) > capacity - written)
            return capacity + 1;
        U16_APPEND_UNSAFE(destination, written, codePoint);
    }
    return written;
}

size_t narrowShort(const UCS2 *source, size_t length, size_t capacity, char *destination)
{
    size_t written = 0;
    for (size_t next = 0; next != length;)
    {
        UChar32 codePoint;
        U16_NEXT_OR_FFFD(source, next, length, codePoint);
        if (kelto::utf8Length(codePoint) > capacity - written)
            return capacity + 1;
        U8_APPEND_UNSAFE(destination, written, codePoint);
    }
    return written;
}

/** What every conversion ends with, given ICU's status and the length of the complete output. */
template <typename Unit> int finish(UErrorCode status, size_t written, size_t *size, Unit *destination)
{
    const size_t capacity = *size;
    if (U_FAILURE(status) || written > capacity)
    {
        if (capacity > 0)
            destination[0] = 0;
        return U_FAILURE(status) ? resultOf(status) : KT_ERR_BUFFER_TOO_SMALL;
    }
    if (written < capacity)
        destination[written] = 0;
    *size = written;
    return 0;
}

} // namespace

namespace kelto
{

Converter::Converter(const char *charSet) noexcept
{
    UErrorCode status = U_ZERO_ERROR;
    m_converter.reset(ucnv_open(mapCharSet(const_cast<char *>(charSet)), &status));
}

int Converter::toUCS2(const char *source, size_t *size, UCS2 *destination) const noexcept
{
    if (m_converter == nullptr)
        return KT_ERR_CONVERTER_OPEN_FAILED;
    const size_t length = std::strlen(source);
    UErrorCode status = checkSizes(length, *size);
    const int32_t written = ucnv_toUChars(m_converter.get(), destination, static_cast<int32_t>(*size), source,
                                          static_cast<int32_t>(length), &status);
    return finish(status, static_cast<size_t>(written), size, destination);
}

int Converter::fromUCS2(const UCS2 *source, size_t *size, char *destination) const noexcept
{
    if (m_converter == nullptr)
        return KT_ERR_CONVERTER_OPEN_FAILED;
    const size_t length = KTUCS2strlen(source);
    // No strict bound for character sets with states, but near enough that ICU's count cannot wrap.
    UErrorCode status = checkSizes(length, *size, static_cast<size_t>(ucnv_getMaxCharSize(m_converter.get())));
    const int32_t written = ucnv_fromUChars(m_converter.get(), destination, static_cast<int32_t>(*size), source,
                                            static_cast<int32_t>(length), &status);
    return finish(status, static_cast<size_t>(written), size, destination);
}

int utf8ToUCS2(const char *source, size_t length, size_t *size, UCS2 *destination) noexcept
{
    const size_t capacity = *size;
    UErrorCode status = checkSizes(length, capacity);
    if (U_FAILURE(status))
        return finish(status, 0, size, destination);

    // ASCII is whole characters, and ICU keeps no state from one to the next: it may begin behind any of them.
    const size_t run = widenAscii(source, std::min(length, capacity), destination);
    if (length - run <= shortLength)
        return finish(U_ZERO_ERROR, run + widenShort(source + run, length - run, capacity - run, destination + run),
                      size, destination);
    int32_t rest = 0;
    u_strFromUTF8WithSub(destination + run, static_cast<int32_t>(capacity - run), &rest, source + run,
                         static_cast<int32_t>(length - run), replacementCharacter, nullptr, &status);
    return finish(status, run + static_cast<size_t>(rest), size, destination);
}

int ucs2ToUTF8(const UCS2 *source, size_t length, size_t *size, char *destination) noexcept
{
    const size_t capacity = *size;
    UErrorCode status = checkSizes(length, capacity);
    if (U_FAILURE(status))
        return finish(status, 0, size, destination);

    const size_t run = narrowAscii(source, std::min(length, capacity), destination);
    if (length - run <= shortLength)
        return finish(U_ZERO_ERROR, run + narrowShort(source + run, length - run, capacity - run, destination + run),
                      size, destination);
    int32_t rest = 0;
    status = checkSizes(length - run, capacity, maxBytesPerUnit);
    u_strToUTF8WithSub(destination + run, static_cast<int32_t>(capacity - run), &rest, source + run,
                       static_cast<int32_t>(length - run), replacementCharacter, nullptr, &status);
    return finish(status, run + static_cast<size_t>(rest), size, destination);
}

} // namespace kelto
