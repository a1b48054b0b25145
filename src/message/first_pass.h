/**
 * The first pass over a message file, which checks the structure and measures. Its handlers keep to the state below, so
 * that a program may drive them from a parser of its own; the loader puts guards in front of them.
 */
#ifndef KELTO_MESSAGE_FIRST_PASS_H
#define KELTO_MESSAGE_FIRST_PASS_H

#include "message/element_names.h"

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

extern "C" {
#pragma GCC visibility push(default)

/* `state` is a FirstPassState. A broken rule makes its error KT_ERR_BAD_MSG_FILE. */
void startElement1(void *state, const char *name, const char **attrs);
void endElement1(void *state, const char *name);
void characterData1(void *state, const char *text, int length);

#pragma GCC visibility pop
}

namespace kelto
{

/* The same without a look at `error`, for an element that was found already. */
void startInFirstPass(FirstPassState &pass, const ElementMapRow &element, const char **attrs) noexcept;
void endInFirstPass(FirstPassState &pass, const ElementMapRow &element) noexcept;

} // namespace kelto

#endif
