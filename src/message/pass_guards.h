/**
 * The guards in front of the handlers when the library itself loads a file. Files are untrusted, and may change between
 * the passes. Guards refuse a message that is longer than KTMsgLen() can tell, and a document beyond its limits. They
 * keep the second pass inside the block, whatever the file has become, with two zero bytes behind each message.
 */
#ifndef KELTO_MESSAGE_PASS_GUARDS_H
#define KELTO_MESSAGE_PASS_GUARDS_H

#include "message/first_pass.h"
#include "message/grammar/xml_limits.h"
#include "message/second_pass.h"
#include "message/sparse_index.h"

#include <type_traits>

namespace kelto
{

/** The state of a guard. It begins with the state that the handlers know. */
struct FirstPassGuard
{
    FirstPassState pass = {};
    uint64_t messageOffset = 0; /**< `textSize` where the current message began */
    size_t messages = 0;
    const ElementMapRow *open[deepestLevel + 1] = {}; /**< by level: the elements that are open, found at their start */
    XmlLimits limits = {};
};

struct SecondPassGuard
{
    SecondPassState pass = {};
    const char *end = nullptr;          /**< of the block */
    bool isMessageOpen = false;         /**< a "trans-unit" whose "source" has not ended */
    std::unique_ptr<SparseIndex> index; /**< null where the table needs none */
    XmlLimits limits = {};

    size_t room() const noexcept { return static_cast<size_t>(end - pass.cursor); }
    /** Whether the pass has filled all that the first one measured. */
    bool isComplete() const noexcept;
};

static_assert(std::is_standard_layout_v<FirstPassGuard>);
#ifndef __clang__ // some versions of which say no of any class with a unique_ptr
static_assert(std::is_standard_layout_v<SecondPassGuard>);
#endif

/** The handlers of a pass for its guarded state, and the question after each step whether the pass is over. */
struct Handlers
{
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    XML_CharacterDataHandler characterData;
    bool (*isDone)(const void *state);
};

extern const Handlers firstPassHandlers, secondPassHandlers;

} // namespace kelto

#endif
