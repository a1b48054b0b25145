#include "io/charset.h"

#include "failure.h"
#include "io/terminal.h"
#include "kelto.h"

#include <algorithm>

namespace tool
{
namespace
{

/**
 * Appends what convert(&size, destination) writes, with more room as long as it answers that the text does not fit: a
 * conversion does not tell how much it needs.
 */
template <typename String, typename Convert>
void appendConverted(String &target, const std::string &charset, size_t roomAtFirst, Convert convert)
{
    const size_t start = target.size();
    size_t room = std::min(roomAtFirst, longestText);
    for (;;)
    {
        target.resize(start + room);
        size_t size = room;
        const int result = convert(&size, target.data() + start);
        if (result == 0)
        {
            target.resize(start + size);
            return;
        }
        target.resize(start);
        if (result != KT_ERR_BUFFER_TOO_SMALL || room == longestText)
            throw Failure(terminal().quote(charset), result);
        room = std::min(2 * room, longestText);
    }
}

} // namespace

void requireCharset(const std::string &name)
{
    UCS2 nothing[1];
    size_t size = 1;
    const int result = KTMultiByteToUCS2(name.c_str(), 0, 0, "", &size, nothing);
    if (result != 0)
        throw Failure(terminal().quote(name) + ": " + meaningOf(result) + hint("kelto convert --list-charsets"));
}

void appendUcs2(std::u16string &target, const std::string &charset, const char *source, size_t length)
{
    appendConverted(target, charset, length + 2, [&](size_t *size, UCS2 *out) {
        return KTMultiByteToUCS2(charset.c_str(), 0, 0, source, size, out);
    });
}

void appendMultiByte(std::string &target, const std::string &charset, const char16_t *source, size_t length)
{
    appendConverted(target, charset, 3 * length + 8, [&](size_t *size, char *out) {
        return KTUCS2ToMultiByte(charset.c_str(), 0, 0, source, size, out);
    });
}

std::u16string ucs2(const std::string &charset, const std::string &text)
{
    std::u16string converted;
    appendUcs2(converted, charset, text.c_str(), text.size());
    return converted;
}

std::string multiByte(const std::string &charset, const std::u16string &text)
{
    std::string converted;
    appendMultiByte(converted, charset, text.c_str(), text.size());
    return converted;
}

std::u16string ucs2FromUtf8(const std::string &text)
{
    std::u16string converted;
    appendConverted(converted, "UTF-8", text.size() + 1,
                    [&](size_t *size, UCS2 *out) { return KTUTF8ToUCS2(text.c_str(), size, out); });
    return converted;
}

std::string utf8(const std::u16string &text)
{
    std::string converted;
    appendConverted(converted, "UTF-8", 3 * text.size() + 1,
                    [&](size_t *size, char *out) { return KTUCS2ToUTF8(text.c_str(), size, out); });
    return converted;
}

} // namespace tool
