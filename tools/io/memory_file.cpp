#include "io/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

namespace tool
{

MemoryFile::MemoryFile(std::string_view bytes) : m_descriptor(memfd_create("kelto", MFD_CLOEXEC))
{
    while (m_descriptor >= 0 && !bytes.empty())
    {
        const ssize_t count = write(m_descriptor, bytes.data(), bytes.size());
        if (count <= 0)
            return;
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    m_isThere = m_descriptor >= 0;
}

MemoryFile::~MemoryFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

std::string MemoryFile::path() const
{
    return "/proc/self/fd/" + std::to_string(m_descriptor);
}

} // namespace tool
