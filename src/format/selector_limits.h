/** How far a message that selects others may reach. The checker of message files asks for the same. */
#ifndef KELTO_FORMAT_SELECTOR_LIMITS_H
#define KELTO_FORMAT_SELECTOR_LIMITS_H

#include <cstddef>

namespace kelto
{

/** The most selectors that a choice may pass. */
constexpr unsigned maxSelectionSteps = 8;

/** The most messages that one may lead to, itself counted. */
constexpr size_t maxSelectedMessages = 1024;

/** The most messages in the row of a "select". */
constexpr unsigned selectRowLength = 64;

} // namespace kelto

#endif
