// What a running call knows and is not told of: KTCallValue() finds it in the innermost call of the thread.

#include "kelto.h"

namespace
{

thread_local KTCallContext *innermostCall = nullptr;

} // namespace

void KTEnterCall(KTCallContext *context)
{
    context->outer = innermostCall;
    innermostCall = context;
}

void KTLeaveCall(const KTCallContext *context)
{
    innermostCall = context->outer;
}

void *KTCallValue(uint32_t kind)
{
    return innermostCall != nullptr && innermostCall->kind == kind ? innermostCall->value : nullptr;
}
