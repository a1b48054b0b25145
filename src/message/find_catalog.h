/** Where the catalog of a language lies: DIRECTORY/LANGUAGE/NAME.ktc, or else DIRECTORY/LANGUAGE/NAME.xlf. */
#ifndef KELTO_MESSAGE_FIND_CATALOG_H
#define KELTO_MESSAGE_FIND_CATALOG_H

#include <cstddef>

namespace kelto
{

/** Whether a catalog can lie in such a directory, under such a name; null is neither. */
bool isCatalogPlace(const char *directory, const char *name) noexcept;

/** The bytes that the path of any language's catalog takes, the terminator counted. */
size_t catalogPathRoom(const char *directory, const char *name) noexcept;

/**
 * Finds the catalog of exactly this language.
 * @param path  out: the path, in catalogPathRoom() bytes; of no use on failure.
 * @return 0; KT_ERR_FILE_UNAVAILABLE; KT_ERR_FILE_NOT_OPENED where a file is there that cannot be opened.
 */
int findCatalogOf(const char *language, const char *directory, const char *name, char *path) noexcept;

} // namespace kelto

#endif
