/**
 * The letters of menus and buttons that a key reaches, with a mark in front of them: "&Open", "_Open". A language may
 * do without them, so that a lost mark is told only where most messages of the file have theirs.
 */
#ifndef KELTO_TOOLS_CHECK_RULES_MARKS_ACCESS_KEYS_H
#define KELTO_TOOLS_CHECK_RULES_MARKS_ACCESS_KEYS_H

#include "check/rules/subject.h"

#include <vector>

namespace tool::check
{

class AccessKeys
{
public:
    /** Compares a message with its original, which it has. */
    void compare(Subject &subject);

    /** Adds the marks that are lost, unless the file does without them. */
    void finish(Findings &findings);

private:
    size_t m_kept = 0;
    Findings m_lost;
};

} // namespace tool::check

#endif
