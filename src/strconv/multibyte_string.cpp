// Texts in a charset: their length, their characters one by one, copies, searches and comparisons.

#include "kelto.h"

#include "strconv/heap_block.h"

#include <algorithm>
#include <cstring>
#include <unicode/ustring.h>

// One pattern throughout: convert to UCS-2, work there, convert back. The texts release themselves.

namespace
{

using kelto::allocateHeap;
using kelto::HeapBlock;

/** The UCS-2 copy of a multi-byte text, or the result code of the attempt to make it. */
class WorkingCopy
{
public:
    WorkingCopy(const char *charSet, const char *text) noexcept
        : m_bytes(std::strlen(text)), m_units(allocateHeap<UCS2>(m_bytes + 2))
    {
        if (m_units == nullptr)
            return;
        // The room is a unit larger than the capacity: some character sets make L + 1 units of L bytes.
        size_t size = m_bytes + 1;
        m_result = KTMultiByteToUCS2(charSet, 0, 0, text, &size, m_units.get());
        if (m_result != 0)
            return;
        m_units[size] = 0;
        m_length = KTUCS2strlen(m_units.get());
    }

    bool failed() const noexcept { return m_result != 0; }
    int result() const noexcept { return m_result; }
    UCS2 *units() const noexcept { return m_units.get(); }
    size_t length() const noexcept { return m_length; }
    size_t bytes() const noexcept { return m_bytes; } // of the multi-byte text

private:
    size_t m_bytes;
    HeapBlock<UCS2> m_units;
    int m_result = KT_ERR_NO_MEMORY;
    size_t m_length = 0;
};

/**
 * Converts back to where there is room for `maxBytes` and a terminator.
 * @return the bytes written, or a result code; dst is terminated, and on failure empty, unless no converter could be
 *         opened.
 */
long convertBack(const char *charSet, const UCS2 *text, size_t maxBytes, char *dst)
{
    size_t size = maxBytes + 1;
    const int result = KTUCS2ToMultiByte(charSet, 0, 0, text, &size, dst);
    if (result != 0)
        return result;
    if (size > maxBytes)
    {
        dst[0] = '\0';
        return KT_ERR_BUFFER_TOO_SMALL;
    }
    return static_cast<long>(size);
}

/** Compares two texts, each in its own character set, by one of ICU's comparisons. */
template <typename Compare>
int compareTexts(const char *charSet1, const char *s1, const char *charSet2, const char *s2, Compare compare)
{
    const WorkingCopy first(charSet1, s1);
    if (first.failed())
        return first.result();
    const WorkingCopy second(charSet2, s2);
    if (second.failed())
        return second.result();
    return compare(first.units(), second.units());
}

} // namespace

size_t KTMultiByteStrblen(const char *s)
{
    return std::strlen(s);
}

long KTMultiByteStrclen(const char *charSet, const char *s)
{
    const WorkingCopy text(charSet, s);
    return text.failed() ? text.result() : static_cast<long>(text.length());
}

unsigned int KTFirstChar(const char *charSet, const char *s)
{
    const WorkingCopy text(charSet, s);
    return text.length() > 0 ? KTUCharToMBChar(charSet, KTFirstUChar(text.units())) : 0;
}

unsigned int KTNextChar(const char *charSet, char *s)
{
    const WorkingCopy text(charSet, s);
    if (text.length() < 2)
        return 0;
    const HeapBlock<char> rest = allocateHeap<char>(text.bytes() + 1);
    if (rest == nullptr)
        return 0;

    const unsigned int next = KTUCharToMBChar(charSet, KTNextUChar(text.units()));
    const long bytes = convertBack(charSet, text.units(), text.bytes(), rest.get());
    if (bytes >= 0)
        std::memcpy(s, rest.get(), static_cast<size_t>(bytes) + 1);
    return next;
}

char *KTMultiByteStrncpy(char *dst, const char *charSet, const char *src, size_t n)
{
    const WorkingCopy text(charSet, src);
    if (text.failed())
        return nullptr;
    const size_t length = std::min(n, text.length());
    const HeapBlock<UCS2> start = allocateHeap<UCS2>(length + 1);
    if (start == nullptr)
        return nullptr;

    u_strncpy(start.get(), text.units(), static_cast<int32_t>(length));
    start[length] = 0;
    return convertBack(charSet, start.get(), text.bytes(), dst) >= 0 ? dst : nullptr;
}

long KTMultiByteStrupr(const char *charSet, const char *src, size_t *sizeOut, char *dst)
{
    const WorkingCopy text(charSet, src);
    if (text.failed())
        return text.result();
    const HeapBlock<UCS2> upper = allocateHeap<UCS2>(text.length() + 1);
    if (upper == nullptr)
        return KT_ERR_NO_MEMORY;

    const auto length = static_cast<int32_t>(text.length());
    UErrorCode status = U_ZERO_ERROR;
    u_strToUpper(upper.get(), length, text.units(), length, charSet, &status);
    if (U_FAILURE(status))
        return KT_ERR_CONVERSION_FAILED;
    upper[text.length()] = 0; // ICU has terminated a text that shrank, and has no room to terminate any other

    const long bytes = convertBack(charSet, upper.get(), text.bytes(), dst);
    if (bytes >= 0)
        *sizeOut = static_cast<size_t>(bytes);
    return bytes;
}

char *KTMultiByteStrstr(const char *charSet, const char *s, const char *subCharSet, const char *sub)
{
    const WorkingCopy text(charSet, s);
    if (text.failed())
        return nullptr;
    const WorkingCopy wanted(subCharSet, sub);
    if (wanted.failed())
        return nullptr;
    const UCS2 *const tail = u_strstr(text.units(), wanted.units());
    if (tail == nullptr)
        return nullptr;
    const HeapBlock<char> tailBytes = allocateHeap<char>(text.bytes() + 1);
    if (tailBytes == nullptr)
        return nullptr;

    // The tail ends where the caller's text ends, so its length tells where it starts.
    const long bytes = convertBack(charSet, tail, text.bytes(), tailBytes.get());
    return bytes >= 0 ? const_cast<char *>(s) + (text.bytes() - static_cast<size_t>(bytes)) : nullptr;
}

char *KTMultiByteStrrchr(const char *charSet, const char *s, const char *chCharSet, unsigned int mbChar, char *dst)
{
    const WorkingCopy text(charSet, s);
    if (text.length() == 0)
        return nullptr;
    const UCS2 unit = KTMBCharToUChar(chCharSet, mbChar);
    if (unit == 0)
        return nullptr;
    for (size_t i = text.length(); i-- > 0;)
        if (text.units()[i] == unit)
            return convertBack(charSet, text.units() + i, text.bytes(), dst) >= 0 ? dst : nullptr;
    return nullptr;
}

int KTMultiByteStricmp(const char *charSet1, const char *s1, const char *charSet2, const char *s2)
{
    return compareTexts(charSet1, s1, charSet2, s2, [](const UCS2 *a, const UCS2 *b) { return u_strcasecmp(a, b, 0); });
}

int KTMultiByteStrcmp(const char *charSet1, const char *s1, const char *charSet2, const char *s2)
{
    return compareTexts(charSet1, s1, charSet2, s2, [](const UCS2 *a, const UCS2 *b) { return u_strcmp(a, b); });
}
