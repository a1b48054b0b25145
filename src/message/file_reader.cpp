#include "message/file_reader.h"

#include "kelto.h"
#include "message/reparse_budget.h"

#include <new>

namespace
{

using kelto::chunkBytes;

/** Bytes read and not yet parsed. */
struct Step
{
    char *bytes;
    unsigned long length = 0;
    bool isFinal = false; // the file ends here
};

/** Reads chunks until the step has `wanted` bytes or the file ends; 0, or the failure. */
int readStep(kelto::File &file, uint64_t &offset, uint64_t wanted, Step &step)
{
    while (step.length < wanted && !step.isFinal)
    {
        unsigned long length = chunkBytes;
        const int result = file.read(&offset, step.bytes + step.length, &length);
        if (result == ZEL_ERR_END_OF_FILE)
            length = 0;
        else if (result != 0)
            return result;
        step.isFinal = length < chunkBytes;
        step.length += length;
    }
    return 0;
}

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

int kelto::parseFile(File &file, const Parser &parser, XmlLimits &limits, bool (*isDone)(const void *),
                     const void *state) noexcept
{
    char chunk[chunkBytes];
    ReparseBudget budget(parser.get());
    uint64_t offset = 0;
    uint64_t wanted = chunkBytes;
    while (wanted != 0)
    {
        std::unique_ptr<char[]> longStep;
        if (wanted > chunkBytes)
            longStep.reset(new (std::nothrow) char[wanted]);
        if (wanted > chunkBytes && longStep == nullptr)
            return KT_ERR_NO_MEMORY;
        // cppcheck-suppress legacyUninitvar; it is read into
        Step step = {longStep != nullptr ? longStep.get() : chunk};
        if (const int result = readStep(file, offset, wanted, step))
            return result;
        limits.setBytesRead(offset);
        if (XML_Parse(parser.get(), step.bytes, static_cast<int>(step.length), step.isFinal) != XML_STATUS_OK)
            return KT_ERR_BAD_MSG_FILE;
        if (isDone(state) || step.isFinal)
            return 0;
        wanted = budget.nextStep(offset);
    }
    return KT_ERR_BAD_MSG_FILE;
}
