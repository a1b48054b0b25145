/**
 * What a catalog holds: its name, its options, its languages in their order, and what is known of its messages. All of
 * it comes from the C heap, since there is a catalog also where the library could not be started.
 */
#ifndef KELTO_CATALOG_CATALOG_H
#define KELTO_CATALOG_CATALOG_H

#include "catalog/known_messages.h"
#include "catalog/language.h"

struct KTCatalog
{
    mutable kelto::KnownMessages messages;
    KTCatalogOptions options = {};              /**< as readOptions() gives them */
    kelto::RungConversions sourceConversions;   /**< of the texts in the source */
    std::unique_ptr<kelto::Language> languages; /**< the user's, then the source language */
    size_t languageCount = 0;
    kelto::HeapBlock<char> name; /**< or the format that stands in its place */
    kelto::PreparedOwner format; /**< that format, prepared; null where it is refused */
    bool isFormat = false;
    bool isUse = false; /**< whether it holds a use of the library */

    KTCatalog() = default;
    [[gnu::visibility("hidden")]] ~KTCatalog(); // kelto.h names the type, and none of its functions
    KTCatalog(const KTCatalog &) = delete;
    KTCatalog &operator=(const KTCatalog &) = delete;

    /** Appends a language; false where there was no memory for it. */
    [[gnu::visibility("hidden")]] bool add(std::unique_ptr<kelto::Language> language) noexcept;

    /** Whether the catalog has other conversions than the built-in ones, and so perhaps an encoder. */
    bool mayEncode() const noexcept { return sourceConversions.table() != nullptr; }

    const char *nameOrNone() const noexcept { return name != nullptr ? name.get() : ""; }
};

namespace kelto
{

constexpr size_t usualMaxSize = size_t{1} << 20;

/** Reads the options of a call, of this version's record or another's; 0 or KT_ERR_INVALID_PARAMETER. */
int readOptions(const KTCatalogOptions *given, KTCatalogOptions &options) noexcept;

/** Loads a language unless that was tried before. @return its messages; null where it has none. */
MessageTable *tableOf(const KTCatalog &catalog, Language &language) noexcept;

/** Loads a language, and reports the files that are of no use. @return 0, or why it has no messages. */
int loadLanguage(const KTCatalog &catalog, Language &language) noexcept;

} // namespace kelto

#endif
