// Opening and closing catalogs: in a directory, as a file, as data in memory, or one format in the place of a catalog.

#include "catalog/candidates.h"
#include "catalog/report.h"
#include "message/find_catalog.h"
#include "message/sparse_index.h"
#include "platform/scoped.h"

#include <cstring>
#include <new>
#include <string_view>

namespace
{

using kelto::Language;

/** A catalog on its way to the caller. */
class Opening
{
public:
    /** @param catalog  out: null until hand() is called. */
    explicit Opening(KTCatalog **catalog) : m_out(catalog)
    {
        if (catalog != nullptr)
            *catalog = nullptr;
    }

    /**
     * Makes the catalog and begins a use of the library. @return 0; KT_ERR_NOT_INITIALIZED, and there is a catalog all
     * the same.
     */
    int begin(std::string_view name, const KTCatalogOptions *options, bool isFormat = false)
    {
        KTCatalogOptions read;
        if (m_out == nullptr || kelto::readOptions(options, read) != 0)
            return KT_ERR_INVALID_PARAMETER;
        m_catalog.reset(new (std::nothrow) KTCatalog);
        if (m_catalog != nullptr)
            m_catalog->name = kelto::allocateHeap<char>(name.size() + 1);
        if (m_catalog == nullptr || m_catalog->name == nullptr)
        {
            m_catalog = nullptr;
            return KT_ERR_NO_MEMORY;
        }
        m_catalog->name[name.copy(m_catalog->name.get(), name.size())] = '\0';
        if (isFormat)
            read.conversions = nullptr;
        m_catalog->isFormat = isFormat;
        m_catalog->options = read;
        const int result = KTBeginUse();
        m_catalog->isUse = result == 0;
        m_catalog->sourceConversions.set(read, read.sourceLanguage);
        return result;
    }

    KTCatalog *catalog() const { return m_catalog.get(); }

    /** Hands the catalog to the caller, if there is one, with the result of its opening. */
    int hand(int result)
    {
        if (m_catalog == nullptr)
            return result;
        m_catalog->options.languages = m_catalog->options.sourceLanguage = nullptr; // they belong to the caller
        *m_out = m_catalog.release();
        return result;
    }

