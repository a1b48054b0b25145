// "and" and "or": a text with an item in each line becomes a list. In an encoded region the encoder is given each item,
// so that what joins them stays as it is.

#include "conversions.h"
#include "language.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace kelto::locale
{

namespace
{

/** Takes a character that is not ASCII; at most as many units as it has bytes are written. */
UChar *takeCharacter(const char *&at, const char *end, UChar *out)
{
    const auto *const bytes = reinterpret_cast<const uint8_t *>(at);
    ptrdiff_t taken = 0;
    size_t written = 0;
    UChar32 codePoint = 0;
    U8_NEXT_OR_FFFD(bytes, taken, end - at, codePoint);
    U16_APPEND_UNSAFE(out, written, codePoint);
    at += taken;
    return out + written;
}

/** Takes a line; where it ends. */
const char *takeLine(const char *at, const char *end, UChar *&units)
{
    UChar *out = units;
    while (at != end && *at != '\n')
        if (static_cast<signed char>(*at) >= 0)
            *out++ = static_cast<UChar>(*at++);
        else
        {
            const char *next = at;
            out = takeCharacter(next, end, out);
            at = next;
        }
    units = out;
    return at;
}

/** The items of a list, as ICU takes them. */
class Items
{
public:
    /** Reads the lines of a text; the last one may end with a line feed or without. */
    int read(std::string_view text) noexcept
    {
        if (text.size() >= INT_MAX)
            return KT_ERR_CONVERSION_INVALID_ARGUMENT;
        // Each item is terminated, for the encoder; the line feeds have the room, but for a last one.
        const size_t units = text.size() + 1;
        if (units <= usualUnits && split(text, usualItems))
            return 0;
        const size_t count = 1 + static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
        m_long = allocate<char>(count * (sizeof(UChar *) + sizeof(int32_t)) + units * sizeof(UChar));
        if (m_long == nullptr)
            return KT_ERR_NO_MEMORY;
        m_items = reinterpret_cast<const UChar **>(m_long.get());
        m_lengths = reinterpret_cast<int32_t *>(m_items + count);
        m_units = reinterpret_cast<UChar *>(m_lengths + count);
        split(text, count);
        return 0;
    }

    /** Whether ICU will need memory for them. */
    bool areMany() const noexcept { return m_count > 4; }

    /** Puts what an encoder makes of them into the places of the items. */
    int encode(KTEncoder encoder) noexcept
    {
        unsigned long total = 0;
        for (size_t i = 0; i < m_count; ++i)
        {
            unsigned long length = 0; // the encoder only measures
            const int result = encoder(m_items[i], KT_ENCODE_UCS2, &length, nullptr);
            if (result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
                return result;
            if (length >= INT_MAX - total)
                return KT_ERR_CONVERSION_INVALID_ARGUMENT;
            total += length + 1;
        }
        m_encoded = allocate<UChar>(total + 1);
        if (m_encoded == nullptr)
            return KT_ERR_NO_MEMORY;
        UChar *out = m_encoded.get();
        for (size_t i = 0; i < m_count; ++i)
        {
            const unsigned long room = total + 1;
            unsigned long length = room;
            const int result = encoder(m_items[i], KT_ENCODE_UCS2, &length, out);
            if (result != 0)
                return result != KT_ERR_BUFFER_TOO_SMALL ? result : int{KT_ERR_CONVERSION_FAILED};
            length = std::min(length, room - 1); // another length than before
            m_items[i] = out;
            m_lengths[i] = static_cast<int32_t>(length);
            out += length;
            total -= length;
        }
        return 0;
    }

    /** @param formatter  of the language and the word. */
    int join(const UListFormatter *formatter, IcuText &text) const noexcept
    {
        return text.make([&](UChar *out, int32_t capacity, UErrorCode *status) {
            return ulistfmt_format(formatter, m_items, m_lengths, static_cast<int32_t>(m_count), out, capacity, status);
        });
    }

private:
    /** Fills in the items; false where there are more than so many. */
    bool split(std::string_view text, size_t most) noexcept
    {
        size_t count = 0;
        UChar *out = m_units;
        const char *at = text.data();
        for (const char *const end = at + text.size(); at != end; ++count)
        {
            if (count == most)
                return false;
            UChar *const begin = out;
            at = takeLine(at, end, out);
            m_items[count] = begin;
            m_lengths[count] = static_cast<int32_t>(out - begin);
            *out++ = 0;
            at += at != end ? 1 : 0;
        }
        m_count = count;
        return true;
    }

    static constexpr size_t usualItems = 16, usualUnits = 256;
    const UChar *m_usualItems[usualItems];
    int32_t m_usualLengths[usualItems];
    UChar m_usualUnits[usualUnits];
    HeapBlock<char> m_long;
    HeapBlock<UChar> m_encoded;
    const UChar **m_items = m_usualItems;
    int32_t *m_lengths = m_usualLengths;
    UChar *m_units = m_usualUnits;
    size_t m_count = 0;
};

int openFormatter(const char *locale, UListFormatterType type, Handle<UListFormatter, ulistfmt_close> &made)
{
    UErrorCode status = U_ZERO_ERROR;
    made.reset(ulistfmt_openForType(locale, type, ULISTFMT_WIDTH_WIDE, &status));
    return resultOf(status);
}

} // namespace

int writeList(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output)
{
    const UListFormatter *formatter = nullptr;
    const auto type = static_cast<UListFormatterType>(kind.variant);
    const int opened =
        language.lists[type].get(formatter, [&](auto &made) { return openFormatter(language.name.icu, type, made); });
    if (opened != 0)
        return opened;
    Items items;
    if (const int result = items.read(values[0].text))
        return result;
    if (items.areMany())
        if (const int result = askForMemory(true))
            return result;
    if (spec.has(FLAG_ENCODE) && spec.encoder != nullptr)
        if (const int result = items.encode(spec.encoder))
            return result;
    IcuText text;
    if (const int result = items.join(formatter, text))
        return result;
    return output.writePadded(spec, {text.units(), text.length()});
}

} // namespace kelto::locale
