#include "library/library_use.h"

#include "failure.h"

namespace tool
{

Library::~Library()
{
    if (m_result == 0)
        KTClean();
}

void Library::require() const
{
    if (m_result != 0)
        throw Failure(meaningOf(m_result));
}

} // namespace tool
