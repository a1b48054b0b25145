#include "check/reading/loadable.h"

#include "io/memory_file.h"
#include "kelto.h"
#include "message/compiled_layout.h"

namespace tool::check
{

bool mayBeLoaded(std::string_view bytes)
{
    const MemoryFile file(bytes);
    if (!file.isThere())
        return true;
    std::string path = file.path();
    MessageTable *table = nullptr;
    const int result = KTLoadMessages(path.data(), &table);
    if (result == 0)
        KTFreeMessages(table);
    return result != KT_ERR_BAD_MSG_FILE;
}

bool isCompiled(std::string_view bytes)
{
    constexpr std::string_view magic(kelto::compiledMagic, 4); // the line ends behind it may have been changed
    return bytes.substr(0, magic.size()) == magic;
}

} // namespace tool::check
