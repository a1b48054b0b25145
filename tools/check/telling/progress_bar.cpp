#include "check/telling/progress_bar.h"

#include "io/terminal.h"
#include "text.h"

#include <cstdio>
#include <fmt/core.h>
#include <string>
#include <unistd.h>

namespace tool::check
{
namespace
{

constexpr std::chrono::seconds patience{1};
constexpr size_t barColumns = 40;

} // namespace

ProgressBar::ProgressBar()
    : m_start(std::chrono::steady_clock::now()), m_last(m_start), m_isWanted(isatty(STDERR_FILENO) != 0)
{
}

void ProgressBar::show(size_t done, size_t all)
{
    if (!m_isWanted)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now - m_start < patience || now - m_last < interval)
        return;
    m_last = now;
    m_isShown = true;
    const size_t filled = all != 0 ? barColumns * done / all : 0;
    fmt::print(stderr, "\r[{:<{}}] {}", std::string(filled, '#'), barColumns,
               terminal().encodedLines(say(Text::filesDone, {done, all})));
}

void ProgressBar::hide()
{
    if (!m_isShown)
        return;
    fmt::print(stderr, "\r\33[K");
    m_isShown = false;
}

} // namespace tool::check
