#include "catalog/catalog.h"

#include "catalog/report.h"
#include "format/tables/form_table.h"
#include "format/tables/own_table.h"

#include <algorithm>
#include <cstring>

KTCatalog::~KTCatalog()
{
    while (languages != nullptr)
        languages = std::move(languages->next);
}

bool KTCatalog::add(std::unique_ptr<kelto::Language> language) noexcept
{
    if (language == nullptr)
        return false;
    std::unique_ptr<kelto::Language> *end = &languages;
    while (*end != nullptr)
        end = &(*end)->next;
    *end = std::move(language);
    ++languageCount;
    return true;
}

namespace kelto
{

int readOptions(const KTCatalogOptions *given, KTCatalogOptions &options) noexcept
{
    options = {};
    if (given != nullptr)
    {
        if (given->structSize < sizeof given->structSize)
            return KT_ERR_INVALID_PARAMETER;
        std::memcpy(&options, given, std::min(given->structSize, sizeof options) & ~(sizeof(void *) - 1));
    }
    options.structSize = sizeof options;
    if (options.sourceLanguage == nullptr)
        options.sourceLanguage = "en";
    if (options.maxSize == 0)
        options.maxSize = usualMaxSize;
    options.formatOptions |= optionsOf(options.table);
    const bool isKnown = (options.formatOptions & ~unsigned{KT_TAG | KT_ENCODE_ALL | KT_ISOLATE}) == 0;
    const bool isEncodable = (options.formatOptions & KT_ENCODE_ALL) == 0 || findEncoder(options.table) != nullptr;
    return isKnown && isEncodable ? 0 : KT_ERR_INVALID_PARAMETER;
}

MessageTable *tableOf(const KTCatalog &catalog, Language &language) noexcept
{
    if (!language.isTried())
        loadLanguage(catalog, language);
    return language.table();
}

int loadLanguage(const KTCatalog &catalog, Language &language) noexcept
{
    Language::Refusals refusals;
    const int result = language.load(catalog.options, refusals);
    // The lock is not held here: onProblem may format something itself.
    for (size_t i = 0; i < refusals.count; ++i)
        reportFile(catalog, language.name(), refusals.files[i].path, refusals.files[i].result);
    return result;
}

} // namespace kelto
