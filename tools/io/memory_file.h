/** Bytes in memory that the library reads like a file, since it takes paths. */
#ifndef KELTO_TOOLS_MEMORY_FILE_H
#define KELTO_TOOLS_MEMORY_FILE_H

#include <string>
#include <string_view>

namespace tool
{

class MemoryFile
{
public:
    explicit MemoryFile(std::string_view bytes);
    ~MemoryFile();
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    /** Whether there is one, with all of the bytes; else errno says why not. */
    bool isThere() const { return m_isThere; }

    std::string path() const;

private:
    int m_descriptor;
    bool m_isThere = false;
};

} // namespace tool

#endif
