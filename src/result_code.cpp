// The results of the interface: the name and the text of each, and the errno that means the same.

#include "kelto.h"

#include <cerrno>

namespace
{

struct ResultCode
{
    int code;
    const char *name; // null for a result that has none
    const char *text;
};

constexpr ResultCode resultCodes[] = {
    {0, nullptr, "done"},
    {-1, nullptr, "no XML parser could be created"},
    {KT_ERR_NOT_INITIALIZED, "KT_ERR_NOT_INITIALIZED", "the library is not started, or could not be started"},
    {KT_ERR_CONVERSION_FAILED, "KT_ERR_CONVERSION_FAILED", "the text cannot be converted"},
    {KT_ERR_CONVERSION_INVALID_ARGUMENT, "KT_ERR_CONVERSION_INVALID_ARGUMENT",
     "the text or the buffer is larger than a conversion takes"},
    {KT_ERR_CONVERTER_OPEN_FAILED, "KT_ERR_CONVERTER_OPEN_FAILED", "no character set is known by this name"},
    {KT_ERR_BUFFER_TOO_SMALL, "KT_ERR_BUFFER_TOO_SMALL", "the text does not fit into the buffer"},
    {KT_ERR_INVALID_PARAMETER, "KT_ERR_INVALID_PARAMETER", "an argument is missing or surplus, or is no date and time"},
    {KT_ERR_FORMAT_SYNTAX, "KT_ERR_FORMAT_SYNTAX",
     "a conversion is malformed or unknown, or the positions are not 1 to n, each once"},
    {KT_ERR_INVALID_MSG_ID, "KT_ERR_INVALID_MSG_ID", "the message ID is 0 or above the highest in the file"},
    {KT_ERR_TABLE_NOT_FOUND, "KT_ERR_TABLE_NOT_FOUND", "the message table is not loaded"},
    {KT_ERR_BAD_MSG_FILE, "KT_ERR_BAD_MSG_FILE",
     "not a well-formed message file, or one without a usable product version"},
    {KT_ERR_FILE_UNAVAILABLE, "KT_ERR_FILE_UNAVAILABLE", "there is no such file"},
    {KT_ERR_FILE_NOT_OPENED, "KT_ERR_FILE_NOT_OPENED", "the file cannot be opened for reading"},
    {KT_ERR_NO_MEMORY, "KT_ERR_NO_MEMORY", "memory ran out"},
};

const ResultCode *find(int code)
{
    for (const ResultCode &row : resultCodes)
        if (row.code == code)
            return &row;
    return nullptr;
}

} // namespace

const char *KTResultName(int code)
{
    const ResultCode *const row = find(code);
    return row != nullptr ? row->name : nullptr;
}

int KTResultErrno(int code)
{
    switch (code)
    {
    case KT_ERR_NO_MEMORY:
        return ENOMEM;
    case KT_ERR_FILE_UNAVAILABLE:
        return ENOENT;
    case KT_ERR_INVALID_PARAMETER:
        return EINVAL;
    default:
        return 0;
    }
}

const char *KTResultText(int code)
{
    const ResultCode *const row = find(code);
    return row != nullptr ? row->text : "the system reported a failure";
}
