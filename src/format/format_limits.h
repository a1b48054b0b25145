/** How far a format, and a message that selects others, may reach. The checker of message files asks for the same. */
#ifndef KELTO_FORMAT_FORMAT_LIMITS_H
#define KELTO_FORMAT_FORMAT_LIMITS_H

#include <cstddef>

namespace kelto
{

/**
 * A position is believed up to this, or up to the length of the string that names it: every string that can be correct
 * passes, and a short one cannot ask for gigabytes.
 */
constexpr size_t alwaysBelieved = 1000;

/** The most selectors that a choice may pass. */
constexpr unsigned maxSelectionSteps = 8;

/** The most messages that one may lead to, itself counted. */
constexpr size_t maxSelectedMessages = 1024;

/** The most messages in the row of a "select". */
constexpr unsigned selectRowLength = 64;

} // namespace kelto

#endif
