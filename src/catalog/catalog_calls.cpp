// The calls on an open catalog: texts by number, in UTF-8 and UCS-2, and what a program may ask of it.

#include "catalog/ladder.h"

namespace
{

/**
 * The catalog that a null pointer stands for: it has no name and no languages, keeps nothing, and is never destroyed.
 */
union NoCatalog
{
    KTCatalog catalog;
    NoCatalog() : catalog() { kelto::readOptions(nullptr, catalog.options); }
    ~NoCatalog() {}
};

[[gnu::noinline, gnu::cold]] const KTCatalog &noCatalog()
{
    static const NoCatalog none;
    return none.catalog;
}

template <typename Unit>
int formatRequest(const KTCatalog *catalog, const KTCatalogRequest &request, size_t *size, Unit *out)
{
    if (size == nullptr || (out == nullptr && *size != 0) || (request.arguments == nullptr && request.count != 0))
        return KT_ERR_INVALID_PARAMETER;
    return kelto::writeMessage(catalog != nullptr ? *catalog : noCatalog(), request, size, out);
}

bool isWhole(const KTCatalogRequest *request)
{
    return request != nullptr && request->structSize >= sizeof *request;
}

} // namespace

int KTCatalogFormat(const KTCatalog *catalog, int64_t id, const char *source, size_t *size, UCS2 *out,
                    const KTArgument *arguments, size_t count)
{
    const KTCatalogRequest request = {sizeof request, id, false, source, SIZE_MAX, arguments, count};
    return formatRequest(catalog, request, size, out);
}

int KTCatalogFormatUTF8(const KTCatalog *catalog, int64_t id, const char *source, size_t *size, char *out,
                        const KTArgument *arguments, size_t count)
{
    const KTCatalogRequest request = {sizeof request, id, false, source, SIZE_MAX, arguments, count};
    return formatRequest(catalog, request, size, out);
}

int KTCatalogFormatRequest(const KTCatalog *catalog, const KTCatalogRequest *request, size_t *size, UCS2 *out)
{
    return isWhole(request) ? formatRequest(catalog, *request, size, out) : KT_ERR_INVALID_PARAMETER;
}

int KTCatalogFormatRequestUTF8(const KTCatalog *catalog, const KTCatalogRequest *request, size_t *size, char *out)
{
    return isWhole(request) ? formatRequest(catalog, *request, size, out) : KT_ERR_INVALID_PARAMETER;
}

const char *KTCatalogText(const KTCatalog *catalog, int64_t id)
{
    if (catalog == nullptr || id < 0 || id >= UINT32_MAX)
        return nullptr;
    for (kelto::Language *language = catalog->languages.get(); language != nullptr; language = language->next.get())
        if (kelto::tableOf(*catalog, *language) != nullptr)
            if (const char *const text = language->text(static_cast<uint32_t>(id)))
                return text;
    return nullptr;
}

const char *KTCatalogLanguage(const KTCatalog *catalog)
{
    if (catalog != nullptr)
        for (const kelto::Language *language = catalog->languages.get(); language != nullptr;
             language = language->next.get())
            if (language->table() != nullptr)
                return language->locale();
    return "";
}
