/** How much stack a thread has left: asked before a document decides how much of it is used. */
#ifndef KELTO_PLATFORM_STACK_H
#define KELTO_PLATFORM_STACK_H

#include <cstddef>

namespace kelto
{

/** The bytes that the calling thread's stack has below the caller; SIZE_MAX where that cannot be told. */
size_t stackLeft() noexcept;

} // namespace kelto

#endif
