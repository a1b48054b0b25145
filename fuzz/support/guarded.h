/**
 * Buffers that show every write beyond what was promised. Behind the units of a buffer lies a guard: the sanitizer stops
 * instrumented code that touches it, and its pattern shows what other libraries (ICU, the C library) have written there.
 */
#ifndef KELTO_FUZZ_GUARDED_H
#define KELTO_FUZZ_GUARDED_H

#include "support/require.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <sanitizer/asan_interface.h>

template <typename Unit> class Guarded
{
public:
    static constexpr auto filler = static_cast<Unit>(0x5A5A);

    explicit Guarded(size_t capacity) : m_units(new Unit[capacity + guardUnits]), m_capacity(capacity)
    {
        std::fill_n(m_units.get(), capacity + guardUnits, filler);
        ASAN_POISON_MEMORY_REGION(guard(), guardBytes);
    }
    ~Guarded()
    {
        ASAN_UNPOISON_MEMORY_REGION(guard(), guardBytes);
        require(isFiller(m_capacity, m_capacity + guardUnits), "nothing behind a buffer is written");
    }
    Guarded(const Guarded &) = delete;
    Guarded &operator=(const Guarded &) = delete;

    Unit *data() { return m_units.get(); }
    size_t capacity() const { return m_capacity; }
    Unit operator[](size_t index) const { return m_units[index]; }

    /** Whether no unit from this one on was written. */
    bool isUntouched(size_t from = 0) const { return isFiller(from, m_capacity); }
    /** Whether a terminator stands in the buffer. */
    bool isTerminated() const { return std::count(m_units.get(), m_units.get() + m_capacity, Unit{0}) > 0; }

private:
    static constexpr size_t guardUnits = 32;
    static constexpr size_t guardBytes = guardUnits * sizeof(Unit);

    Unit *guard() { return m_units.get() + m_capacity; }
    bool isFiller(size_t from, size_t to) const
    {
        return std::all_of(m_units.get() + from, m_units.get() + to, [](Unit unit) { return unit == filler; });
    }

    std::unique_ptr<Unit[]> m_units;
    size_t m_capacity;
};

#endif
