#include "platform/stack.h"

#include <cstdint>
#include <pthread.h>

size_t kelto::stackLeft() noexcept
{
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return SIZE_MAX;
    void *lowest = nullptr;
    size_t size = 0;
    const bool isKnown = pthread_attr_getstack(&attributes, &lowest, &size) == 0;
    pthread_attr_destroy(&attributes);
    const auto here = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    const auto end = reinterpret_cast<uintptr_t>(lowest);
    // A program may have put another stack in its place, above or below.
    return isKnown && here > end && here - end <= size ? here - end : SIZE_MAX;
}
