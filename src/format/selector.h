/**
 * A selector: a message that is one conversion "plural", "ordinal" or "select" and nothing else, and stands for one of
 * the messages in a row. Its text is read here, and its choice made: which places of the row the arguments of a call
 * want. Where the messages of the row come from is their reader's affair.
 */
#ifndef KELTO_FORMAT_SELECTOR_H
#define KELTO_FORMAT_SELECTOR_H

#include "kelto.h"
#include "plural/plural_rules.h"

#include <cstddef>

namespace kelto
{

/** The most selectors that a choice may pass. */
constexpr unsigned maxSelectionSteps = 8;

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

    /** The messages that its row may have. */
    unsigned rowLength() const noexcept { return kind == SelectorKind::select ? 64 : KT_VARIANT_EXACTLY_1 + 1; }
};

/** What a message is. */
struct SelectorReading
{
    bool isSelector;
    KTRule fault;          /**< why one that was meant as a selector is none; KT_RULE_NONE of any other message */
    size_t offset, length; /**< of the conversion that is at fault */
    Selector selector;
};

/** Reads a message. What is no selector, and was not meant as one, is an ordinary message. */
SelectorReading readSelector(const char *message) noexcept;

/** Whether a slot takes what the selector selects by. */
bool selectsBy(const Selector &selector, uint32_t slotCode) noexcept;

/** The places of a row that serve a call, the most wanted first. */
struct WantedPlaces
{
    unsigned count = 0;
    uint8_t places[3];
};

/** @return 0, or KT_ERR_INVALID_PARAMETER where the argument that selects is missing or no number. */
int findWantedPlaces(const Selector &selector, LanguageRules rules, const KTArgument *arguments, size_t count,
                     WantedPlaces &wanted) noexcept;

} // namespace kelto

#endif
