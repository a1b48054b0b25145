#include "catalog/language.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

namespace
{

bool isCompiled(std::string_view path)
{
    constexpr std::string_view suffix = ".ktc";
    return path.size() > suffix.size() && path.substr(path.size() - suffix.size()) == suffix;
}

} // namespace

namespace kelto
{

std::unique_ptr<Language> Language::ofFile(const char *name, const char *path) noexcept
{
    std::unique_ptr<Language> language(new (std::nothrow) Language);
    if (language == nullptr || !language->setTexts(name, path))
        return nullptr;
    return language;
}

std::unique_ptr<Language> Language::ofData(const void *data, size_t size) noexcept
{
    std::unique_ptr<Language> language = ofFile("", "");
    if (language != nullptr)
    {
        language->m_data = data;
        language->m_size = size;
    }
    return language;
}

Language::~Language()
{
    if (MessageTable *const table = m_table.load(std::memory_order_relaxed))
        KTFreeMessages(table);
}

bool Language::setTexts(const char *name, const char *path) noexcept
{
    const size_t nameSize = std::strlen(name) + 1;
    const size_t pathSize = std::strlen(path) + 1;
    m_texts = allocateHeap<char>(nameSize + 2 * pathSize);
    if (m_texts == nullptr)
        return false;
    std::memcpy(m_texts.get(), name, nameSize);
    char *const ownPath = m_texts.get() + nameSize;
    std::memcpy(ownPath, path, pathSize);
    m_path = ownPath;
    if (*name != '\0' && isCompiled(path))
    {
        m_sourcePath = ownPath + pathSize;
        std::memcpy(m_sourcePath, path, pathSize);
        std::memcpy(m_sourcePath + pathSize - sizeof "xlf", "xlf", sizeof "xlf");
    }
    return true;
}

const char *Language::text(uint32_t number) const noexcept
{
    char *text = nullptr;
    return KTGetMessage(table(), number, &text) == 0 ? text : nullptr;
}

int Language::load(const KTCatalogOptions &options, Refusals &refusals) noexcept
{
    const std::lock_guard<std::mutex> lock(m_loading);
    if (isTried())
        return 0;
    int result = loadFrom(m_path);
    if (result != 0)
    {
        refusals.add(m_path, result);
        if (m_sourcePath != nullptr && loadSource(refusals) == 0)
            result = 0;
    }
    if (table() != nullptr)
        m_conversions.set(options, locale());
    m_data = nullptr; // the caller may release the data now
    m_size = 0;
    m_isTried.store(true, std::memory_order_release);
    return result;
}

/** Loads the message file from which a compiled catalog was made, if it lies beside it. */
int Language::loadSource(Refusals &refusals) noexcept
{
    const int result = loadFrom(m_sourcePath);
    if (result == 0)
        m_path = m_sourcePath;
    else if (result != KT_ERR_FILE_UNAVAILABLE)
        refusals.add(m_sourcePath, result);
    return result;
}

int Language::loadFrom(const char *path) noexcept
{
    MessageTable *table = nullptr;
    const int result = m_data != nullptr  ? KTLoadCompiledData(m_data, m_size, &table)
                       : isCompiled(path) ? KTLoadCompiledMessages(path, &table)
                                          : KTLoadMessages(const_cast<char *>(path), &table); // the path is not changed
    if (result != 0)
        return result;
    KTTableFacts facts = {};
    facts.structSize = sizeof facts;
    if (KTTableInfo(table, &facts) == 0)
        std::snprintf(m_ownName, sizeof m_ownName, "%s%s%s", facts.language, *facts.country != '\0' ? "_" : "",
                      facts.country);
    m_table.store(table, std::memory_order_release);
    return 0;
}

} // namespace kelto
