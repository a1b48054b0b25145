/**
 * Clears blocks of which a small part may ever be used: the message block of a file with a huge message ID is mostly
 * pointers that stay null.
 */
#ifndef KELTO_PLATFORM_ZERO_FILL_H
#define KELTO_PLATFORM_ZERO_FILL_H

#include <cstddef>

namespace kelto
{

/**
 * Sets every byte of a block to zero. The pages of a block of more than 64 MiB are given back to the system where it
 * replaces them by zeros on their next use: such a block costs address space, not memory. `errno` is kept.
 */
void zeroFill(void *block, size_t bytes) noexcept;

} // namespace kelto

#endif
