#include "failure.h"

#include "kelto.h"

#include <cstdio>
#include <fmt/core.h>
#include <system_error>

namespace tool
{

Failure::Failure(const std::string &subject, int result) : m_text(subject + ": " + meaningOf(result))
{
}

std::string meaningOf(int result)
{
    return KTResultText(result) + nameOf(result);
}

std::string nameOf(int result)
{
    const char *const name = KTResultName(result);
    return name != nullptr ? fmt::format(" ({})", name) : fmt::format(" ({})", result);
}

std::string systemText(int error)
{
    return std::generic_category().message(error);
}

void complain(const std::string &text)
{
    std::fflush(stdout);
    fmt::print(stderr, "kelto: {}\n", text);
}

} // namespace tool
