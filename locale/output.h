/**
 * Where a conversion of the add-on writes to: UCS-2 or UTF-8, under the size protocol of formatters. It is given a text
 * in UTF-16, as ICU makes it, and how it is laid out; the width counts UTF-16 units in both encodings.
 */
#ifndef KELTO_LOCALE_OUTPUT_H
#define KELTO_LOCALE_OUTPUT_H

#include "kelto.h"

#include <cstddef>
#include <cstdint>
#include <unicode/utypes.h>

namespace kelto::locale
{

/** How a conversion is written, as a formatter is told. */
struct Spec
{
    int width, precision, flags;
    KTEncoder encoder;

    bool has(int flag) const noexcept { return (flags & flag) != 0; }

    /** The blanks or zeros that a text of so many units lacks. */
    uint64_t missing(uint64_t units) const noexcept
    {
        return width >= 0 && static_cast<uint64_t>(width) > units ? static_cast<uint64_t>(width) - units : 0;
    }
};

/** A text in UTF-16. */
struct Units
{
    const UChar *begin;
    size_t length;
};

/** One conversion's text: blanks, head, zeros, tail, blanks. */
struct Line
{
    Units head;
    Units tail = {nullptr, 0};
    uint64_t zeros = 0;     /**< between head and tail */
    Units zero = {u"0", 1}; /**< one of them */
    uint64_t blanksBefore = 0, blanksBehind = 0;
};

class Output
{
public:
    Output(unsigned long *size, UCS2 *out) noexcept : m_size(size), m_room(*size), m_out(out) {}
    Output(size_t *size, char *out) noexcept : m_size(size), m_room(*size), m_out(out), m_isUTF8(true) {}

    bool isUTF8() const noexcept { return m_isUTF8; }

    /** Stores the length of a text; where it fits, the place for it is stored, else it is null. */
    template <typename Unit> int claim(uint64_t length, Unit *&place) noexcept;

    /** Where a text of at most so many units or bytes can be written; null where it might not fit. */
    template <typename Unit> Unit *reserve(uint64_t atMost) noexcept;

    /** Tells the end of what was written into what was reserved. */
    template <typename Unit> void finish(const Unit *end) noexcept;

    /** Writes a text, or only tells what it needs. @return 0 or KT_ERR_BUFFER_TOO_SMALL. */
    int write(const Line &line) noexcept;

    /** Writes a text padded with blanks to the width, in front of it or with '-' behind. */
    int writePadded(const Spec &spec, Units text) noexcept;

    /** Ends the conversion with a failure. */
    int fail(int result) noexcept
    {
        *m_size = 0;
        return result;
    }

private:
    template <typename Unit> Unit *place() const noexcept { return static_cast<Unit *>(m_out); }

    unsigned long *m_size;
    unsigned long m_room;
    void *m_out;
    bool m_isUTF8 = false;
};

template <typename Unit> int Output::claim(uint64_t length, Unit *&place) noexcept
{
    *m_size = length;
    place = this->place<Unit>();
    return length < m_room ? 0 : KT_ERR_BUFFER_TOO_SMALL;
}

template <typename Unit> Unit *Output::reserve(uint64_t atMost) noexcept
{
    return atMost < m_room ? place<Unit>() : nullptr;
}

template <typename Unit> void Output::finish(const Unit *end) noexcept
{
    *m_size = static_cast<unsigned long>(end - place<Unit>());
}

constexpr uint64_t mostBytesPerUnit = 3;

/** Writes a text in UTF-8, half characters as U+FFFD, where there is room for it; the end of what was written. */
char *toUTF8(Units text, char *out) noexcept;

} // namespace kelto::locale

#endif
