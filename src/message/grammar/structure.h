/**
 * The structure of a message file: a step for each start and each end of an element. The first pass of the loader takes
 * these steps, and ends at the first refusal. The checker takes them too, explains each refusal and goes on.
 */
#ifndef KELTO_MESSAGE_GRAMMAR_STRUCTURE_H
#define KELTO_MESSAGE_GRAMMAR_STRUCTURE_H

#include "message/grammar/elements.h"

#include <cstdint>

/** All zero at the start except `raw`. */
struct FirstPassState
{
    bool raw;       /**< placeholders count without their positions */
    int error;      /**< 0, or the result that ends the pass: all handlers return at once */
    int depth;      /**< the elements that are open */
    ElementID last; /**< the element of the latest event that sets it; what may come next depends on it */
    int xliffSeen, fileSeen, headerSeen, bodySeen;
    int sourceSeen;    /**< in the current "trans-unit" */
    int highestId;     /**< of all messages so far */
    uint64_t textSize; /**< the bytes that all messages need, with two zero bytes after each */
};

namespace kelto
{

struct ElementRule
{
    ElementID mustFollow;      /**< what `last` has to be at the start; ELM_UNKNOWN: anything */
    int FirstPassState::*once; /**< the flag that the start must not find set, and sets; null: none */
    bool (*onStart)(FirstPassState &, const char **attrs); /**< takes the attributes, unless null; false refuses them */
    ElementID lastAtEnd;                                   /**< what `last` becomes at the end; ELM_UNKNOWN: it stays */
    ElementID needed[2]; /**< what has to have started in it at its end; ELM_UNKNOWN: nothing */
    unsigned bytesAtEnd; /**< what its end adds to `textSize` */
};

/** By ElementID. */
extern const ElementRule elementRules[ELM_NOTE + 1];

enum class Start : uint8_t
{
    accepted,
    unknownElement,
    wrongLevel,
    wrongOrder, /**< the level is right, but not what stands in front */
    repetition
};

/** Whether an element that a file or message has only once has started already. */
inline bool hasStarted(const FirstPassState &pass, const ElementRule &rule) noexcept
{
    return pass.*rule.once != 0;
}

/** Whether an element may start here, its attributes aside. */
inline Start judgeStart(const FirstPassState &pass, const ElementMapRow &element) noexcept
{
    const ElementRule &rule = elementRules[element.id];
    if (element.id == ELM_UNKNOWN)
        return Start::unknownElement;
    if (element.level != pass.depth)
        return Start::wrongLevel;
    if (rule.mustFollow != ELM_UNKNOWN && pass.last != rule.mustFollow)
        return Start::wrongOrder;
    if (rule.once != nullptr && hasStarted(pass, rule))
        return Start::repetition;
    return Start::accepted;
}

/** Takes the attributes of an element whose start was accepted. @return false where they are refused. */
inline bool takeAttributes(FirstPassState &pass, const ElementMapRow &element, const char **attrs) noexcept
{
    const ElementRule &rule = elementRules[element.id];
    if (rule.once != nullptr)
        pass.*rule.once = true;
    return rule.onStart == nullptr || rule.onStart(pass, attrs);
}

inline void openElement(FirstPassState &pass, const ElementMapRow &element) noexcept
{
    ++pass.depth;
    pass.last = element.id;
}

inline void closeElement(FirstPassState &pass, const ElementMapRow &element) noexcept
{
    const ElementRule &rule = elementRules[element.id];
    if (rule.lastAtEnd != ELM_UNKNOWN)
        pass.last = rule.lastAtEnd;
    pass.textSize += rule.bytesAtEnd;
    --pass.depth;
}

/** Whether all that an element needs has started in it. */
inline bool hasWhatItNeeds(const FirstPassState &pass, const ElementMapRow &element) noexcept
{
    for (const ElementID needed : elementRules[element.id].needed)
    {
        if (needed == ELM_UNKNOWN) // the end of the list
            return true;
        if (!hasStarted(pass, elementRules[needed]))
            return false;
    }
    return true;
}

/** Whether text belongs to a message: it stands in a "source", behind and inside no other element. */
inline bool takesText(const FirstPassState &pass) noexcept
{
    return pass.last == ELM_SOURCE;
}

} // namespace kelto

#endif
