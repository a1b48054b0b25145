/**
 * The letters of menus and buttons that a key reaches, with a mark in front of them: "&Open", "_Open". Whether a file
 * uses them is seen from most of its messages: some languages do without.
 */
#ifndef KELTO_TOOLS_CHECK_ACCESS_KEYS_H
#define KELTO_TOOLS_CHECK_ACCESS_KEYS_H

#include "check/subject.h"

#include <vector>

namespace tool::check
{

class AccessKeys
{
public:
    /** Compares a message with its original, which it has. */
    void compare(Subject &subject);

    /** Adds what is found of the file as a whole. */
    void finish(Findings &findings);

private:
    size_t m_kept = 0;
    Findings m_lost;
};

} // namespace tool::check

#endif
