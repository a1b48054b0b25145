// What a running call knows and is not told of: KTCallValue() finds it in the innermost call of the thread.

#include "kelto.h"

namespace
{

thread_local KTCallContext *innermost = nullptr;

} // namespace

void KTEnterCall(KTCallContext *context)
{
    context->outer = innermost;
    innermost = context;
}

void KTLeaveCall(const KTCallContext *context)
{
    innermost = context->outer;
}

void *KTCallValue(uint32_t kind)
{
    return innermost != nullptr && innermost->kind == kind ? innermost->value : nullptr;
}
