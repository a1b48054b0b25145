/**
 * UCS-2 text in tests. GoogleTest compares and prints std::u16string; these make one from what the library handles, and
 * a buffer that shows writes beyond what was promised.
 *
 *     EXPECT_EQ(asString(out), u"files: 7");
 */
#ifndef KELTO_TESTS_SUPPORT_UCS2_H
#define KELTO_TESTS_SUPPORT_UCS2_H

#include "kelto.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

/** The text up to its terminator. */
inline std::u16string asString(const UCS2 *text)
{
    return std::u16string(text);
}

/** The first units of a text that may have no terminator. */
inline std::u16string asString(const UCS2 *text, size_t units)
{
    return std::u16string(text, units);
}

/**
 * A buffer on the heap of exactly the capacity asked for, so that a sanitizer sees one unit too many; filled with a unit
 * that no text of the tests holds, so that untouched() can tell what was written.
 */
class Ucs2Buffer
{
public:
    static constexpr UCS2 filler = 0xFDD0;

    explicit Ucs2Buffer(size_t capacity) : m_units(new UCS2[capacity]), m_capacity(capacity)
    {
        std::fill_n(m_units.get(), capacity, filler);
    }

    UCS2 *data() { return m_units.get(); }
    size_t capacity() const { return m_capacity; }
    UCS2 operator[](size_t index) const { return m_units[index]; }

    /** Whether no unit from this one on was written. */
    bool untouched(size_t from = 0) const
    {
        return std::all_of(m_units.get() + from, m_units.get() + m_capacity, [](UCS2 unit) { return unit == filler; });
    }

    /** The units before the first zero, or all of them. */
    std::u16string text() const
    {
        return std::u16string(m_units.get(), std::find(m_units.get(), m_units.get() + m_capacity, UCS2{0}));
    }

private:
    std::unique_ptr<UCS2[]> m_units;
    size_t m_capacity;
};

#endif
