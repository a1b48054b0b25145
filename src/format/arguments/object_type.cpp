// Objects of the program behind a pointer argument: whether one is of the type that a formatter asks for.

#include "kelto.h"

#include <cstring>

namespace
{

/**
 * Whether two names that a C++ compiler has for types are those of one type, whichever shared objects they come from:
 * not for a type of a function or of an unnamed namespace, whose name may be that of another one too.
 */
bool isOneTypeName(const char *name, const char *other)
{
    if (name == nullptr || other == nullptr || std::strcmp(name, other) != 0)
        return false;
    if (std::strchr(name, '*') != nullptr || std::strstr(name, "_GLOBAL__N_") != nullptr)
        return false;
    // 'Z' begins what lies in a function, unless it begins an identifier.
    for (const char *at = name; (at = std::strchr(at, 'Z')) != nullptr; ++at)
        if (at == name || at[-1] < '0' || at[-1] > '9')
            return false;
    return true;
}

} // namespace

const void *KTObjectOfType(const KTArgument *argument, const KTObjectType *type)
{
    if (argument->type != KT_ARGUMENT_POINTER || argument->length != KT_KIND_OBJECT || argument->value.p == nullptr)
        return nullptr;
    const auto &object = *static_cast<const KTObject *>(argument->value.p);
    return object.type == type || isOneTypeName(object.type->key, type->key) ? object.object : nullptr;
}
