#include "library/message_file.h"

#include "io/input.h"
#include "io/terminal.h"
#include "text.h"

#include <cerrno>
#include <filesystem>
#include <unistd.h>

namespace tool
{
namespace
{

std::string whyNotOpened(const std::string &path, const std::string &meaning)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status))
        return say(Text::isDirectory, {meaning});
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return say(Text::isNoRegularFile, {meaning});
    return access(path.c_str(), R_OK) != 0 ? meaning + ": " + systemText(errno) : meaning;
}

bool isPipeOfShell(const std::string &path)
{
    std::error_code error;
    return std::filesystem::is_symlink(std::filesystem::symlink_status(path, error)) &&
           std::filesystem::is_fifo(std::filesystem::status(path, error));
}

} // namespace

LoadableFile::LoadableFile(const std::string &operand) : m_path(operand)
{
    if (operand != "-" && !isPipeOfShell(operand))
        return;
    m_memory.emplace(readWhole(operand));
    if (!m_memory->isThere())
        throw Failure(inputName(operand) + ": " + systemText(errno));
    m_path = m_memory->path();
}

// That a file is no compiled catalog shows with its first bytes.
MessageFile::MessageFile(const std::string &path, Placeholders placeholders) : m_path(path)
{
    const LoadableFile file(path);
    const auto load = placeholders == Placeholders::raw ? KTLoadRawMessages : KTLoadMessages;
    std::string name = file.path(); // the library takes it without const
    int result = KTLoadCompiledMessages(name.c_str(), &m_table);
    m_isCompiled = result == 0;
    if (result == KT_ERR_BAD_MSG_FILE)
        result = load(name.data(), &m_table);
    if (result != 0)
        throw fileFailure(path, result);
}

KTTableFacts MessageFile::facts() const
{
    KTTableFacts facts{};
    facts.structSize = sizeof facts;
    KTTableInfo(m_table, &facts);
    return facts;
}

std::string MessageFile::compiled() const
{
    size_t size = 0;
    KTCompileMessages(m_table, &size, nullptr);
    std::string catalog(size, '\0');
    const int result = KTCompileMessages(m_table, &size, catalog.data());
    if (result != 0)
        throw fileFailure(m_path, result);
    return catalog;
}

std::string MessageFile::message(unsigned id) const
{
    char *text = nullptr;
    const int result = KTGetMessage(m_table, id, &text);
    if (result != 0 && result != KT_ERR_INVALID_MSG_ID)
        throw fileFailure(m_path, result);
    if (text == nullptr)
        throw noSuchMessage(id);
    return text;
}

const char *MessageFile::find(unsigned id) const
{
    char *text = nullptr;
    return KTGetMessage(m_table, id, &text) == 0 ? text : nullptr;
}

std::string MessageFile::language() const
{
    const KTTableFacts said = facts();
    return std::string(said.language) + (*said.country != '\0' ? "_" : "") + said.country;
}

Failure MessageFile::noSuchMessage(unsigned id) const
{
    unsigned lowest = 0;
    unsigned highest = 0;
    unsigned count = 0;
    forEachMessage([&](unsigned found, const std::string &) {
        lowest = lowest == 0 ? found : lowest;
        highest = found;
        ++count;
    });
    const std::string file = terminal().showBytes(m_path);
    const std::string shown = inputName(m_path);
    if (count == 0)
        return Failure(shown + ": " + say(Text::noMessages) + nameOf(KT_ERR_INVALID_MSG_ID));
    const Text text = highest - lowest + 1 == count ? Text::idsWithoutGaps : Text::idsWithGaps;
    const std::string why = count == 1 ? say(Text::onlyId, {id, lowest}) : say(text, {id, lowest, highest});
    const bool isInRange = 0 < id && id <= highest;
    return Failure(shown + ": " + why + (isInRange ? "" : nameOf(KT_ERR_INVALID_MSG_ID)) + hint("kelto list " + file));
}

std::string productVersion(const std::string &path)
{
    constexpr size_t versionRoom = 20;
    char version[versionRoom];
    const LoadableFile file(path);
    std::string name = file.path();
    MessageTable *catalog = nullptr;
    int result = KTLoadCompiledMessages(name.c_str(), &catalog);
    if (result == 0)
        return MessageFile(catalog).facts().productVersion;
    if (result == KT_ERR_BAD_MSG_FILE)
        result = KTGetMsgFileVer(name.data(), version);
    if (result != 0)
        throw fileFailure(path, result);
    return version;
}

Failure fileFailure(const std::string &path, int result)
{
    std::string meaning = resultText(result);
    if (result == KT_ERR_FILE_NOT_OPENED)
        meaning = whyNotOpened(path, meaning);
    const std::string file = terminal().showBytes(path);
    // The checker reads the files that people write, and shows the place.
    const bool isChecked = result == KT_ERR_BAD_MSG_FILE && std::filesystem::path(path).extension() != ".ktc";
    return Failure(inputName(path) + ": " + meaning + nameOf(result) + (isChecked ? hint("kelto check " + file) : ""));
}

} // namespace tool
