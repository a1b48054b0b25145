/**
 * The first pass over a message file, which checks the structure and measures. Its handlers keep to FirstPassState, so
 * that a program may drive them from a parser of its own; the loader puts guards in front of them.
 */
#ifndef KELTO_MESSAGE_FIRST_PASS_H
#define KELTO_MESSAGE_FIRST_PASS_H

#include "message/grammar/structure.h"

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

/* The handlers without their look at `error`, for an element that was found already. */
void startInFirstPass(FirstPassState &pass, const ElementMapRow &element, const char **attrs) noexcept;
void endInFirstPass(FirstPassState &pass, const ElementMapRow &element) noexcept;

} // namespace kelto

#endif
