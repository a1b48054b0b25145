/**
 * The arguments of a format call as slots: an array of pointers in the order of the conversions' positions and, within
 * a conversion, width, precision, values. The numbers of the slots are the same for all calls. A variable argument list
 * is copied into cells; an array of pointers is used as it is.
 */
#ifndef KELTO_FORMAT_ARGUMENTS_ARGUMENT_SLOTS_H
#define KELTO_FORMAT_ARGUMENTS_ARGUMENT_SLOTS_H

#include "format/conversion_record.h"
#include "platform/scoped.h"

#include <cstdarg>

namespace kelto
{

/** The number of conversions without the markers, and the number of slots that they take. */
struct ConversionCounts
{
    size_t conversions, slots;
};

/**
 * Assigns argIndex, FLAG_TAG and FLAG_ENCODE to every conversion. Regions open and close in the order of the positions,
 * not of the text.
 * @param parameters  ended by a null formatter; null is an empty array.
 */
ConversionCounts completeParameters(KTParameter *parameters, bool tag) noexcept;

/** The number of pointers in an array that ends with null. */
size_t countPointers(void *const *pointers) noexcept;

/** The slots of a variable argument list, each a copy of its value in a cell of its own. */
class ArgumentCells
{
public:
    ArgumentCells() = default;
    ~ArgumentCells();
    ArgumentCells(const ArgumentCells &) = delete;
    ArgumentCells &operator=(const ArgumentCells &) = delete;

    /** Takes the arguments of numbered conversions from the list, as far as they go; false when memory ran out. */
    bool collect(const KTParameter *parameters, size_t slotCount, va_list *arguments) noexcept;

    /** The slots, ended by null. */
    void **slots() noexcept { return m_slots.get(); }

private:
    TagBlock<void *> m_slots;
};

} // namespace kelto

#endif
