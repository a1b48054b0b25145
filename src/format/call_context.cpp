#include "kelto.h"

#include <cstring>

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

bool KTIsOneTypeName(const char *name, const char *other)
{
    if (name == nullptr || other == nullptr || std::strcmp(name, other) != 0)
        return false;
    // A name that is no other's holds neither mark. 'Z' begins what lies in a function, unless it begins an identifier.
    if (std::strchr(name, '*') != nullptr || std::strstr(name, "_GLOBAL__N_") != nullptr)
        return false;
    for (const char *at = name; (at = std::strchr(at, 'Z')) != nullptr; ++at)
        if (at == name || at[-1] < '0' || at[-1] > '9')
            return false;
    return true;
}
