/**
 * Findings that the file itself switches off: a note of the unit, which the library ignores, names the rules.
 *
 *   <note from="kelto check">no-white-space, no-end-punctuation: the program goes on behind it</note>
 */
#ifndef KELTO_TOOLS_CHECK_TELLING_SUPPRESSIONS_H
#define KELTO_TOOLS_CHECK_TELLING_SUPPRESSIONS_H

#include "check/telling/finding.h"

#include <algorithm>

#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

struct Suppression
{
    size_t unit; // where the unit begins
    Rule rule;
};

/** A note for the checker, while it is read. */
class CheckerNote
{
public:
    /** Whether a note with this "from" is one; null where it has none. */
    static bool isOne(const char *from);

    explicit CheckerNote(Range place) : m_place(place) {}

    void add(std::string_view text) { m_text += text.substr(0, longest - std::min(longest, m_text.size())); }

    /** Takes it apart; words that switch nothing off are findings. */
    void finish(int message, size_t unit, std::vector<Suppression> &suppressions, Findings &findings) const;

private:
    static constexpr size_t longest = 4096;

    Range m_place;
    std::string m_text;
};

/** Takes away what is switched off; the suppressions are in the order of the file. */
void suppress(Findings &findings, const std::vector<Suppression> &suppressions);

} // namespace tool::check

#endif
