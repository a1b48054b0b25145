// How long the text of a message may be: the limit of a catalog grows with the texts that it is given.

#include "format/arguments/typed_argument.h"

#include <cstdint>

size_t KTTextLimit(size_t maxSize, const KTArgument *arguments, size_t count)
{
    constexpr size_t bytesPerUnit = 3;
    constexpr size_t most = SIZE_MAX / 2;
    size_t bytes = 0;
    for (const KTArgument *argument = arguments; argument != arguments + count; ++argument)
        if (argument->type == KT_ARGUMENT_UTF8)
            bytes += kelto::utf8Of(*argument).length;
        else if (argument->type == KT_ARGUMENT_UCS2 || argument->type == KT_ARGUMENT_CODE_POINT)
            bytes += bytesPerUnit * kelto::ucs2Of(*argument).length;
    return bytes < most / 8 && maxSize < most ? maxSize + 8 * bytes : most;
}
