// Asks a message file for its version, and compares the answer with the table that the same file loads to.

#include "kelto.h"
#include "message/table_list.h"
#include "support/guarded.h"
#include "support/platform.h"
#include "support/require.h"
#include "support/xliff.h"

#include <cstring>

namespace
{

char path[] = "messages.xlf";
constexpr size_t versionBytes = 20;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    const MessageFileInput input(data, size);
    Platform::serve(input.first, input.first); // which is read once
    const long before = Platform::outstanding();

    Guarded<char> version(versionBytes);
    const int result = KTGetMsgFileVer(path, version.data());
    require(Platform::outstanding() == before, "nothing is left behind");
    require(result == 0 || result == KT_ERR_BAD_MSG_FILE, "a file is refused by its code");
    require(version.isTerminated(), "the version ends in its buffer");
    require((*version.data() != '\0') == (result == 0), "there is a version where there is no failure");

    MessageTable *table = nullptr;
    if (KTLoadMessages(path, &table) != 0)
        return 0;
    const bool isShort = std::strlen(table->productVersion) < versionBytes;
    require(result == (isShort ? 0 : KT_ERR_BAD_MSG_FILE), "a file that loads has a version, unless it is too long");
    require(!isShort || std::strcmp(version.data(), table->productVersion) == 0, "the version is that of the table");
    require(KTFreeMessages(table) == 0, "a table is released");
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize, unsigned seed)
{
    return mutateMessageFile(data, size, maxSize, seed);
}