    /** Ends without a catalog. */
    int failWithoutMemory()
    {
        KTCloseCatalog(m_catalog.release());
        return KT_ERR_NO_MEMORY;
    }

private:
    KTCatalog **m_out;
    std::unique_ptr<KTCatalog> m_catalog;
};

/** Whether a file has few gaps between its numbers. */
bool isDense(const MessageTable *table)
{
    const kelto::MutexGuard lock(tableListMutex);
    return kelto::SparseIndex::find(table) == nullptr;
}

/** Loads languages until one is of use. @return 0, or why the last one is of no use. */
int loadFirst(KTCatalog &catalog)
{
    int result = 0;
    for (Language *language = catalog.languages.get(); language != nullptr; language = language->next.get())
    {
        result = kelto::loadLanguage(catalog, *language);
        KTTableFacts facts = {};
        facts.structSize = sizeof facts;
        if (result == 0 && KTTableInfo(language->table(), &facts) == 0 && isDense(language->table()))
            catalog.messages.setDense(facts.highestId);
        if (result == 0)
            break;
    }
    return result;
}

/** Adds the file of a language, where there is one that can be opened; false where memory ran out. */
bool addLanguage(KTCatalog &catalog, const char *language, const char *directory, char *path)
{
    const int result = kelto::findCatalogOf(language, directory, catalog.name.get(), path);
    if (result == 0)
        return catalog.add(Language::ofFile(language, path));
    if (result == KT_ERR_FILE_UNAVAILABLE)
        return true;
    path[std::strlen(directory) + 1 + std::strlen(language) + 1] = '\0'; // the folder, with its '/'
    kelto::report(catalog, {"", path, 0, result}, [&](kelto::Sentence &sentence) {
        kelto::sayOnOneLine(sentence, path);
        kelto::sayOnOneLine(sentence, catalog.name.get());
        kelto::say(sentence, ": ");
        kelto::say(sentence, KTResultText(result));
    });
    return true;
}

void reportNoCatalog(const KTCatalog &catalog, const char *directory, const kelto::Candidates &candidates)
{
    kelto::report(catalog, {"", directory, 0, KT_ERR_FILE_UNAVAILABLE}, [&](kelto::Sentence &sentence) {
        kelto::say(sentence, "there is no catalog \"");
        kelto::sayOnOneLine(sentence, catalog.name.get());
        kelto::say(sentence, "\" in \"");
        kelto::sayOnOneLine(sentence, directory);
        kelto::say(sentence, "\" for");
        kelto::say(sentence, candidates.names());
    });
}

/** Adds all languages and loads the first; false where memory ran out. */
bool addLanguages(KTCatalog &catalog, const char *directory)
{
    kelto::Candidates candidates;
    const kelto::HeapBlock<char> path =
        kelto::allocateHeap<char>(kelto::catalogPathRoom(directory, catalog.name.get()));
    if (path == nullptr || !candidates.list(catalog.options.languages, catalog.options.sourceLanguage) ||
        !candidates.forEach(
            [&](const char *language) { return addLanguage(catalog, language, directory, path.get()); }))
        return false;
    loadFirst(catalog);
    if (catalog.languages == nullptr)
        reportNoCatalog(catalog, directory, candidates);
    return true;
}

/** The name of a catalog by its path: "store" of "messages/store.xlf". */
std::string_view nameOfFile(std::string_view path)
{
    const std::string_view file = path.substr(path.rfind('/') + 1);
    return file.substr(0, file.rfind('.'));
}

/** Opens a catalog of one language. */
int openOnly(Opening &opening, std::unique_ptr<Language> language)
{
    if (!opening.catalog()->add(std::move(language)))
        return opening.failWithoutMemory();
    return opening.hand(loadFirst(*opening.catalog()));
}

} // namespace

int KTOpenCatalog(const char *directory, const char *name, const KTCatalogOptions *options, KTCatalog **catalog)
{
    Opening opening(catalog);
    if (directory == nullptr || name == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    if (const int result = opening.begin(name, options))
        return opening.hand(result);
    if (!kelto::isCatalogPlace(directory, name))
        return opening.hand(KT_ERR_INVALID_PARAMETER);
    return addLanguages(*opening.catalog(), directory) ? opening.hand(0) : opening.failWithoutMemory();
}

int KTOpenCatalogFile(const char *path, const KTCatalogOptions *options, KTCatalog **catalog)
{
    Opening opening(catalog);
    if (path == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    if (const int result = opening.begin(nameOfFile(path), options))
        return opening.hand(result);
    return openOnly(opening, Language::ofFile("", path));
}

int KTOpenCatalogData(const char *name, const void *data, size_t size, const KTCatalogOptions *options,
                      KTCatalog **catalog)
{
    Opening opening(catalog);
    if (name == nullptr || data == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    if (const int result = opening.begin(name, options))
        return opening.hand(result);
    return openOnly(opening, Language::ofData(data, size));
}

int KTOpenCatalogFormat(const char *format, const KTCatalogOptions *options, KTCatalog **catalog)
{
    Opening opening(catalog);
    if (format == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    if (const int result = opening.begin(format, options, true))
        return opening.hand(result);
    KTPreparedFormat *prepared = nullptr;
    const int result = KTPrepareFormat(format, opening.catalog()->options.table, &prepared);
    opening.catalog()->format.reset(prepared);
    return opening.hand(result);
}

const KTPreparedFormat *KTCatalogPrepared(const KTCatalog *catalog)
{
    return catalog != nullptr ? catalog->format.get() : nullptr;
}

void KTCloseCatalog(KTCatalog *catalog)
{
    if (catalog == nullptr)
        return;
    const bool wasUse = catalog->isUse;
    delete catalog; // its tables are released while the library is started
    if (wasUse)
        KTEndUse();
}
