#include "message/file_reader.h"

#include "kelto.h"

#include <new>

namespace
{

constexpr unsigned long chunkBytes = 300;

// A parser may read what it holds of an unfinished token (a tag, a comment) anew with every call. One of this size and more
// is fed in steps that double, so that the work stays in proportion to its length.
constexpr uint64_t shortToken = 4096;

// A token that would need a longer step is refused.
constexpr uint64_t longestStep = uint64_t{16} << 20;

/** The bytes to read for the next call of a parser that has been given `fed`: a chunk, or as many as are unfinished. */
uint64_t nextStep(const kelto::Parser &parser, uint64_t fed)
{
    const XML_Index event = XML_GetCurrentByteIndex(parser.get());
    const uint64_t unfinished =
        event >= 0 && static_cast<uint64_t>(event) < fed ? fed - static_cast<uint64_t>(event) : 0;
    return unfinished < shortToken ? chunkBytes : (unfinished + chunkBytes - 1) / chunkBytes * chunkBytes;
}

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

int kelto::parseFile(File &file, const Parser &parser, bool (*isDone)(void *, uint64_t), void *state) noexcept
{
    char chunk[chunkBytes];
    uint64_t offset = 0;
    uint64_t wanted = chunkBytes;
    for (;;)
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
        if (XML_Parse(parser.get(), step.bytes, static_cast<int>(step.length), step.isFinal) != XML_STATUS_OK)
            return KT_ERR_BAD_MSG_FILE;
        if (isDone(state, offset) || step.isFinal)
            return 0;
        wanted = nextStep(parser, offset);
        if (wanted > longestStep)
            return KT_ERR_BAD_MSG_FILE;
    }
}
