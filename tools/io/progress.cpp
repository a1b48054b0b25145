#include "io/progress.h"

#include "io/terminal.h"

#include <chrono>
#include <cstdio>
#include <system_error>
#include <unistd.h>

namespace tool
{

Progress::Progress()
{
    if (isatty(STDERR_FILENO) == 0)
        return;
    try
    {
        m_shower = std::thread([this] { show(); });
    }
    catch (const std::system_error &)
    {
        // The work is done without it.
    }
}

Progress::~Progress()
{
    if (!m_shower.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isEnded = true;
    }
    m_ended.notify_one();
    m_shower.join();
}

void Progress::begin(Text what)
{
    if (!m_shower.joinable())
        return;
    std::string text = terminal().encodedLines("kelto: " + say(what));
    const std::lock_guard lock(m_mutex);
    m_what = std::move(text);
}

void Progress::show()
{
    constexpr const char *emptyLine = "\r\033[K";
    std::unique_lock lock(m_mutex);
    unsigned seconds = 0;
    while (!m_ended.wait_for(lock, std::chrono::seconds(1), [this] { return m_isEnded; }))
        std::fprintf(stderr, "%s%s (%u s)", emptyLine, m_what.c_str(), ++seconds);
    if (seconds > 0)
        std::fputs(emptyLine, stderr);
}

} // namespace tool
