/** The languages in which a catalog is looked for: the user's, then the source language, each once. */
#ifndef KELTO_CATALOG_CANDIDATES_H
#define KELTO_CATALOG_CANDIDATES_H

#include "strconv/heap_block.h"

#include <string_view>

namespace kelto
{

class Candidates
{
public:
    /**
     * Lists the languages; false where there is no memory for the list. @param languages, source  as in KTLanguages().
     */
    bool list(const char *languages, const char *source) noexcept;

    /** The names, each behind a blank. */
    std::string_view names() const noexcept { return {m_names.get(), m_length}; }

    /** Calls `take(name)` with each zero-terminated name, until it returns false. @return whether it never did. */
    template <typename Take> bool forEach(const Take &take) const noexcept
    {
        for (size_t at = 0; at < m_length;)
        {
            char name[64];
            const std::string_view rest = names().substr(at + 1);
            const std::string_view own = rest.substr(0, rest.find(' '));
            name[own.copy(name, sizeof name - 1)] = '\0';
            at += 1 + own.size();
            if (!take(name))
                return false;
        }
        return true;
    }

private:
    void add(const char *list) noexcept;
    bool has(std::string_view name) const noexcept;

    HeapBlock<char> m_names;
    size_t m_length = 0, m_room = 0;
};

} // namespace kelto

#endif
