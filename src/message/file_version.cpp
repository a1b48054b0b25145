#include "message/file_version.h"

#include "kelto.h"
#include "lifecycle/state.h"
#include "message/structure.h"

namespace
{

constexpr size_t maxVersionBytes = 19;

int queryVersion(const char *path, VersionQueryState &state)
{
    kelto::File file;
    int result = kelto::openMessageFile(file, path);
    if (result != 0)
        return result;
    kelto::Parser parser;
    if (!parser.restart(&state))
        return -1;
    XML_SetElementHandler(parser.get(), startElement, nullptr);
    const auto isDone = [](void *query, uint64_t) { return static_cast<VersionQueryState *>(query)->done; };
    result = kelto::parseFile(file, parser, isDone, &state);
    return result == 0 && *state.version == '\0' ? KT_ERR_BAD_MSG_FILE : result;
}

} // namespace

void startElement(void *state, const char *name, const char **attrs)
{
    auto &query = *static_cast<VersionQueryState *>(state);
    if (query.done || !kelto::equalNames(name, "file"))
        return;
    query.done = true;
    const char *const version = getAttrValue(attrs, "product-version");
    const size_t length = version != nullptr ? std::strlen(version) : 0;
    if (version != nullptr && length <= maxVersionBytes)
        std::memcpy(query.version, version, length + 1);
}

int KTGetMsgFileVer(char *path, char *version)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    *version = '\0';
    VersionQueryState state = {false, version};
    const int result = queryVersion(path, state);
    if (result != 0)
        *version = '\0'; // the file may have turned out malformed behind the version
    return result;
}
