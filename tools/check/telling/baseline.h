/**
 * Findings that a project knows and does not want to be told of again, in a file with a line for each: the name of the
 * file, the number of the message, the rule, and what is said in English. Where it stands in the file is not in it, so
 * that it holds while lines come and go; a finding that is there twice has two lines.
 */
#ifndef KELTO_TOOLS_CHECK_TELLING_BASELINE_H
#define KELTO_TOOLS_CHECK_TELLING_BASELINE_H

#include "check/telling/finding.h"

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

namespace tool::check
{

class Baseline
{
public:
    /** @param text  what the file holds. */
    explicit Baseline(std::string_view text);

    /** Takes the known findings away from those in a file. Several threads may call it. */
    void takeKnown(Findings &findings, std::string_view file);

    /** How many findings were taken away, and how many lines of the baseline had none. */
    size_t known() const { return m_known; }
    size_t stale() const { return m_left; }

private:
    std::mutex m_mutex;
    std::map<std::string, size_t, std::less<>> m_lines; // how often each is left
    size_t m_known = 0;
    size_t m_left = 0;
};

/** The text of a baseline, while findings are gathered. */
class BaselineWriter
{
public:
    void add(const Findings &findings, std::string_view file, const Levels &levels);
    std::string text() const;

private:
    std::mutex m_mutex;
    std::multiset<std::string> m_lines;
};

} // namespace tool::check

#endif
