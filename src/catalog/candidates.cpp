#include "catalog/candidates.h"

#include "kelto.h"
#include "message/languages.h"

namespace kelto
{

bool Candidates::list(const char *languages, const char *source) noexcept
{
    m_length = 0;
    m_room = 0;
    for (const char *list : {languages, source})
    {
        size_t size = 0;
        KTLanguages(list, &size, nullptr);
        m_room += 1 + size; // a blank for each ':' and one in front
    }
    m_names = allocateHeap<char>(m_room);
    if (m_names == nullptr)
        return false;
    add(languages);
    add(source);
    return true;
}

/**
 * Adds the names of a list that are new. The list was measured before, and the environment may have changed since: what
 * has no room is left out.
 */
void Candidates::add(const char *list) noexcept
{
    LanguageWalk walk(list);
    while (const char *const next = walk.next())
    {
        const std::string_view name = next;
        if (has(name) || m_length + 1 + name.size() > m_room)
            continue;
        m_names[m_length] = ' ';
        m_length += 1 + name.copy(m_names.get() + m_length + 1, name.size());
    }
}

bool Candidates::has(std::string_view name) const noexcept
{
    return !forEach([&](const char *there) { return name != there; });
}

} // namespace kelto
