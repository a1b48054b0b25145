/** A bar on the terminal of standard error for work that takes more than a second; nothing anywhere else. */
#ifndef KELTO_TOOLS_CHECK_TELLING_PROGRESS_BAR_H
#define KELTO_TOOLS_CHECK_TELLING_PROGRESS_BAR_H

#include <chrono>
#include <cstddef>

namespace tool::check
{

class ProgressBar
{
public:
    static constexpr std::chrono::milliseconds interval{100};

    ProgressBar();

    /** Draws how much is done, if it is time to. */
    void show(size_t done, size_t all);

    /** Takes the bar away, before anything else is printed. */
    void hide();

private:
    std::chrono::steady_clock::time_point m_start, m_last;
    bool m_isWanted;
    bool m_isShown = false;
};

} // namespace tool::check

#endif
