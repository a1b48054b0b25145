#include "icu.h"

#include <unicode/uset.h>

namespace kelto::locale
{

int askForMemory(bool isMaking) noexcept
{
    constexpr size_t mostForAnObject = size_t{256} * 1024;
    if (isMaking && allocate<char>(mostForAnObject) == nullptr)
        return KT_ERR_NO_MEMORY;
    // A small object of ICU's, which is the way to its allocator.
    return Handle<USet, uset_close>(uset_openEmpty()) != nullptr ? 0 : int{KT_ERR_NO_MEMORY};
}

} // namespace kelto::locale
