#include "support/platform.h"

#include "platform/zel.h"
#include "support/require.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <utility>

namespace
{

struct Served
{
    std::string first, later;
};

struct OpenFile
{
    bool isLater = false;
    bool hasBegun = false;
};

Served served;
std::map<uintptr_t, size_t> blocks; // their sizes, by address
long files = 0;
bool refused = false;

} // namespace

void Platform::serve(std::string first, std::string later)
{
    served = {std::move(first), std::move(later)};
}

long Platform::outstanding()
{
    return static_cast<long>(blocks.size()) + files;
}

size_t Platform::bytesLeftInBlock(const void *place)
{
    const auto address = reinterpret_cast<uintptr_t>(place);
    auto block = blocks.upper_bound(address);
    if (block == blocks.begin())
        return 0;
    --block;
    const uintptr_t end = block->first + block->second;
    return address < end ? end - address : 0;
}

bool Platform::hasRefused()
{
    return std::exchange(refused, false);
}

extern "C" {

void *ZEL_malloc(void *tag, unsigned long size)
{
    require(tag != nullptr, "the memory tag exists");
    void *const block = size <= Platform::maxBlockBytes ? std::malloc(size) : nullptr;
    refused = refused || block == nullptr;
    if (block == nullptr)
        return nullptr;
    std::memset(block, 0xA5, size);
    blocks[reinterpret_cast<uintptr_t>(block)] = size;
    return block;
}

int ZEL_free(void *block)
{
    require(block == nullptr || blocks.erase(reinterpret_cast<uintptr_t>(block)) == 1, "a freed block was allocated");
    std::free(block);
    return 0;
}

int ZEL_FileOpen(const char *, int mode, int, int, void **handle)
{
    require(mode == 1, "files are opened for reading");
    *handle = new OpenFile;
    ++files;
    return 0;
}

int ZEL_FileRead(void *handle, uint64_t *offset, void *buffer, unsigned long *length)
{
    auto &file = *static_cast<OpenFile *>(handle);
    require(*length == 300, "files are read in chunks of 300 bytes");
    if (*offset == 0)
        file.isLater = std::exchange(file.hasBegun, true);
    const std::string &bytes = file.isLater ? served.later : served.first;
    if (*offset >= bytes.size())
        return ZEL_ERR_END_OF_FILE;
    *length = bytes.copy(static_cast<char *>(buffer), *length, *offset);
    *offset += *length;
    return 0;
}

int ZEL_FileClose(void **handle)
{
    delete static_cast<OpenFile *>(*handle);
    *handle = nullptr;
    --files;
    return 0;
}

} // extern "C"
