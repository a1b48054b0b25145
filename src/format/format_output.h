/**
 * The text of a format call as it grows, in UCS-2 or UTF-8: written while it fits, measured to its end in any case.
 * Literal text and conversions are appended in the order of the text; a conversion of the library's own hands its
 * pieces over (layout.h), one of the caller's is called. Nothing is written beyond the room, whatever a length said
 * before.
 *
 * In UTF-8 the text is what a conversion of the whole UCS-2 text would be: a high surrogate that ends one piece joins
 * the low one that begins the next, a surrogate by itself becomes U+FFFD, and U+0000 ends the text.
 */
#ifndef KELTO_FORMAT_FORMAT_OUTPUT_H
#define KELTO_FORMAT_FORMAT_OUTPUT_H

#include "format/formatters/distinguished_name.h"
#include "format/formatters/text.h"
#include "format/layout.h"
#include "lifecycle/global_state.h"
#include "platform/scoped.h"
#include "strconv/ascii_run.h"
#include "strconv/utf8_text.h"

#include <type_traits>
#include <unicode/utf16.h>
#include <utility>

namespace kelto
{

/** A UTF-8 text as a piece, perhaps malformed; `count` is the most units that it may give. */
struct UTF8Text
{
    const char *bytes;
    size_t length;
    uint64_t count;
};

template <typename Unit> class FormatOutput
{
public:
    /** @param size  the capacity, in units of the text, its terminator counted. */
    FormatOutput(Unit *out, const unsigned long *size) noexcept
        : m_out(out), m_next(out), m_capacity(*size), m_isTruncated(m_capacity == 0)
    {
    }

    /** Whether the text has run out of room, and is only measured from there on. */
    bool isTruncated() const noexcept { return m_isTruncated; }

    /** The units so far, written or not. */
    unsigned long length() const noexcept { return m_total; }

    /** Whether so many more units may fit; false is certain. */
    bool canHold(uint64_t length) const noexcept { return !m_isTruncated && fits(length, m_capacity - m_total); }

    /** Appends units of literal text; what does not fit as a whole is written as far as it does. */
    void appendLiteral(const Unit *units, size_t count) noexcept
    {
        if (isOver(count))
            return;
        if (!m_isTruncated)
        {
            const size_t written = std::min<size_t>(count, m_capacity - m_total - 1);
            m_next = copyFew(units, written, m_next);
            m_isTruncated = written < count;
        }
        addToTotal(count);
    }

    /** Appends pieces, each whole or not at all. @return 0: what does not fit is known in the end. */
    template <typename... Pieces> int write(Ending /*ending*/, const Pieces &...pieces) noexcept
    {
        (append(pieces), ...);
        return 0;
    }

    template <typename Piece> int writePadded(const Piece &text, const Fill &padding, bool isPaddedBehind) noexcept
    {
        if (isPaddedBehind)
            return write(Ending::open, text, padding);
        return write(Ending::open, padding, text);
    }

    /**
     * Appends what a formatter of the caller's writes.
     * @param call     calls it with a size and an output, as in KTFormatFunction.
     * @param padding  what pads it then: a UTF-8 text is padded here, so that a huge width takes no memory.
     * @return its failure; 0 also where its text was merely too long.
     */
    template <typename Call>
    int appendCalled(const Call &call, [[maybe_unused]] const Layout &padding = {KT_ABSENT, KT_ABSENT, 0}) noexcept
    {
        if constexpr (std::is_same_v<Unit, UCS2>)
            return appendInPlace(call);
        else
            return appendThroughBuffer(call, padding);
    }

    /**
     * Appends what a formatter of the caller's writes in UTF-8.
     * @param call  calls it with a size and an output, as in KTUTF8FormatFunction.
     * @return its failure; 0 also where its text was merely too long.
     */
    template <typename Call> int appendCalledUTF8(const Call &call) noexcept
    {
        static_assert(isUTF8);
        return appendInPlace(call);
    }

    /** Ends the text. @param size  out: its length, or the need. */
    int finish(unsigned long *size) noexcept
    {
        terminate(m_next);
        *size = m_total;
        return m_isTruncated ? KT_ERR_BUFFER_TOO_SMALL : 0;
    }

    /** Ends the call with a failure, which leaves the empty text. */
    int fail(unsigned long *size, int result) noexcept
    {
        terminate(m_out);
        *size = 0;
        return result;
    }

private:
    static constexpr bool isUTF8 = std::is_same_v<Unit, char>;
    static constexpr UChar32 replacementCharacter = 0xFFFD;

    unsigned long room() const noexcept { return m_capacity > m_total ? m_capacity - m_total : 0; }

    void addToTotal(unsigned long units) noexcept
    {
        if (__builtin_add_overflow(m_total, units, &m_total))
            m_total = ~0UL;
    }

    void terminate(Unit *where) const noexcept
    {
        if (m_capacity > 0)
            *where = 0;
    }

    /** Most literal text between two conversions is a few units, less than a call costs. */
    static Unit *copyFew(const Unit *units, size_t count, Unit *out) noexcept
    {
        constexpr size_t few = 8;
        if (count > few)
            return std::copy_n(units, count, out);
        for (size_t i = 0; i < count; ++i)
            out[i] = units[i];
        return out + count;
    }

    /** Counts units, and tells whether they are to be written. */
    bool claim(uint64_t units) noexcept
    {
        if (canHold(units))
        {
            m_total += units;
            return true;
        }
        m_isTruncated = true;
        addToTotal(units);
        return false;
    }

    /** Whether the text has ended before these units; if not, no surrogate waits for them. */
    bool isOver(uint64_t count) noexcept
    {
        if (!isUTF8 || m_high == 0)
            return false;
        if (m_high == ended)
            return true;
        m_high = count > 0 ? u'\0' : m_high;
        return false;
    }

    // Most fills are empty.
    void append(const Fill &fill) noexcept
    {
        if (fill.count > 0 && !isOver(fill.count) && claim(fill.count))
            m_next = std::fill_n(m_next, fill.count, static_cast<Unit>(fill.unit)); // ASCII in every conversion
    }

    void append(const NarrowText &text) noexcept
    {
        if (text.count == 0 || isOver(text.count))
            return;
        if (text.characters == nullptr) // only counted: the number as a whole does not fit
            m_isTruncated = true;
        if (!claim(isUTF8 ? text.count + text.beyondAscii : text.count))
            return;
        const char *const end = text.characters + text.count;
        if (isUTF8 && text.beyondAscii > 0)
            for (const char *next = text.characters; next != end; ++next)
                putWritable(static_cast<unsigned char>(*next));
        else
            m_next = std::transform(text.characters, end, m_next,
                                    [](unsigned char character) { return static_cast<Unit>(character); });
    }

    void append(const Text &text) noexcept
    {
        if constexpr (isUTF8)
            for (const UCS2 *next = text.units; next != text.units + text.count; ++next)
                putUnit(*next);
        else if (claim(text.count))
            m_next = std::copy_n(text.units, text.count, m_next);
    }

    void append(const NameText &name) noexcept
    {
        name.forEachPart([this](const UCS2 *units, size_t count) { append(Text{units, count}); });
    }

    void append(const UTF8Text &text) noexcept
    {
        const char *cursor = text.bytes;
        const char *const end = cursor + text.length;
        for (uint64_t left = text.count; cursor != end && left > 0;)
        {
            const size_t run = appendAscii(cursor, std::min<uint64_t>(left, static_cast<uint64_t>(end - cursor)));
            cursor += run;
            left -= run;
            if (cursor == end || left == 0)
                break;
            const UChar32 codePoint = takeCodePoint(cursor, end);
            if (codePoint <= 0xFFFF || left >= 2)
                putCodePoint(codePoint);
            else
                putUnit(U16_LEAD(codePoint)); // cut in the middle
            left -= codePoint <= 0xFFFF || left < 2 ? 1 : 2;
        }
    }

    /** Appends the ASCII at the start of `limit` bytes, as far as it fits; the length of the run. */
    size_t appendAscii(const char *text, size_t limit) noexcept
    {
        if (m_isTruncated)
        {
            size_t run = 0;
            while (run < limit && static_cast<signed char>(text[run]) >= 0)
                ++run;
            if (!isOver(run))
                addToTotal(run);
            return run;
        }
        const size_t run = copyRun(text, std::min<size_t>(limit, m_capacity - m_total - 1), m_next);
        if (isOver(run))
            return run;
        m_next += run;
        m_total += run;
        return run;
    }

    static size_t copyRun(const char *text, size_t limit, UCS2 *out) noexcept { return widenAscii(text, limit, out); }
    static size_t copyRun(const char *text, size_t limit, char *out) noexcept
    {
        return copyAsciiBytes(text, limit, out);
    }

    void putCodePoint(UChar32 codePoint) noexcept
    {
        const size_t units = isUTF8 ? utf8Length(codePoint) : U16_LENGTH(codePoint);
        if (!isOver(units) && claim(units))
            putWritable(codePoint);
    }

    /** Writes a code point for which there is room. */
    void putWritable(UChar32 codePoint) noexcept
    {
        size_t written = 0;
        if constexpr (isUTF8)
            U8_APPEND_UNSAFE(m_next, written, codePoint);
        else
            U16_APPEND_UNSAFE(m_next, written, codePoint);
        m_next += written;
    }

    void putUnit(UCS2 unit) noexcept
    {
        if constexpr (!isUTF8)
        {
            if (claim(1))
                *m_next++ = unit;
        }
        else if (m_high == ended)
            return;
        else if (unit == 0)
            m_high = ended;
        else if (!U16_IS_SURROGATE(unit))
            putCodePoint(unit);
        else if (m_high != 0 && U16_IS_TRAIL(unit))
            joinSurrogates(unit);
        else
        {
            putCodePoint(replacementCharacter);
            m_high = U16_IS_LEAD(unit) ? unit : u'\0';
        }
    }

    /** Makes one character of the replacement written last and a low surrogate. */
    void joinSurrogates(UCS2 low) noexcept
    {
        const UChar32 codePoint = U16_GET_SUPPLEMENTARY(std::exchange(m_high, u'\0'), low);
        constexpr size_t replaced = utf8Length(replacementCharacter);
        if (claim(utf8Length(codePoint) - replaced))
        {
            m_next -= replaced;
            putWritable(codePoint);
        }
    }

    template <typename Call> int appendInPlace(const Call &call) noexcept
    {
        unsigned long units = room();
        const unsigned long given = units;
        const int result = call(&units, m_next);
        if (result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
            return result;
        if (isOver(units))
            return 0;
        // What claims more than its room counts as not written. There is room as long as nothing is cut.
        if (result == 0 && units < given)
            m_next += units;
        else
            m_isTruncated = true;
        addToTotal(units);
        return 0;
    }

    template <typename Call> int appendThroughBuffer(const Call &call, const Layout &padding) noexcept
    {
        const auto writeCalled = [&](const UCS2 *text, unsigned long count) {
            const Fill fill = {padUnit(padding.flags), paddingTo(padding.width, count)};
            return writePadded(Text{text, count}, fill, (padding.flags & FLAG_MINUS) != 0);
        };
        constexpr size_t usualUnits = 256;
        UCS2 usual[usualUnits];
        unsigned long units = usualUnits;
        int result = call(&units, usual);
        if (result == 0 && units < usualUnits)
            return writeCalled(usual, units);
        if (result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
            return result;

        const unsigned long asked = units < ~0UL ? units + 1 : units;
        const TagBlock<UCS2> buffer = allocate<UCS2>(glbResHandle, asked);
        if (buffer == nullptr)
            return KT_ERR_NO_MEMORY;
        units = asked;
        result = call(&units, buffer.get());
        if (result == 0 && units < asked)
            return writeCalled(buffer.get(), units);
        if (result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
            return result;
        if (!isOver(units))
        {
            m_isTruncated = true;
            addToTotal(units);
        }
        return 0;
    }

    Unit *m_out;
    Unit *m_next;
    unsigned long m_capacity;
    unsigned long m_total = 0; // less than the capacity while nothing is cut
    bool m_isTruncated;        // from the start where there is no room at all

    // UTF-8 only: a high surrogate that ends the text so far, and was written as U+FFFD; or that U+0000 has ended it.
    UCS2 m_high = 0;
    static constexpr UCS2 ended = 1;
};

} // namespace kelto

#endif
