#include "message/file_version.h"

#include "kelto.h"
#include "lifecycle/global_state.h"
#include "message/file_reader.h"
#include "message/grammar/attributes.h"
#include "message/grammar/elements.h"

namespace
{

constexpr size_t maxVersionBytes = 19;

/** The state of the handler, with the limits of the document, which stand in front of the handler. */
struct GuardedQuery
{
    VersionQueryState query = {};
    kelto::XmlLimits limits = {};
};

void guardStart(void *state, const char *name, const char **attrs)
{
    if (static_cast<GuardedQuery *>(state)->limits.addElement(kelto::findElement(name), attrs))
        startElement(state, name, attrs);
}

bool isDone(const void *state)
{
    return static_cast<const GuardedQuery *>(state)->query.done;
}

int queryVersion(const char *path, char *version)
{
    kelto::File file;
    int result = kelto::openMessageFile(file, path);
    if (result != 0)
        return result;
    GuardedQuery guard;
    guard.query.version = version;
    kelto::Parser parser;
    if (!parser.restart(&guard))
        return -1;
    XML_SetElementHandler(parser.get(), guardStart, nullptr);
    result = kelto::parseFile(file, parser, guard.limits, isDone, &guard);
    return result == 0 && *version == '\0' ? KT_ERR_BAD_MSG_FILE : result;
}

} // namespace

void startElement(void *state, const char *name, const char **attrs)
{
    auto &query = *static_cast<VersionQueryState *>(state);
    if (query.done || !kelto::equalNames(name, "file"))
        return;
    query.done = true;
    const char *const version = kelto::findAttribute(attrs, "product-version");
    const size_t length = version != nullptr ? std::strlen(version) : 0;
    if (version != nullptr && length <= maxVersionBytes)
        std::memcpy(query.version, version, length + 1);
}

int KTGetMsgFileVer(char *path, char *version)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    *version = '\0';
    const int result = queryVersion(path, version);
    if (result != 0)
        *version = '\0'; // the file may have turned out malformed behind the version
    return result;
}
