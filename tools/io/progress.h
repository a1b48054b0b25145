/**
 * What the program is at, for somebody who waits: a line on the terminal of standard error, from the second second on,
 * which is gone when the work is done. Nothing where standard error is no terminal.
 */
#ifndef KELTO_TOOLS_PROGRESS_H
#define KELTO_TOOLS_PROGRESS_H

#include "text.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace tool
{

class Progress
{
public:
    Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    ~Progress();

    /** What begins now: "reading". */
    void begin(Text what);

private:
    void show();

    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_isEnded = false;
    std::string m_what; // for the terminal
    std::thread m_shower;
};

} // namespace tool

#endif
