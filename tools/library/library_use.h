/** The use of the library: a handle that ends it. */
#ifndef KELTO_TOOLS_LIBRARY_USE_H
#define KELTO_TOOLS_LIBRARY_USE_H

#include "kelto.h"

namespace tool
{

/** The library, started if it could be. */
class Library
{
public:
    Library() : m_result(KTInit()) {}
    ~Library();
    /** Fails where it is not started. */
    void require() const;
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

private:
    int m_result;
};

} // namespace tool

#endif
