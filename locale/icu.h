/**
 * What every file of the add-on needs of ICU: handles that close themselves, results for its status, a text in a buffer
 * that grows, and objects that are made once and shared, or made as often as threads need them at the same time.
 */
#ifndef KELTO_LOCALE_ICU_H
#define KELTO_LOCALE_ICU_H

#include "kelto.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <unicode/utypes.h>

namespace kelto::locale
{

/** A unique_ptr that calls ICU's function for closing. */
template <auto close> struct Close
{
    template <typename T> void operator()(T *object) const noexcept { close(object); }
};
template <typename T, auto close> using Handle = std::unique_ptr<T, Close<close>>;

/** What a caller is told of ICU's failures. */
inline int resultOf(UErrorCode status) noexcept
{
    if (U_SUCCESS(status))
        return 0;
    return status == U_MEMORY_ALLOCATION_ERROR ? KT_ERR_NO_MEMORY : KT_ERR_CONVERSION_FAILED;
}

/**
 * Asks for memory before ICU does, which ends the program in many places where it gets none. A machine, or an allocator
 * given to ICU, that has nothing left is so told of in time; a single refusal in the midst of ICU's work is not.
 * @param isMaking  for making an object of ICU's rather than using one.
 * @return 0 or KT_ERR_NO_MEMORY.
 */
int askForMemory(bool isMaking) noexcept;

/** A block of the C heap. */
template <typename T> using HeapBlock = std::unique_ptr<T[], Close<std::free>>;

template <typename T> HeapBlock<T> allocate(size_t count) noexcept
{
    return HeapBlock<T>(static_cast<T *>(std::malloc(count * sizeof(T))));
}

/** A text that ICU writes: usually short, else in memory of its own. */
class IcuText
{
public:
    /** @param fill  calls ICU with a buffer, its capacity and a status; the length of the text. */
    template <typename Fill> int make(const Fill &fill) noexcept
    {
        UErrorCode status = U_ZERO_ERROR;
        m_length = fill(m_usual, usualUnits, &status);
        if (status != U_BUFFER_OVERFLOW_ERROR)
            return resultOf(status);
        m_long = allocate<UChar>(static_cast<size_t>(m_length) + 1);
        if (m_long == nullptr)
            return KT_ERR_NO_MEMORY;
        status = U_ZERO_ERROR;
        m_length = fill(m_long.get(), m_length + 1, &status);
        return resultOf(status);
    }

    const UChar *units() const noexcept { return m_long != nullptr ? m_long.get() : m_usual; }
    size_t length() const noexcept { return static_cast<size_t>(m_length); }

private:
    static constexpr int32_t usualUnits = 256;
    UChar m_usual[usualUnits];
    HeapBlock<UChar> m_long;
    int32_t m_length = 0;
};

/** An object that the first who needs it makes, and that lives as long as its owner. */
template <typename T, typename Deleter = std::default_delete<T>> class Lazy
{
public:
    Lazy() = default;
    ~Lazy() { Deleter()(m_object.load(std::memory_order_relaxed)); }
    Lazy(const Lazy &) = delete;
    Lazy &operator=(const Lazy &) = delete;

    using Owner = std::unique_ptr<T, Deleter>;

    /**
     * @param make  stores an object in an Owner; 0 or the result. Several threads may call theirs at once: one object
     *              stays.
     */
    template <typename Make> int get(const T *&object, const Make &make) noexcept
    {
        object = m_object.load(std::memory_order_acquire);
        return object != nullptr ? 0 : getFirst(object, make);
    }

private:
    template <typename Make> [[gnu::noinline]] int getFirst(const T *&object, const Make &make) noexcept
    {
        Owner made;
        if (const int result = askForMemory(true))
            return result;
        if (const int result = make(made))
            return result;
        T *expected = nullptr;
        if (m_object.compare_exchange_strong(expected, made.get(), std::memory_order_acq_rel))
            expected = made.release();
        object = expected;
        return 0;
    }

    std::atomic<T *> m_object = nullptr;
};

/** Objects that one thread at a time may use, kept for the next one. Without a lock: who finds none makes one. */
template <typename T, auto close> class Pool
{
public:
    Pool() = default;
    ~Pool() { clear(); }
    Pool(const Pool &) = delete;
    Pool &operator=(const Pool &) = delete;

    /** Gives its object back in the end. */
    class Loan
    {
    public:
        Loan(Pool &pool, T *object) noexcept : m_pool(pool), m_object(object) {}
        ~Loan() { m_pool.put(m_object); }
        Loan(const Loan &) = delete;
        Loan &operator=(const Loan &) = delete;

    private:
        Pool &m_pool;
        T *m_object;
    };

    /** An object that nobody uses, or null. */
    T *take() noexcept
    {
        for (auto &place : m_places)
            if (place.load(std::memory_order_relaxed) != nullptr)
                if (T *const object = place.exchange(nullptr, std::memory_order_acquire))
                    return object;
        return nullptr;
    }

    void put(T *object) noexcept
    {
        for (auto &place : m_places)
        {
            T *expected = nullptr;
            if (place.load(std::memory_order_relaxed) == nullptr &&
                place.compare_exchange_strong(expected, object, std::memory_order_release, std::memory_order_relaxed))
                return;
        }
        close(object);
    }

    void clear() noexcept
    {
        while (T *const object = take())
            close(object);
    }

private:
    static constexpr size_t placeCount = 8;
    std::atomic<T *> m_places[placeCount] = {};
};

} // namespace kelto::locale

#endif
