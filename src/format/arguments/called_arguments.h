/**
 * Typed arguments as a formatter takes them when a prepared format calls it: slots that point to texts, and to cells
 * with values. While the formatter runs, KTPointerOfKind() knows which of its slots hold pointers, and of which kind.
 */
#ifndef KELTO_FORMAT_ARGUMENTS_CALLED_ARGUMENTS_H
#define KELTO_FORMAT_ARGUMENTS_CALLED_ARGUMENTS_H

#include "kelto.h"
#include "platform/scoped.h"

#include <cstddef>
#include <cstdint>

namespace kelto
{

/** The arguments of one conversion, in slots that end with null. */
class CalledArguments
{
public:
    /** Makes the slots; false when memory ran out. A few arguments and short texts need no memory. */
    bool make(const KTArgument *arguments, const KTSlot *slots, size_t count) noexcept;

    void **slots() const noexcept { return m_slots; }

private:
    /** A value in the size that a formatter reads. */
    union Cell
    {
        uint64_t integer;
        uint16_t unit;
        double number;
        long double longNumber;
        const void *pointer;
    };

    static void *valueOf(const KTArgument &argument, uint32_t code, Cell &cell) noexcept;
    void *textOf(const KTArgument &argument) noexcept;

    alignas(Cell) char m_usual[512];
    TagBlock<char> m_long;
    void **m_slots = nullptr;
    char *m_copy = nullptr; // where the next copy goes
    char *m_end = nullptr;
};

/** Makes the slots of a formatter known while it runs. A formatter may itself format something. */
class RunningSlots
{
public:
    RunningSlots(void **begin, const KTArgument *arguments, size_t count) noexcept;
    ~RunningSlots();
    RunningSlots(const RunningSlots &) = delete;
    RunningSlots &operator=(const RunningSlots &) = delete;

    /** KTPointerOfKind() for the formatter that runs in this thread. */
    static const void *pointerOfKind(void *const *slot, uint32_t kind) noexcept;

private:
    void **m_begin;
    const KTArgument *m_arguments;
    size_t m_count;
    const RunningSlots *m_outer; // the slots of the call in which this one runs, or null
};

} // namespace kelto

#endif
