/**
 * The text of a format call as it grows, in UCS-2 or UTF-8: written while it fits, measured to its end in any case.
 * Literal text and conversions are appended in the order of the text. A conversion of the library hands over its pieces
 * (layout.h); one of the caller is called. Nothing is written beyond the room, even where a length turns out to be
 * wrong.
 *
 * The beginning of a text that does not fit may be wanted (Beginning::kept): it then fills the room, and ends with a
 * whole character. Otherwise (Beginning::ofNoUse) the units in the buffer mean nothing.
 *
 * In UTF-8 the text is what a conversion of the whole UCS-2 text would be: a high surrogate that ends one piece joins
 * the low one that begins the next, a surrogate by itself becomes U+FFFD, and U+0000 ends the text.
 */
#ifndef KELTO_FORMAT_OUTPUT_FORMAT_OUTPUT_H
#define KELTO_FORMAT_OUTPUT_FORMAT_OUTPUT_H

#include "format/formatters/distinguished_name.h"
#include "format/formatters/layout.h"
#include "format/formatters/text.h"
#include "format/output/called_text.h"
#include "format/output/surrogate_joiner.h"
#include "strconv/ascii_run.h"
#include "strconv/utf8_text.h"

#include <algorithm>
#include <type_traits>
#include <unicode/utf16.h>

