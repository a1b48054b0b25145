#include "message_file.h"

#include "terminal.h"

#include <cerrno>
#include <filesystem>
#include <fmt/core.h>
#include <unistd.h>

namespace tool
{
namespace
{

std::string whyNotOpened(const std::string &path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status))
        return ", since it is a directory";
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return ", since it is no regular file";
    if (access(path.c_str(), R_OK) != 0)
        return ": " + systemText(errno);
    return "";
}

} // namespace

Library::Library()
{
    const int result = KTInit();
    if (result != 0)
        throw Failure(meaningOf(result));
}

MessageFile::MessageFile(const std::string &path, Placeholders placeholders) : m_path(path)
{
    const auto load = placeholders == Placeholders::raw ? KTLoadRawMessages : KTLoadMessages;
    const int result = load(m_path.data(), &m_table);
    if (result != 0)
        throw fileFailure(path, result);
}

std::optional<std::string> MessageFile::message(unsigned id) const
{
    char *text = nullptr;
    const int result = KTGetMessage(m_table, id, &text);
    if (result == KT_ERR_INVALID_MSG_ID)
    {
        const unsigned highest = highestId();
        const std::string range =
            highest == 0 ? "the file has no messages" : fmt::format("IDs run from 1 to {}", highest);
        throw Failure(fmt::format("{}: message {} is out of range: {}{}", terminal().showBytes(m_path), id, range,
                                  nameOf(result)));
    }
    if (result != 0)
        throw fileFailure(m_path, result);
    return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

// The interface does not tell the highest ID, but whether one is too high.
unsigned MessageFile::highestId() const
{
    unsigned valid = 0;
    unsigned invalid = 1U << 31; // IDs are signed 32-bit numbers in the file
    while (invalid - valid > 1)
    {
        const unsigned middle = valid + (invalid - valid) / 2;
        char *text = nullptr;
        (KTGetMessage(m_table, middle, &text) == 0 ? valid : invalid) = middle;
    }
    return valid;
}

Failure fileFailure(const std::string &path, int result)
{
    const std::string why = result == KT_ERR_FILE_NOT_OPENED ? whyNotOpened(path) : "";
    return Failure(fmt::format("{}: {}{}{}", terminal().showBytes(path), KTResultText(result), why, nameOf(result)));
}

} // namespace tool
