/**
 * A buffer that shows every write beyond what was promised. Behind its units lies a guard: the sanitizer stops
 * instrumented code that touches it, and its pattern shows what all other code (ICU, the C library, a plain build) has
 * written there.
 */
#ifndef KELTO_TESTS_SUPPORT_GUARDED_H
#define KELTO_TESTS_SUPPORT_GUARDED_H

#include "support/require.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <sanitizer/asan_interface.h>
#include <string>

template <typename Unit> class Guarded
{
public:
    /** That no text of the tests holds, so that untouched() can tell what was written. */
    static constexpr auto filler = static_cast<Unit>(sizeof(Unit) == 1 ? 0x5A : 0xFDD0);

    explicit Guarded(size_t capacity) : m_units(new Unit[capacity + guardUnits]), m_capacity(capacity)
    {
        std::fill_n(m_units.get(), capacity + guardUnits, filler);
        ASAN_POISON_MEMORY_REGION(m_units.get() + capacity, guardUnits * sizeof(Unit));
    }
    /** A text, its terminator and no more. */
    Guarded(const std::basic_string<Unit> &text) : Guarded(text.size() + 1)
    {
        std::copy_n(text.c_str(), m_capacity, m_units.get());
    }
    ~Guarded()
    {
        if (m_units == nullptr) // moved
            return;
        ASAN_UNPOISON_MEMORY_REGION(m_units.get() + m_capacity, guardUnits * sizeof(Unit));
        m_capacity += guardUnits;
        require(untouched(m_capacity - guardUnits), "nothing behind a buffer is written");
    }
    Guarded(Guarded &&) noexcept = default;
    Guarded &operator=(Guarded &&other) noexcept
    {
        std::swap(m_units, other.m_units);
        std::swap(m_capacity, other.m_capacity);
        return *this;
    }

    Unit *data() { return m_units.get(); }
    size_t capacity() const { return m_capacity; }
    Unit operator[](size_t index) const { return m_units[index]; }

    /** Whether no unit from this one on was written. */
    bool untouched(size_t from = 0) const
    {
        return std::all_of(m_units.get() + from, m_units.get() + m_capacity, [](Unit unit) { return unit == filler; });
    }

    /** The units before the first zero, or all of them. */
    std::basic_string<Unit> text() const
    {
        return {m_units.get(), std::find(m_units.get(), m_units.get() + m_capacity, Unit{0})};
    }
    bool isTerminated() const { return text().size() < m_capacity; }

private:
    static constexpr size_t guardUnits = 32;

    std::unique_ptr<Unit[]> m_units;
    size_t m_capacity;
};

#endif
