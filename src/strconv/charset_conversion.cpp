// The conversions of the interface between charsets, UTF-8 and UCS-2, of whole texts and of single characters.

#include "strconv/converter.h"
#include "strconv/heap_block.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

/**
 * Converts by way of UCS-2.
 * @param room      the units of the buffer for the UCS-2 text.
 * @param capacity  the units of it that the first step may use, the terminator counted; every source fits into one
 *                  less.
 * @param toUCS2    the first step, a function of (size, UCS-2 buffer).
 * @param fromUCS2  the second step, a function of (UCS-2 text).
 */
template <typename ToUCS2, typename FromUCS2>
int convertByWayOfUCS2(size_t room, size_t capacity, ToUCS2 toUCS2, FromUCS2 fromUCS2, const size_t *sizeInOut,
                       char *dst)
{
    const kelto::HeapBlock<UCS2> text = kelto::allocateHeap<UCS2>(room);
    if (text == nullptr)
        return KT_ERR_NO_MEMORY;

    // ICU takes no larger capacity. A source that needs more is too long for ICU too, and ICU refuses it.
    size_t length = std::min<size_t>(capacity, INT32_MAX);
    int result = toUCS2(&length, text.get());
    text[room - 1] = 0;
    if (result == 0)
        result = fromUCS2(text.get());
    if (result != 0 && *sizeInOut > 0)
        dst[0] = '\0';
    return result;
}

} // namespace

int KTMultiByteToUCS2(const char *charSet, unsigned short, char, const char *src, size_t *sizeInOut, UCS2 *dst)
{
    return kelto::Converter(charSet).toUCS2(src, sizeInOut, dst);
}

int KTUCS2ToMultiByte(const char *charSet, char, unsigned short, const UCS2 *src, size_t *sizeInOut, char *dst)
{
    return kelto::Converter(charSet).fromUCS2(src, sizeInOut, dst);
}

int KTUTF8ToUCS2(const char *src, size_t *sizeInOut, UCS2 *dst)
{
    return kelto::utf8ToUCS2(src, std::strlen(src), sizeInOut, dst);
}

int KTUCS2ToUTF8(const UCS2 *src, size_t *sizeInOut, char *dst)
{
    return kelto::ucs2ToUTF8(src, KTUCS2strlen(src), sizeInOut, dst);
}

// Flattened: for a short text each call between the two steps counts.
[[gnu::flatten]] int KTMultiByteToUTF8(const char *charSet, char reserved1, char reserved2, const char *src,
                                       size_t *sizeInOut, char *dst)
{
    const auto toUCS2 = [=](size_t *size, UCS2 *text) {
        return KTMultiByteToUCS2(charSet, static_cast<unsigned char>(reserved1), reserved2, src, size, text);
    };
    const auto toUTF8 = [=](const UCS2 *text) { return KTUCS2ToUTF8(text, sizeInOut, dst); };
    const size_t room = 2 * std::strlen(src) + 1;
    return convertByWayOfUCS2(room, room, toUCS2, toUTF8, sizeInOut, dst);
}

[[gnu::flatten]] int KTUTF8ToMultiByte(const char *charSet, char reserved1, char reserved2, const char *src,
                                       size_t *sizeInOut, char *dst)
{
    const auto toUCS2 = [=](size_t *size, UCS2 *text) { return KTUTF8ToUCS2(src, size, text); };
    const auto toMultiByte = [=](const UCS2 *text) {
        return KTUCS2ToMultiByte(charSet, reserved1, static_cast<unsigned char>(reserved2), text, sizeInOut, dst);
    };
    const size_t capacity = std::strlen(src) + 1;
    return convertByWayOfUCS2(capacity + 1, capacity, toUCS2, toMultiByte, sizeInOut, dst);
}

UCS2 KTMBCharToUChar(const char *charSet, unsigned int mbChar)
{
    const auto high = static_cast<char>(mbChar >> 8 & 0xFF);
    const auto low = static_cast<char>(mbChar & 0xFF);
    const char bytes[] = {high, low, '\0'};

    UCS2 units[3];
    size_t size = std::size(units);
    const int result = KTMultiByteToUCS2(charSet, 0, 0, high != '\0' ? bytes : bytes + 1, &size, units);
    return result == 0 ? units[0] : u'\0'; // no output leaves a terminator
}

unsigned int KTUCharToMBChar(const char *charSet, UCS2 uc)
{
    const UCS2 text[] = {uc, 0};
    char bytes[3];
    size_t size = std::size(bytes);
    if (KTUCS2ToMultiByte(charSet, 0, 0, text, &size, bytes) != 0)
        return 0;

    unsigned int packed = 0;
    for (size_t i = 0; i < size; ++i)
        packed = packed << 8 | static_cast<unsigned char>(bytes[i]);
    return packed;
}
