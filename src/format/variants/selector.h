/**
 * A selector: a message that is one conversion "plural", "ordinal" or "select" and nothing else, and stands for one of
 * the messages in a row. This file reads its text and makes its choice: which places of the row the arguments of a call
 * want. It does not know where the messages of the row come from.
 */
#ifndef KELTO_FORMAT_VARIANTS_SELECTOR_H
#define KELTO_FORMAT_VARIANTS_SELECTOR_H

#include "format/format_limits.h"
#include "kelto.h"
#include "plural/plural_rules.h"

#include <cstddef>

namespace kelto
{

enum class SelectorKind : uint8_t
{
    plural,
    ordinal,
    select
};

struct Selector
{
    SelectorKind kind;
    uint32_t row;      /**< the number of its first message; 0 for one that no file has */
    uint32_t argument; /**< that selects, from 1 */
    int digits;        /**< shown behind the mark */

    /** The most messages that its row has. */
    unsigned rowLength() const noexcept
    {
        return kind == SelectorKind::select ? selectRowLength : KT_VARIANT_EXACTLY_1 + 1;
    }
};

/** Reads a message; false where it is no selector. */
bool readSelector(const char *message, Selector &selector) noexcept;

/** Why a message is no selector although it looks like one. */
struct SelectorFault
{
    KTRule rule;           /**< KT_RULE_NONE of a message that was not meant as one */
    size_t offset, length; /**< of the conversion that is at fault */
};

/** Finds out why a message is no selector. */
SelectorFault findSelectorFault(const char *message) noexcept;

/** Whether a slot takes an argument by which the selector can select. */
bool selectsBy(const Selector &selector, uint32_t slotCode) noexcept;

/** The places of a row that serve a call, the most wanted first, a byte each from the lowest on. */
struct WantedPlaces
{
    static constexpr uint32_t end = 0xFF; /**< behind the last of them */

    int result; /**< 0, or KT_ERR_INVALID_PARAMETER where the argument that selects is missing or no number */
    uint32_t places;

    bool isEmpty() const noexcept { return (places & end) == end; }
    unsigned front() const noexcept { return places & 0xFF; }
    void pop() noexcept { places >>= 8; }
};

WantedPlaces findWantedPlaces(const Selector &selector, LanguageRules rules, const KTArgument *arguments,
                              size_t count) noexcept;

} // namespace kelto

#endif
