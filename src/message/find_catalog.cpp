#include "message/find_catalog.h"

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/languages.h"
#include "platform/scoped.h"
#include "strconv/bounded_text.h"

#include <cstring>

namespace
{

// A compiled catalog is loaded faster, so it comes first.
constexpr const char *suffixes[] = {".ktc", ".xlf"};
constexpr size_t suffixLength = 4;

/** Whether a name is that of a file in a folder, and leads to no other folder. */
bool isFileName(const char *name)
{
    return *name != '\0' && std::strchr(name, '/') == nullptr;
}

/** Writes "directory/language/name.suffix" to `out`, which has room for it. */
void writePath(char *out, size_t room, const char *directory, const char *language, const char *name,
               const char *suffix)
{
    kelto::BoundedText path(out, room);
    for (const char *piece : {directory, "/", language, "/", name, suffix})
        path.append(piece);
    path.finish(&room);
}

/** Finds the first path that can be read; 0, or why there is none. */
int findPath(const char *directory, const char *name, const char *languages, char *path)
{
    int result = KT_ERR_FILE_UNAVAILABLE;
    kelto::LanguageWalk walk(languages);
    while (const char *const language = walk.next())
    {
        const int found = kelto::findCatalogOf(language, directory, name, path);
        if (found == 0)
            return 0;
        if (found != KT_ERR_FILE_UNAVAILABLE)
            result = found;
    }
    return result;
}

} // namespace

namespace kelto
{

bool isCatalogPlace(const char *directory, const char *name) noexcept
{
    return directory != nullptr && *directory != '\0' && name != nullptr && isFileName(name);
}

size_t catalogPathRoom(const char *directory, const char *name) noexcept
{
    return std::strlen(directory) + 1 + maxLanguageLength + 1 + std::strlen(name) + suffixLength + 1;
}

int findCatalogOf(const char *language, const char *directory, const char *name, char *path) noexcept
{
    int result = KT_ERR_FILE_UNAVAILABLE;
    for (const char *suffix : suffixes)
    {
        writePath(path, catalogPathRoom(directory, name), directory, language, name, suffix);
        File file;
        const int opened = file.open(path);
        if (opened == 0)
            return 0;
        if (opened != ZEL_ERR_FILE_MISSING)
            result = KT_ERR_FILE_NOT_OPENED;
    }
    return result;
}

} // namespace kelto

int KTFindCatalog(const char *directory, const char *name, const char *languages, size_t *size, char *path)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (!kelto::isCatalogPlace(directory, name) || size == nullptr || (path == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    if (*size > 0)
        *path = '\0';
    const kelto::TagBlock<char> found = kelto::allocate<char>(glbResHandle, kelto::catalogPathRoom(directory, name));
    if (found == nullptr)
        return KT_ERR_NO_MEMORY;
    const int result = findPath(directory, name, languages, found.get());
    if (result != 0)
        return result;
    kelto::BoundedText text(path, *size);
    text.append(found.get());
    return text.finish(size);
}