namespace kelto
{

/** A UTF-8 text as a piece, perhaps malformed; `count` is the most units that it may give. */
struct UTF8Text
{
    const char *bytes;
    size_t length;
    uint64_t count;
};

/** What becomes of a text that does not fit. */
enum class Beginning : uint8_t
{
    ofNoUse,
    kept
};

template <typename Unit> class FormatOutput
{
public:
    /** @param size  the capacity, in units of the text, its terminator counted. */
    FormatOutput(Unit *out, const unsigned long *size, Beginning beginning = Beginning::ofNoUse) noexcept
        : m_out(out), m_next(out), m_capacity(*size), m_room(m_capacity), m_keepsBeginning(beginning == Beginning::kept)
    {
    }

    /** Whether the text has run out of room, and is only measured from there on. */
    bool isTruncated() const noexcept { return m_room == 0; }

    /** The units so far, written or not. */
    unsigned long length() const noexcept { return isTruncated() ? m_total : m_capacity - m_room; }

    /** Whether so many more units may fit; false is certain, true is not. */
    bool canHold(uint64_t length) const noexcept { return fits(length, m_room); }

    /** Appends units of literal text; the beginning where not all fit. */
    void appendLiteral(const Unit *units, size_t count) noexcept
    {
        if (!goOn(count))
            return;
        if (claim(count))
            m_next = copyUnits(units, count, m_next);
        else
            cutLiteral(units, count);
    }

    /** Appends pieces, each whole or not at all. @return 0; finish() tells whether the text fits. */
    template <typename... Pieces> int write(Ending /*ending*/, const Pieces &...pieces) noexcept
    {
        if (!writeTogether(pieces...))
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
     * @param call  calls it with a layout, a size and an output, as in KTFormatFunction.
     * @return its failure; 0 also where its text was merely too long.
     */
    template <typename Call> int appendCalled(const Call &call, const Layout &layout) noexcept
    {
        if constexpr (isUTF8)
            return appendThroughBuffer(call, layout, noLayout);
        else
            return appendInPlace(call, layout);
    }

    /** The same for a text whose beginning is of no use; UCS-2. */
    template <typename Call> int appendCalledWhole(const Call &call, const Layout &layout) noexcept
    {
        static_assert(!isUTF8);
        return appendInPlace<false>(call, layout);
    }

    /**
     * The same for a formatter of the library's that calls an encoder. In UTF-8 its text is padded here, so that a huge
     * width takes no memory; and cut here where the encoder wants room for the whole text.
     */
    template <typename Call> int appendEncoded(const Call &call, const Layout &layout) noexcept
    {
        if constexpr (isUTF8)
            return appendThroughBuffer(call, {KT_ABSENT, layout.precision, layout.flags}, layout);
        else
            return appendInPlace(call, layout);
    }

    /**
     * Appends what a formatter of the caller's writes in UTF-8.
     * @param call  calls it with a layout, a size and an output, as in KTUTF8FormatFunction.
     * @return its failure; 0 also where its text was merely too long.
     */
    template <typename Call> int appendCalledUTF8(const Call &call, const Layout &layout) noexcept
    {
        static_assert(isUTF8);
        return appendInPlace(call, layout);
    }

    /** Ends the text. @param size  out: its length, or the need. */
    int finish(unsigned long *size) noexcept
    {
        if (isTruncated())
            return finishTruncated(size);
        *m_next = 0;
        *size = length();
        return 0;
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
    static constexpr Layout noLayout = {KT_ABSENT, KT_ABSENT, 0};

    /** The room that a formatter is told of. There is some behind a text that did not fit and was not written. */
    unsigned long room() const noexcept { return isTruncated() ? m_capacity - std::min(m_capacity, m_total) : m_room; }

    /** From here on the text is only measured. */
    void truncate() noexcept
    {
        m_total = length();
        m_room = 0;
    }

    /** Counts units that are not written. */
    void addToTotal(unsigned long units) noexcept
    {
        if (__builtin_add_overflow(m_total, units, &m_total))
            m_total = ~0UL;
    }

    [[gnu::noinline, gnu::cold]] int finishTruncated(unsigned long *size) noexcept
    {
        if (m_keepsBeginning)
            dropHalfCharacter();
        terminate(m_next);
        *size = m_total;
        return KT_ERR_BUFFER_TOO_SMALL;
    }

    void terminate(Unit *where) const noexcept
    {
        if (m_capacity > 0)
            *where = 0;
    }

    /** Counts units that fit as a whole. @return false where they do not fit, and nothing is counted. */
    bool claim(uint64_t units) noexcept
    {
        if (!canHold(units))
            return false;
        m_room -= units;
        return true;
    }

    /** Counts units that do not fit as a whole. @return how many of them are to be written. */
    [[gnu::noinline, gnu::cold]] uint64_t cut(uint64_t units) noexcept
    {
        const uint64_t beginning = roomForBeginning();
        truncate();
        addToTotal(units);
        return beginning;
    }

    [[gnu::noinline, gnu::cold]] void cutLiteral(const Unit *units, size_t count) noexcept
    {
        if (!isTruncated())
            m_next = std::copy_n(units, std::min<size_t>(count, m_room - 1), m_next);
        truncate();
        addToTotal(count);
    }

    /** How many units of a text that does not fit as a whole can be written. */
    uint64_t roomForBeginning() const noexcept { return m_keepsBeginning && !isTruncated() ? m_room - 1 : 0; }

    /** Drops the part of a character at the end of a text that was cut. */
    [[gnu::noinline, gnu::cold]] void dropHalfCharacter() noexcept
    {
        if constexpr (isUTF8)
        {
            Unit *lead = m_next;
            while (lead != m_out && U8_IS_TRAIL(*(lead - 1)))
                --lead;
            if (lead != m_out && m_next - lead < U8_COUNT_TRAIL_BYTES(*(lead - 1)))
                m_next = lead - 1;
        }
        else if (m_next != m_out && U16_IS_LEAD(*(m_next - 1)))
            --m_next;
    }

    /** Prepares for units that join no surrogate; false where the text has ended before them. */
    bool goOn(uint64_t count) noexcept { return !isUTF8 || m_surrogates.goOn(count); }

    /** Whether a piece is written as one unit of the text for each of its own, as a rule. */
    template <typename Piece>
    static constexpr bool isUsuallyEven = std::is_same_v<Piece, Fill> || std::is_same_v<Piece, NarrowText> ||
                                          (!isUTF8 && std::is_same_v<Piece, UCS2Text>);

    /** Whether one that usually is so is no exception. */
    template <typename Piece> static constexpr bool isEven(const Piece &piece) noexcept
    {
        if constexpr (isUTF8 && std::is_same_v<Piece, NarrowText>)
            return piece.beyondAscii == 0;
        else
            return true;
    }

    /** Writes pieces that fit together and are all even, which is one question for all; else false, and nothing is. */
    template <typename... Pieces> bool writeTogether(const Pieces &...pieces) noexcept
    {
        if constexpr ((isUsuallyEven<Pieces> && ...))
        {
            const uint64_t count = (pieces.count + ...);
            if ((isEven(pieces) && ...) && canHold(count) && goOn(count))
            {
                m_room -= count;
                Unit *next = m_next;
                ((next = pieces.writeTo(next)), ...);
                m_next = next;
                return true;
            }
        }
        return false;
    }

    // Most fills are empty.
    void append(const Fill &fill) noexcept
    {
        if (fill.count > 0 && goOn(fill.count))
            appendFill(fill.unit, fill.count);
    }

    // By value like what follows: most pieces are none of these, and then need not be in memory.
    [[gnu::noinline]] void appendFill(UCS2 unit, uint64_t count) noexcept
    {
        const uint64_t written = claim(count) ? count : cut(count);
        m_next = std::fill_n(m_next, written, static_cast<Unit>(unit)); // ASCII in every conversion
    }

    void append(const NarrowText &text) noexcept
    {
        if (text.count == 0 || !goOn(text.count))
            return;
        if (text.characters == nullptr) // only counted: the number as a whole does not fit
            truncate();
        if (!isEven(text))
            return appendBeyondAscii(text.characters, text.count + text.beyondAscii);
        if (!claim(text.count))
            return appendBeginning(text.characters, text.count);
        m_next = text.writeTo(m_next);
    }

    [[gnu::noinline, gnu::cold]] void appendBeginning(const char *characters, uint64_t count) noexcept
    {
        for (uint64_t left = cut(count); left > 0; --left)
            *m_next++ = static_cast<Unit>(static_cast<unsigned char>(*characters++));
    }

    /** A number with the decimal mark of some locale, in UTF-8. */
    [[gnu::noinline, gnu::cold]] void appendBeyondAscii(const char *characters, uint64_t bytes) noexcept
    {
        uint64_t left = claim(bytes) ? bytes : cut(bytes);
        for (const char *next = characters; left > 0; ++next)
        {
            const auto character = static_cast<unsigned char>(*next);
            if (utf8Length(character) > left)
                return;
            putWritable(character);
            left -= utf8Length(character);
        }
    }

    void append(const UCS2Text &text) noexcept
    {
        if constexpr (isUTF8)
            for (const UCS2 *next = text.units; next != text.units + text.count; ++next)
                putUnit(*next);
        else
            m_next = std::copy_n(text.units, claim(text.count) ? text.count : cut(text.count), m_next);
    }

    void append(const NameText &name) noexcept
    {
        name.forEachPart([this](const UCS2 *units, size_t count) { append(UCS2Text{units, count}); });
    }

    // Most texts are ASCII from end to end, and fit.
    void append(const UTF8Text &text) noexcept { appendUTF8(text.bytes, text.length, text.count); }

    [[gnu::noinline]] void appendUTF8(const char *bytes, size_t length, uint64_t count) noexcept
    {
        const uint64_t most = std::min<uint64_t>(length, count);
        if (!canHold(most) || !goOn(most))
            return appendMixed(bytes, length, count);
        const size_t run = copyRun(bytes, most, m_next);
        m_next += run;
        m_room -= run;
        if (run != most)
            appendMixed(bytes + run, length - run, count - run);
    }

    [[gnu::noinline]] void appendMixed(const char *cursor, size_t length, uint64_t count) noexcept
    {
        const char *const end = cursor + length;
        for (uint64_t left = count; cursor != end && left > 0;)
        {
            if (isAsciiByte(*cursor))
            {
                const size_t run = appendAscii(cursor, std::min<uint64_t>(left, static_cast<uint64_t>(end - cursor)));
                cursor += run;
                left -= run;
                if (cursor == end || left == 0)
                    break;
            }
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
        if (isTruncated())
        {
            size_t run = 0;
            while (run < limit && isAsciiByte(text[run]))
                ++run;
            if (goOn(run))
                addToTotal(run);
            return run;
        }
        const size_t run = copyRun(text, std::min<size_t>(limit, m_room - 1), m_next);
        if (!goOn(run))
            return run;
        m_next += run;
        m_room -= run;
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
        if (!goOn(units))
            return;
        if (claim(units))
            putWritable(codePoint);
        else
            cut(units);
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
            else
                cut(1);
        }
        else if (m_surrogates.hasEnded())
            return;
        else if (unit == 0)
            m_surrogates.end();
        else if (!U16_IS_SURROGATE(unit))
            putCodePoint(unit);
        else if (m_surrogates.joins(unit))
            putJoined(m_surrogates.join(unit));
        else
        {
            putCodePoint(replacementCharacter);
            m_surrogates.wait(unit);
        }
    }

    /** Writes a character in place of the replacement that was written last. */
    void putJoined(UChar32 codePoint) noexcept
    {
        constexpr size_t replaced = utf8Length(replacementCharacter);
        const size_t more = utf8Length(codePoint) - replaced;
        const bool isWritten = !isTruncated();
        const bool hasRoom = claim(more);
        if (!hasRoom)
            cut(more);
        if (hasRoom || (isWritten && m_keepsBeginning))
            m_next -= replaced;
        if (hasRoom)
            putWritable(codePoint);
    }

    template <bool mayKeepBeginning = true, typename Call>
    int appendInPlace(const Call &call, const Layout &layout) noexcept
    {
        unsigned long units = room();
        const unsigned long given = units;
        const int result = call(layout, &units, m_next);
        if (result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
            return result;
        if (!goOn(units))
            return 0;
        // What claims more than its room counts as not written. There is room as long as nothing is cut.
        if (result == 0 && units < given)
        {
            m_next += units;
            if (isTruncated())
                addToTotal(units);
            else
                m_room -= units;
            return 0;
        }
        int kept = 0;
        if constexpr (mayKeepBeginning)
            kept = m_keepsBeginning ? keepBeginning(call, layout, units) : 0;
        truncate();
        addToTotal(units);
        return kept;
    }

    /**
     * Writes as much as fits of what a formatter has asked room for, unless that is a lot. Without room some formatters
     * do not tell that they fail; so they are asked even where nothing of the text fits. What it takes, it takes by
     * value: the calls that do not come here then need not have it in memory.
     */
    template <typename Call>
    [[gnu::noinline, gnu::cold]] int keepBeginning(Call call, Layout layout, unsigned long units) noexcept
    {
        const unsigned long asked = units + 1;
        const TagBlock<Unit> buffer = units < CalledText::alwaysAllowed ? allocate<Unit>(glbResHandle, asked) : nullptr;
        if (buffer == nullptr)
            return 0;
        unsigned long written = asked;
        const int result = call(layout, &written, buffer.get());
        if (result != 0 || written >= asked)
            return result != 0 && result != KT_ERR_BUFFER_TOO_SMALL ? result : KT_ERR_CONVERSION_FAILED;
        m_next = std::copy_n(buffer.get(), std::min<uint64_t>(written, roomForBeginning()), m_next);
        return 0;
    }

    /** @param called  what the formatter is told. @param behind  what is done to its text behind it. */
    template <typename Call>
    int appendThroughBuffer(const Call &call, const Layout &called, const Layout &behind) noexcept
    {
        // A text of more units than this does not fit into the bytes that are left.
        const unsigned long most = std::max(room(), CalledText::alwaysAllowed);
        CalledText text;
        int result = text.take(call, called, most);
        if (result == 0 && text.isRefused() && behind.precision >= 0)
            result = text.take(call, {called.width, KT_ABSENT, called.flags}, most);
        if (result != 0)
            return result;
        if (text.isWritten())
            return writeText(*this, behind, UCS2Text{text.units(), text.count()});
        if (m_keepsBeginning && text.isRefused()) // it had the room that it had asked for
            return KT_ERR_CONVERSION_FAILED;
        if (goOn(text.count()))
        {
            truncate(); // each unit gives a byte at least
            addToTotal(text.count());
            addToTotal(paddingTo(behind.width, text.count()));
        }
        return 0;
    }

    Unit *m_out;
    Unit *m_next;
    unsigned long m_capacity;
    unsigned long m_room;         // left for text and terminator; none once the text is only measured
    unsigned long m_total = 0;    // of a text that is only measured
    bool m_keepsBeginning;        // where the text does not fit
    SurrogateJoiner m_surrogates; // of UTF-8 alone
};

} // namespace kelto

#endif
