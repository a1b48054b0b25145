#include "message/file_reader.h"

#include "kelto.h"

namespace
{

constexpr unsigned long chunkBytes = 300;

} // namespace

int kelto::openMessageFile(File &file, const char *path) noexcept
{
    const int result = file.open(path);
    switch (result)
    {
    case ZEL_ERR_FILE_ACCESS:
        return KT_ERR_FILE_NOT_OPENED;
    case ZEL_ERR_FILE_MISSING:
        return KT_ERR_FILE_UNAVAILABLE;
    default:
        return result;
    }
}

int kelto::parseFile(File &file, const Parser &parser, bool (*isDone)(void *, uint64_t), void *state) noexcept
{
    if (!parser.isValid())
        return -1;
    char chunk[chunkBytes];
    uint64_t offset = 0;
    for (;;)
    {
        unsigned long length = chunkBytes;
        const int result = file.read(&offset, chunk, &length);
        if (result == ZEL_ERR_END_OF_FILE)
            length = 0;
        else if (result != 0)
            return result;

        const bool isFinal = length < chunkBytes;
        if (XML_Parse(parser.get(), chunk, static_cast<int>(length), isFinal) != XML_STATUS_OK)
            return KT_ERR_BAD_MSG_FILE;
        if (isDone(state, offset) || isFinal)
            return 0;
    }
}
