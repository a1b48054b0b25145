#include "io/output.h"

#include "failure.h"
#include "io/charset.h"
#include "io/icu.h"
#include "io/output_file.h"
#include "io/terminal.h"
#include "text.h"

#include <cerrno>
#include <cstdio>
#include <unicode/utf16.h>
#include <unistd.h>

namespace tool
{
namespace
{

[[noreturn]] void outputFailed()
{
    throw OutputFailure(say(Text::standardOutput) + ": " + systemText(errno));
}

} // namespace

void print(std::string_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size())
        outputFailed();
}

std::u16string forOutput(const std::string &charset, const std::u16string &text)
{
    if (isatty(STDOUT_FILENO) == 0)
        return text;
    const CharacterSet showable = charactersOf(openConverter(charset).get());
    std::u16string shown;
    for (size_t i = 0; i < text.size();)
    {
        const size_t start = i;
        UChar32 character = 0;
        U16_NEXT(text, i, text.size(), character);
        shown += uset_contains(showable.get(), character) ? text.substr(start, i - start) : u"?";
    }
    return shown;
}

void printText(const std::string &text)
{
    print(terminal().encodedLines(text));
}

void flushOutput()
{
    if (std::fflush(stdout) != 0)
        outputFailed();
}

void writeFile(const std::string &path, std::string_view bytes)
{
    OutputFile file(path);
    file.write(bytes);
    file.finish();
}

} // namespace tool
