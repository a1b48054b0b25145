#include "failure.h"

#include "io/terminal.h"
#include "kelto.h"
#include "text.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tool
{

Failure::Failure(const std::string &subject, int result) : m_text(subject + ": " + meaningOf(result))
{
}

std::string hint(const std::string &command)
{
    return "\n" + say(Text::tryCommand, {command});
}

std::string meaningOf(int result)
{
    return resultText(result) + nameOf(result);
}

std::string nameOf(int result)
{
    const char *const name = KTResultName(result);
    return " (" + (name != nullptr ? name : std::to_string(result)) + ")";
}

std::string systemText(int error)
{
    constexpr std::pair<int, Text> known[] = {{ENOENT, Text::noFileThere},  {EACCES, Text::noPermission},
                                              {EISDIR, Text::aDirectory},   {ENOTDIR, Text::noDirectory},
                                              {ENOSPC, Text::noSpace},      {EBADF, Text::badDescriptor},
                                              {EIO, Text::inputOutputError}};
    std::string text = terminal().showBytes(std::generic_category().message(error));
    for (const auto &[number, ours] : known)
        if (number == error && text == sayInEnglish({ours}))
            return say(ours);
    return text;
}

void complain(const std::string &text)
{
    std::fflush(stdout);
    const char *const name = Terminal::showsColors(STDERR_FILENO) ? "\33[1;31mkelto:\33[0m " : "kelto: ";
    const std::string line = name + terminal().encodedLines(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace tool
